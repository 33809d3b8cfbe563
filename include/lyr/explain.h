#pragma once

#include "GUID.h"
#include "HRESULT.h"
#include "LYRExport.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

class IUnknown;

/// Why a request or a creation is answered as it is. What goes its way here is the search that
/// answers requests, which tells what it meets. Nobody pays for it who does not ask.
///
/// All this is still open to change.
namespace lyr {
inline namespace v1 {

/// What the search has met. Behind each stands which names of the Step it fills, beside
/// `className` and `interfaceName`.
enum class Cause : std::int32_t {
    // It goes on.
    kEntryFound,   ///< the dictionary has a line, `words`: `library`, `other` (leaf, extension)
    kAnswered,     ///< the function `symbol` of the library answers
    kKnownAnswer,  ///< an answer is known, of an earlier request or registered by code
    kBaseClass,    ///< the base class `other` is asked next
    kLoaded,       ///< the library is loaded for it: `files`; `words` tells how long that took

    // What is asked.
    kNullObject,    ///< no object was given
    kDeadObject,    ///< its last reference is gone, or it is an extension that extends nothing
    kNoMetaObject,  ///< the object's class does not tell its meta-object
    kPassedOn,      ///< objects of the class, an extension, pass requests on to what they extend
    kUnknownClass,  ///< no class of the name is known yet: its bases are not, either
    kUnknownInterface,  ///< no id is known for the interface's name
    kIdWithoutName,     ///< neither a line nor a class gives the id a name
    kNameOfAnotherId,   ///< the name of the interface has another id in the files: `other`

    // The dictionary.
    kDictionaryClosed,  ///< the dictionary has been deleted, at the end of the application
    kFilesNotRead,      ///< the dictionary files have not been read: the first request does that
    kFilesBeingRead,    ///< this very thread is reading them
    kNoFolders,         ///< no folder of dictionary files is named
    kNoEntry,           ///< no line for the class and the interface
    kNoLibrary,         ///< the entry names no library
    kNoFactories,       ///< objects of the class have no implementations by factories
    kOwnSearch,         ///< the meta-object of the class answers in a way of its own

    // What the entry says.
    kUnknownLeaf,       ///< the leaf interface `other` has no meta-object yet
    kLeafNotDerived,    ///< the leaf interface `other` is not derived from what is asked for
    kUnknownExtension,  ///< the extension `other` has no meta-object
    kNotAnExtension,    ///< the class `other` is none that extends others
    kNotExtended,       ///< the extension `other` does not extend the class

    // The library.
    kLibraryNotLoaded,   ///< the library is not loaded, and may not be for this explanation
    kLibraryNotFound,    ///< no file of it is found; `words` of the loader, `files` tried in order
    kLibraryNotLoading,  ///< a file of it is found and does not load; `words`, `files`
    kNoFunction,         ///< the library does not export the function `symbol`
    kFunctionElsewhere,  ///< only a dependency of the library has the function `symbol`
    kLoading,            ///< a library was loading beside it: the answer may change

    // What was called.
    kNothingMade,       ///< the function `symbol` of the library gave null
    kFactoryGaveNull,   ///< the factory that answers gave null for an object of the class
    kNotOfClass,        ///< the implementation is for `other`, from which the class does not derive
    kExtendsExtension,  ///< the object is an extension, and keeps no extension `other` itself
    kWrongKind,         ///< what makes the extension `other` gives an object of another kind
    kClassObjectRefuses,  ///< the library's class objects answer `result`

    // What is remembered.
    kKnownAbsence,  ///< an earlier request has found nothing: that stays the answer

    // The creation.
    kNoCreator,       ///< no line and no code says what makes the class
    kUnknownClassId,  ///< no line names the class of the id
    kNoMemory,        ///< memory or file descriptors were short
};

/// The name of the cause without its "k"; "" for a number that is none.
LYR_EXPORT const char* CauseName(Cause cause) noexcept;

/// One thing that the search has met. What does not belong to its cause is empty.
struct Step {
    Cause cause = Cause::kNoEntry;
    std::string className;
    std::string interfaceName;  ///< or the id in braces, where it has no name
    std::string library;        ///< as the dictionary names it
    std::string symbol;
    std::string other;
    std::string words;  ///< of another party: the dynamic loader's, the system's
    std::vector<std::string> files;
    HRESULT result = S_OK;

    /// Where the dictionary line stands, as the path to the folder is written; `line` from 1. Empty
    /// and 0 for what no file says.
    std::string file;
    int line = 0;
};

/// A request and its answer.
struct Explanation {
    enum class Answer : std::int32_t {
        kNo,
        kYes,      ///< a function answers it, which may still give null for an object
        kUnknown,  ///< it cannot be told without loading a library or calling a function of one
    };

    std::string className;      ///< as far as it is known
    std::string interfaceName;  ///< empty for a creation

    Answer answer = Answer::kNo;
    std::vector<Step> steps;  ///< in the order in which they were met
    std::size_t root = 0;     ///< the step that decides; steps.size() for none
    std::string text;         ///< all this for people, some lines that each end in a line feed
};

/// Whether an explanation may load libraries, and read the dictionary files where nobody has yet.
enum class Loading : std::int32_t { kNo, kYes };

/// Explains what the object, or any of the class, would answer to a request for the interface. It
/// calls no factory and changes no answer of a later request, but for what a library that it may
/// load brings along. All pointers may be null. An interface by name is looked up in what is known;
/// beside an id, the name is what the client calls the interface. Any thread may ask at any time.
/// Throws std::bad_alloc.
LYR_EXPORT Explanation ExplainRequest(IUnknown* object, const GUID& iid, Loading = Loading::kNo,
                                      const char* interfaceName = nullptr);
LYR_EXPORT Explanation ExplainRequest(IUnknown* object, const char* interfaceName,
                                      Loading = Loading::kNo);
LYR_EXPORT Explanation ExplainRequest(const char* className, const GUID& iid,
                                      Loading = Loading::kNo);
LYR_EXPORT Explanation ExplainRequest(const char* className, const char* interfaceName,
                                      Loading = Loading::kNo);

/// Explains what LYRSysTSCreateExternalObject and LYRSysTSCreateInstance would do, up to the call
/// of what makes the object; otherwise as above.
LYR_EXPORT Explanation ExplainCreation(const char* className, Loading = Loading::kNo);
LYR_EXPORT Explanation ExplainCreation(const GUID& clsid, Loading = Loading::kNo);

/// Tells the explanation of something that the caller cannot go on without, where LYRDebug asks for
/// such: each pair of class and interface once, and each cause. The kit does so before it throws.
LYR_EXPORT void Report(const Explanation& explanation) noexcept;

/// At most three of the names, the nearest first: those that few changes make of `name`, a third of
/// its letters at most; case and underscores count little. Names that are `name` itself are left
/// out. Throws std::bad_alloc.
LYR_EXPORT std::vector<std::string> NearNames(const std::string& name,
                                              const std::vector<std::string>& names);

/// What the environment variable LYRDebug says, said by the program, in the place of what was said
/// before; null and "" for silence. Words that are none are told, and the others count. At any
/// time.
LYR_EXPORT void SetDebug(const char* words) noexcept;

/// Takes a message: one or more whole lines. It is called in the thread that has something to say,
/// never while a lock of the tables is held, perhaps in several threads at a time. It must not
/// throw.
using MessageHandler = void (*)(const char* text, void* context);

/// Has all messages of the library given to `handler` instead of standard error, the texts that it
/// writes there included; null for standard error again. At any time; a message on its way may
/// still go to the handler before. LYRDebug's sum comes while the process ends, with the
/// functions of `atexit`: a handler that may not be called then is taken back before.
LYR_EXPORT void SetMessageHandler(MessageHandler handler, void* context) noexcept;

/// Says a message where the library says its own.
LYR_EXPORT void Say(const char* text) noexcept;

}  // namespace v1
}  // namespace lyr

/// ExplainRequest for a debugger: the paragraph, or what is wrong with the arguments; valid until
/// the next call. Never null.
extern "C" LYR_EXPORT const char* LYRExplain(IUnknown* object, const char* interfaceName) noexcept;

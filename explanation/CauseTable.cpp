#include "explanation/CauseTable.h"

#include <cstdio>
#include <iterator>
#include <string_view>

namespace lyr {

namespace internal {

namespace {

constexpr CauseRow kRows[] = {
    {Cause::kEntryFound, 0, "EntryFound", "the dictionary names {library} for it", nullptr},
    {Cause::kAnswered, 0, "Answered", "{symbol} of {library} answers", nullptr},
    {Cause::kKnownAnswer, 0, "KnownAnswer", "an answer is known for {class}", nullptr},
    {Cause::kBaseClass, 0, "BaseClass", "{class} has none, so its base {other} is asked", nullptr},
    {Cause::kLoaded, 0, "Loaded", "{library} is loaded, {words}", nullptr},

    {Cause::kNullObject, 10, "NullObject", "no object was given", "test the pointer before"},
    {Cause::kDeadObject, 10, "DeadObject",
     "the object's last reference is gone, or it is an extension that extends no object",
     "keep a reference for as long as the object is used; have extensions made by a TIE or BOA"},
    {Cause::kNoMetaObject, 10, "NoMetaObject", "the object's class tells no meta-object",
     "give the class a GetMetaObject of its own, by the kit or by hand"},
    {Cause::kPassedOn, 4, "PassedOn",
     "objects of the extension {class} pass each request on to the object that they extend",
     "ask for the class of that object"},
    {Cause::kUnknownClass, 2, "UnknownClass",
     "no class {class} is known here yet, so its bases are not known either", nullptr},
    {Cause::kUnknownInterface, 5, "UnknownInterface", "no id is known for {interface}",
     "write \"<id> {interface}\" into an .iidts file, or ask by the id"},
    {Cause::kIdWithoutName, 5, "IdWithoutName", "no dictionary line gives the id a name",
     "write \"<id> <name>\" into an .iidts file"},
    {Cause::kNameOfAnotherId, 5, "NameOfAnotherId",
     "the dictionary files give {interface} another id, {other}",
     "let the code and the .iidts file give the same id, and build anew what uses it"},

    {Cause::kDictionaryClosed, 10, "DictionaryClosed", "the dictionary has been deleted",
     "ask before the application cleans up"},
    {Cause::kFilesNotRead, 6, "FilesNotRead", "the dictionary files have not been read yet",
     "the first request reads them; ask for the explanation after it, or let it read them"},
    {Cause::kFilesBeingRead, 6, "FilesBeingRead", "this thread is reading the dictionary files",
     "ask when they have been read"},
    {Cause::kNoFolders, 6, "NoFolders", "no folder of dictionary files is named",
     "list the folders in LYRDictionaryPath, or name them in code with "
     "LYRSysTSDictionary::AddFolder, unless LYRDictionaryNoPathNoFallback is set"},
    {Cause::kNoEntry, 3, "NoEntry", "no dictionary line for {class} and {interface}",
     "write \"{class} {interface} <library>\" into a .dicts file"},
    {Cause::kNoLibrary, 8, "NoLibrary", "the dictionary names no library for {class}",
     "give the line its library"},
    {Cause::kNoFactories, 4, "NoFactories", "objects of {class} answer IUnknown alone",
     "describe the class as ImplementationClass"},
    {Cause::kOwnSearch, 1, "OwnSearch", "the meta-object of {class} answers in a way of its own",
     nullptr},

    {Cause::kUnknownLeaf, 8, "UnknownLeaf", "the leaf interface {other} has no meta-object yet",
     "load its library before, or give {interface} a line and an entry point of its own"},
    {Cause::kLeafNotDerived, 8, "LeafNotDerived",
     "the leaf interface {other} is not derived from {interface}",
     "correct the name behind ITFLEAF, or the base of {other}"},
    {Cause::kUnknownExtension, 8, "UnknownExtension",
     "{library} brings no meta-object of the extension {other}",
     "make the meta-object while the library loads, or correct the name behind EXTENDED_BY"},
    {Cause::kNotAnExtension, 8, "NotAnExtension", "{other} is a class that extends no other",
     "describe it as KeptExtension or TransientExtension, or correct the name behind EXTENDED_BY"},
    {Cause::kNotExtended, 8, "NotExtended", "the extension {other} does not extend {class}",
     "name {class} among the classes that {other} extends, or take the line out"},

    {Cause::kLibraryNotLoaded, 8, "LibraryNotLoaded", "{library} is not loaded yet",
     "the first request loads it; let the explanation load it to learn more"},
    {Cause::kLibraryNotFound, 8, "LibraryNotFound", "{library} is not found: {words}",
     "put it where the loader looks, name its folder with LYRThrLibraryManager::AddFolder, or "
     "correct the line"},
    {Cause::kLibraryNotLoading, 8, "LibraryNotLoading", "{library} does not load: {words}",
     "mend what the loader tells, or take the line out"},
    {Cause::kNoFunction, 8, "NoFunction", "{library} exports no {symbol}",
     "define it there with extern \"C\" and default visibility, or correct the line"},
    {Cause::kFunctionElsewhere, 8, "FunctionElsewhere",
     "{library} itself has no {symbol}, only a library that it needs",
     "name that library in the line"},
    {Cause::kLoading, 7, "Loading", "a library was loading beside it", "ask again"},

    {Cause::kNothingMade, 9, "NothingMade", "the function that makes a {class} gave no object",
     "look at its constructor: it has failed, or refuses"},
    {Cause::kFactoryGaveNull, 9, "FactoryGaveNull",
     "the function that answers it gave null for an object of {class}",
     "look at what makes the implementation: it has failed, or refuses"},
    {Cause::kNotOfClass, 10, "NotOfClass",
     "its implementation is of the class {other}, from which {class} is not derived",
     "derive {class} from it, or describe {other} as an extension of {class}"},
    {Cause::kExtendsExtension, 10, "ExtendsExtension",
     "{class} is itself an extension, which keeps no extension like {other}",
     "make {other} an extension of the component, or a transient one"},
    {Cause::kWrongKind, 10, "WrongKind",
     "what makes the extension {other} gives nothing, or an object that is not of that kind",
     "let its GetMetaObject tell the meta-object of {other}, and look at its constructor"},
    {Cause::kClassObjectRefuses, 9, "ClassObjectRefuses",
     "the class objects of its library answer {result}",
     "look whether LYRSysTSDllGetClassObject there knows the class id and the interface"},

    {Cause::kKnownAbsence, 1, "KnownAbsence",
     "an earlier request of {class} has found nothing, and that stays its answer",
     "start again, or ask for the first time when what answers is there"},

    {Cause::kNoCreator, 5, "NoCreator", "no dictionary line and no code says what makes a {class}",
     "write \"{class} CreateInterface <library>\" into a .dicts file"},
    {Cause::kUnknownClassId, 5, "UnknownClassId", "no dictionary line names the class of the id",
     "write \"<id> <class> <library>\" into a .clsidts file"},
    {Cause::kNoMemory, 9, "NoMemory", "memory or file descriptors were short", "ask again"},
};

constexpr bool AreInOrder() {
    for (std::size_t i = 0; i < std::size(kRows); ++i) {
        if (static_cast<std::size_t>(kRows[i].cause) != i) return false;
    }
    return true;
}
static_assert(AreInOrder(), "a cause is found by its number");

std::string InHexadecimal(HRESULT result) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%08X", static_cast<unsigned>(result));
    return text;
}

std::string ValueOf(std::string_view name, const Step& step) {
    if (name == "class") return step.className;
    if (name == "interface") return step.interfaceName;
    if (name == "library") return step.library;
    if (name == "symbol") return step.symbol;
    if (name == "other") return step.other;
    return name == "words" ? step.words : InHexadecimal(step.result);
}

}  // namespace

const CauseRow* RowOf(Cause cause) noexcept {
    const auto number = static_cast<std::size_t>(cause);
    return number < std::size(kRows) ? &kRows[number] : nullptr;
}

std::string FillIn(const char* text, const Step& step) {
    std::string filled;
    std::string_view rest(text);
    for (;;) {
        const std::size_t open = rest.find('{');
        filled += rest.substr(0, open);
        if (open == std::string_view::npos) return filled;
        const std::size_t close = rest.find('}', open);
        filled += ValueOf(rest.substr(open + 1, close - open - 1), step);
        rest.remove_prefix(close + 1);
    }
}

}  // namespace internal

inline namespace v1 {

const char* CauseName(Cause cause) noexcept {
    const internal::CauseRow* const row = internal::RowOf(cause);
    return row != nullptr ? row->name : "";
}

}  // namespace v1

}  // namespace lyr

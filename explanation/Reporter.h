#pragma once

#include "explanation/DebugWords.h"
#include "explanation/ReportFile.h"
#include "lyr/explain.h"
#include "support/Listener.h"

#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace lyr::internal {

/// Tells what goes wrong in the process as LYRDebug asks for it: each thing once, and each cause
/// once however many requests it hits. Any thread may call at any time.
class Reporter {
public:
    /// The reporter of the process, made when it is first asked for; null without memory. It lives
    /// as long as the process.
    static Reporter* Instance() noexcept;

    /// Goes by the words from now on; unknown ones are told.
    void Set(const DebugWords& words);

    /// A client cannot go on without what it has not got.
    void OnRequired(const Explanation& explanation) noexcept;

    /// What a search for the pair has met that found nothing, if one was heard.
    std::optional<std::vector<Step>> StepsOf(const std::string& className, const GUID& iid);

    /// The place of the line in the dictionary files as it was read, "a.dicts:3"; empty for one
    /// that was not heard.
    std::string PlaceOf(const std::string& first, const std::string& second);

    /// How often each cause came, for those that came more than once.
    std::string Sum();

    void AfterSearch(const LYRSysTSMetaClass& asked, const GUID& iid, Notes& notes,
                     bool isFound) noexcept;
    void OnFactoryGaveNull(const LYRSysTSMetaClass& asked, const GUID& iid) noexcept;
    void OnNoImplementation(lyr::Cause cause, const char* asked,
                            const char* implementation) noexcept;
    void OnNotCreated(const char* className, Notes& notes) noexcept;
    void OnNotCreated(const GUID& clsid, Notes& notes) noexcept;
    void BeforeLine(const char* path, int line, const char* const* words, int count) noexcept;
    void AfterLine() noexcept;
    void OnContradiction(const Contradiction& contradiction) noexcept;

    /// Writes to the file of the report, or says it.
    void Write(const std::string& text);

private:
    struct Line {
        std::string place;
        std::string pair;        ///< its first two words; empty when it has fewer
        std::thread::id thread;  ///< that reads it
    };
    struct Told {
        std::string text;
        unsigned count = 0;
    };

    /// Tells the explanation, unless its pair or its cause has been told.
    void TellOnce(const Explanation& explanation);
    bool IsNew(const Explanation& explanation, const std::string& pair);
    std::string TextOf(const Contradiction& contradiction);
    /// Where this thread reads a line, "a.dicts:3: "; empty when it reads none.
    std::string PlaceOfRefused();

    std::mutex _mutex;  // guards all that follows; nothing is said under it
    DebugWords _words;
    ReportFile _file;
    std::map<std::string, Told> _causes;
    std::unordered_set<std::string> _told;
    std::unordered_map<std::string, std::vector<Step>> _absences;
    std::unordered_map<std::string, std::string> _places;
    Line _current;
    std::map<std::thread::id, Step> _noImplementations;  // the latest of each thread
};

/// Puts what was heard at the request itself, if it was, in the place of what the search for an
/// explanation has met: of an absence that is remembered, or of a function that is found and has
/// given null. Whether it has.
bool RecallSteps(const std::string& className, const GUID& iid, bool isFound, Notes& notes);

}  // namespace lyr::internal

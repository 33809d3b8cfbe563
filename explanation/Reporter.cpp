#include "explanation/Reporter.h"

#include "LYRSysTSMetaClass.h"
#include "dictionary/Messages.h"
#include "explanation/CauseTable.h"
#include "explanation/Conclusion.h"
#include "explanation/ExplainedSearch.h"
#include "registries/ClassRecord.h"
#include "support/Notes.h"

#include <cerrno>
#include <cstring>
#include <new>

namespace lyr::internal {

namespace {

/// Runs what tells; without memory it is not told.
template <typename Action>
void Try(Action action) noexcept {
    try {
        action();
    } catch (const std::bad_alloc&) {
        Say("lyr: no memory to explain what went wrong\n");
    }
}

/// What many requests share when it is the cause of each: a library that does not load.
std::string KeyOf(const Step& root, const std::string& pair) {
    const bool isOfLibrary =
        root.cause == Cause::kLibraryNotFound || root.cause == Cause::kLibraryNotLoading;
    return isOfLibrary ? "library " + root.library : pair;
}

/// What is said of the class: the name, or the id with the name that is known for it.
std::string ClassOf(const Contradiction& contradiction) {
    if (contradiction.className != nullptr) return contradiction.className;
    if (contradiction.clsid == nullptr) return {};
    const CLSIDNameRecord* const known = KnownClass(*contradiction.clsid);
    const std::string name = known != nullptr ? std::string(known->className) + " " : "";
    return name + InBraces(*contradiction.clsid);
}

std::string InterfaceOf(const Contradiction& contradiction) {
    if (contradiction.interfaceName != nullptr) return contradiction.interfaceName;
    if (contradiction.iid == nullptr) return {};
    return QuestionOf(nullptr, contradiction.iid, nullptr).asked;
}

std::string InMicroseconds(std::chrono::nanoseconds time) {
    return std::to_string(time.count() / 1000) + " us";
}

}  // namespace

Reporter* Reporter::Instance() noexcept {
    static auto* const instance = new (std::nothrow) Reporter;
    return instance;
}

void Reporter::Set(const DebugWords& words) {
    std::string problems;
    for (const std::string& word : words.unknown) {
        problems += "lyr: LYRDebug has no word \"" + word + "\"; LYRDebug=help lists them\n";
    }
    {
        const std::lock_guard<std::mutex> guard(_mutex);
        _words = words;
        _file.Close();
        if (ReportFile::IsAllowed() && !words.file.empty() && !_file.Open(words.file)) {
            problems += "lyr: " + words.file + " cannot be written: " + std::strerror(errno) +
                        "; what it was for follows here\n";
        }
    }
    if (words.help) Write(DebugWords::Help());
    if (!problems.empty()) Say("%s", problems.c_str());
}

void Reporter::Write(const std::string& text) {
    {
        const std::lock_guard<std::mutex> guard(_mutex);
        if (_file.Write(text)) return;
    }
    Say("%s", text.c_str());
}

bool Reporter::IsNew(const Explanation& explanation, const std::string& pair) {
    const std::lock_guard<std::mutex> guard(_mutex);
    if (!_told.insert(pair).second) return false;
    if (explanation.root >= explanation.steps.size()) return true;
    const Step& root = explanation.steps[explanation.root];
    Told& cause = _causes[KeyOf(root, pair)];
    if (cause.count == 0) cause.text = FillIn(RowOf(root.cause)->text, root);
    return ++cause.count == 1;
}

void Reporter::TellOnce(const Explanation& explanation) {
    const bool isCreation = explanation.interfaceName.empty();
    const std::string what = isCreation ? "CreateInterface" : explanation.interfaceName;
    {
        const std::lock_guard<std::mutex> guard(_mutex);
        if (!_words.explain || !_words.Match(explanation.className, what)) return;
    }
    // The classes of unknown ids have one name.
    const std::string& pair = isCreation ? explanation.text : explanation.className + " " + what;
    if (IsNew(explanation, pair)) Write(explanation.text);
}

std::string Reporter::Sum() {
    const std::lock_guard<std::mutex> guard(_mutex);
    std::string text;
    for (const auto& [key, cause] : _causes) {
        if (cause.count < 2) continue;
        text += "lyr: " + cause.text + ": " + std::to_string(cause.count) + " requests need it\n";
    }
    return text;
}

void Reporter::OnRequired(const Explanation& explanation) noexcept {
    Try([&] { TellOnce(explanation); });
}

void Reporter::AfterSearch(const LYRSysTSMetaClass& asked, const GUID& iid, Notes& notes,
                           bool isFound) noexcept {
    Try([&] {
        const auto time = notes.Age();
        const Question question = QuestionOf(asked.IsA(), &iid, nullptr);
        bool all = false;
        {
            const std::lock_guard<std::mutex> guard(_mutex);
            all = _words.explain && _words.all;
            if (!isFound) _absences[question.className + " " + InBraces(iid)] = notes.Steps();
            if (isFound && all) all = _words.Match(question.className, question.interfaceName);
        }
        if (!all) return;
        const Explanation explanation = ConcludeRequest(question, notes, isFound);
        if (isFound) {
            Write(explanation.text + "  after       " + InMicroseconds(time) + "\n");
        } else {
            TellOnce(explanation);
        }
    });
}

void Reporter::OnNoImplementation(Cause cause, const char* asked,
                                  const char* implementation) noexcept {
    Try([&] {
        Step step;
        step.cause = cause;
        if (asked != nullptr) step.className = asked;
        if (implementation != nullptr) step.other = implementation;
        const std::lock_guard<std::mutex> guard(_mutex);
        _noImplementations[std::this_thread::get_id()] = std::move(step);
    });
}

void Reporter::OnFactoryGaveNull(const LYRSysTSMetaClass& asked, const GUID& iid) noexcept {
    Try([&] {
        const Question question = QuestionOf(asked.IsA(), &iid, nullptr);
        Notes notes(Notes::Mode::kRequest);
        notes.Add(Cause::kFactoryGaveNull, asked.IsA(), question.interfaceName.c_str());
        bool all = false;
        {
            const std::lock_guard<std::mutex> guard(_mutex);
            const auto why = _noImplementations.find(std::this_thread::get_id());
            if (why != _noImplementations.end() && why->second.className == question.className) {
                notes.Steps().push_back(why->second);
                _noImplementations.erase(why);
            }
            _absences[question.className + " " + InBraces(iid)] = notes.Steps();
            all = _words.explain && _words.all;
        }
        if (!all) return;
        TellOnce(ConcludeRequest(question, notes, false));
    });
}

void Reporter::OnNotCreated(const char* className, Notes& notes) noexcept {
    Try([&] {
        const Question question = CreationOf(className, {});
        TellOnce(ConcludeRequest(question, notes, false));
    });
}

void Reporter::OnNotCreated(const GUID& clsid, Notes& notes) noexcept {
    Try([&] {
        const Question question = CreationOf(clsid);
        TellOnce(ConcludeRequest(question, notes, false));
    });
}

std::optional<std::vector<Step>> Reporter::StepsOf(const std::string& className, const GUID& iid) {
    const std::lock_guard<std::mutex> guard(_mutex);
    const auto found = _absences.find(className + " " + InBraces(iid));
    return found != _absences.end() ? std::optional(found->second) : std::nullopt;
}

std::string Reporter::PlaceOf(const std::string& first, const std::string& second) {
    const std::lock_guard<std::mutex> guard(_mutex);
    const auto found = _places.find(first + " " + second);
    return found != _places.end() ? found->second : std::string();
}

void Reporter::BeforeLine(const char* path, int line, const char* const* words,
                          int count) noexcept {
    Try([&] {
        const std::lock_guard<std::mutex> guard(_mutex);
        const std::string pair = count < 2 ? "" : std::string(words[0]) + " " + words[1];
        _current = {std::string(path) + ":" + std::to_string(line), pair,
                    std::this_thread::get_id()};
        if (count >= 2) _places.emplace(pair, _current.place);
    });
}

void Reporter::AfterLine() noexcept {
    const std::lock_guard<std::mutex> guard(_mutex);
    _current.thread = {};
}

std::string Reporter::PlaceOfRefused() {
    const std::lock_guard<std::mutex> guard(_mutex);
    if (_current.thread != std::this_thread::get_id()) return {};
    // What it says is said elsewhere, so it is nobody's place.
    const auto pair = _places.find(_current.pair);
    if (pair != _places.end() && pair->second == _current.place) _places.erase(pair);
    return _current.place + ": ";
}

std::string Reporter::TextOf(const Contradiction& contradiction) {
    const std::string here = PlaceOfRefused();
    const std::string first = ClassOf(contradiction);
    const std::string second = InterfaceOf(contradiction);
    std::string text = "lyr: " + here + "\"" + first + " " + second + "\" ";
    if (contradiction.field == nullptr) return text + "is not registered: memory is short\n";
    const std::string field = contradiction.field;
    const std::string prefix = field == "library" ? " lib" : " ";
    text += "is said twice, with another " + field;
    if (contradiction.given != nullptr) text += prefix + contradiction.given;
    if (contradiction.known != nullptr) text += ", first" + prefix + contradiction.known;
    text += "; the first stays\n";
    const std::string before = PlaceOf(first, second);
    if (!before.empty()) text += "  first       " + before + "\n";
    return text + "  remedy      take one of the two out\n";
}

void Reporter::OnContradiction(const Contradiction& contradiction) noexcept {
    Try([&] {
        const std::string text = TextOf(contradiction);
        {
            const std::lock_guard<std::mutex> guard(_mutex);
            if (!_words.explain || !_told.insert(text).second) return;
        }
        Write(text);
    });
}

}  // namespace lyr::internal

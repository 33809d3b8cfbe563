#include "explanation/Timeline.h"

#include "LYRSysTSDicoCLSIDName.h"
#include "LYRSysTSDicoGUID.h"
#include "LYRSysTSDicoIIDName.h"
#include "LYRSysTSDicoString.h"
#include "LYRSysTSDictionary.h"
#include "LYRSysTSMetaClass.h"
#include "dictionary/Messages.h"
#include "explanation/CauseTable.h"
#include "explanation/Conclusion.h"
#include "explanation/Paragraph.h"
#include "support/Notes.h"

#include <cerrno>
#include <cstring>
#include <new>
#include <pthread.h>
#include <unistd.h>
#include <utility>

namespace lyr::internal {

namespace {

/// Runs what writes, in the middle of something else: the thread is not cancelled there, and finds
/// its errno again. Without memory an event is left out.
template <typename Action>
void Try(Action action) noexcept {
    const int error = errno;
    int cancelState = 0;
    ::pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &cancelState);
    try {
        action();
    } catch (const std::bad_alloc&) {  // NOLINT(bugprone-empty-catch)
    }
    ::pthread_setcancelstate(cancelState, nullptr);
    errno = error;
}

std::string Head() {
    return "[\n" + TraceEvent::Name("process_name", program_invocation_short_name).Text();
}

const char* KindOf(const LYRMutex* mutex) {
    if (mutex == GetGlobalDicoMutex()) return "dictionary";
    if (mutex == GetGlobalIIDDicoMutex()) return "interface names";
    if (mutex == GetGlobalCLSIDDicoMutex()) return "class ids";
    if (mutex == GetGlobalStringDicoMutex()) return "texts";
    if (mutex == GetGlobalGUIDDicoMutex()) return "ids";
    return "object or class";
}

Question QuestionFor(const Asked& asked) {
    if (asked.iid != nullptr) return QuestionOf(asked.className, asked.iid, nullptr);
    if (asked.clsid != nullptr) return CreationOf(*asked.clsid);
    return CreationOf(asked.className, {});
}

void AddQuestion(const Question& question, TraceEvent& event) {
    event.Add("class", question.className).Add("interface", question.interfaceName);
    event.Add("id", question.id);
}

/// What answers, or why nothing does.
void AddAnswer(const Question& question, const Notes& notes, bool isFound, TraceEvent& event) {
    const std::vector<Step>& steps = notes.Steps();
    if (isFound) {
        for (auto step = steps.rbegin(); step != steps.rend(); ++step) {
            if (step->cause != Cause::kAnswered && step->cause != Cause::kKnownAnswer) continue;
            event.Add("library", step->library).Add("function", step->symbol);
            if (step->className != question.className) event.Add("by", step->className);
            return;
        }
        return;
    }
    const std::size_t root = RootOf(steps);
    if (root >= steps.size()) return;
    Step step = steps[root];
    if (step.className.empty()) step.className = question.className;
    if (step.interfaceName.empty()) step.interfaceName = question.interfaceName;
    event.Add("cause", CauseName(step.cause)).Add("why", FillIn(RowOf(step.cause)->text, step));
}

}  // namespace

Timeline* Timeline::Instance() noexcept {
    static auto* const instance = new (std::nothrow) Timeline;
    return instance;
}

bool Timeline::Set(const std::string& path) {
    RegisterWithFork();
    bool isOn = false;
    {
        const std::lock_guard<std::mutex> guard(_mutex);
        isOn = !path.empty() && ReportFile::IsAllowed();
        if (isOn && path != _path) {
            _file.Close();
            _threads.clear();
            _creations.clear();
            _path = path;
            isOn = _file.Open(path, &Head);
            if (!isOn) {
                _error = errno;
                _file.Close();
            }
        }
        _isOn = isOn && _file.IsOpen();
        isOn = _isOn;
    }
    LYRThrTimeListener::SetCurrent(isOn ? this : nullptr);
    TellFailure();
    return isOn;
}

void Timeline::AfterSearch(const LYRSysTSMetaClass& asked, const GUID& iid, const Notes& notes,
                           bool isFound) noexcept {
    Try([&] {
        const auto end = Clock::now();
        const Question question = QuestionOf(asked.IsA(), &iid, nullptr);
        TraceEvent event = TraceEvent::Slice(question.what, "lyr.request", notes.Start(), end);
        AddQuestion(question, event);
        event.Add("found", isFound);
        AddAnswer(question, notes, isFound, event);
        Write(event);
        TellFailure();
    });
}

// Of those of one class that take no time the first is enough.
void Timeline::AfterCreation(const Notes& notes, bool isMade) noexcept {
    Try([&] {
        const auto end = Clock::now();
        const Question question = QuestionFor(notes.WhatIsAsked());
        const bool isFirst = IsFirst(question.asked);
        if (!isFirst && end - notes.Start() < kLongWait) return;
        TraceEvent event =
            TraceEvent::Slice("make " + question.asked, "lyr.creation", notes.Start(), end);
        AddQuestion(question, event);
        event.Add("made", isMade);
        AddAnswer(question, notes, isMade, event);
        Write(event);
        TellFailure();
    });
}

void Timeline::AfterFile(const FileReading& file) noexcept {
    Try([&] {
        TraceEvent event = TraceEvent::Slice(file.path, "lyr.file", file.begin, Clock::now());
        event.Add("file", file.path).Add("lines", file.lines);
        if (file.badLine != 0) event.Add("bad line", file.badLine);
        if (!file.isWhole) {
            event.Add("error", file.badLine != 0 ? "nothing is read below the bad line"
                                                 : "it cannot be read");
        }
        Write(event);
    });
}

void Timeline::AfterScan(Clock::time_point begin) noexcept {
    Try([&] { Write(TraceEvent::Slice("dictionary files", "lyr.scan", begin, Clock::now())); });
}

void Timeline::AfterLoad(const char* library, const char* file, const char* words,
                         LYRThrLoadListener* listener, Clock::time_point begin) noexcept {
    Try([&] {
        TraceEvent event =
            TraceEvent::Slice(std::string("load ") + library, "lyr.load", begin, Clock::now());
        event.Add("library", library).Add("loaded", file != nullptr);
        event.Add("file", file).Add("words", words);
        const auto* const notes = dynamic_cast<const Notes*>(listener);
        if (notes != nullptr && notes->WhatIsAsked().IsSomething()) {
            AddQuestion(QuestionFor(notes->WhatIsAsked()), event);
        }
        Write(event);
    });
}

void Timeline::AfterWait(const LYRMutex* mutex, Clock::time_point begin) noexcept {
    Try([&] {
        const char* const kind = KindOf(mutex);
        TraceEvent event =
            TraceEvent::Slice(std::string("wait: ") + kind, "lyr.wait", begin, Clock::now());
        char address[24];
        std::snprintf(address, sizeof address, "%p", static_cast<const void*>(mutex));
        event.Add("lock", kind).Add("address", address);
        Write(event);
    });
}

void Timeline::Write(const TraceEvent& event) {
    const std::lock_guard<std::mutex> guard(_mutex);
    if (!_isOn) return;
    NameThread();
    if (Append(event)) return;
    _error = errno;
    _isOn = false;
}

/// Behind a comma, so that a "]" at the end makes whole JSON of the file.
bool Timeline::Append(const TraceEvent& event) {
    return _file.Write(",\n" + event.Text());
}

/// Gives the thread its name in the file, if that is not the one that it has.
void Timeline::NameThread() {
    char name[16];
    if (::pthread_getname_np(::pthread_self(), name, sizeof name) != 0) return;
    std::string& known = _threads[::gettid()];
    if (known == name) return;
    known = name;
    static_cast<void>(Append(TraceEvent::Name("thread_name", name)));
}

void Timeline::TellFailure() {
    int error = 0;
    std::string path;
    {
        const std::lock_guard<std::mutex> guard(_mutex);
        if (_error == 0) return;
        std::swap(error, _error);
        std::swap(path, _path);
    }
    Say("lyr: %s cannot be written: %s; there is no timeline from here on\n", path.c_str(),
        std::strerror(error));
}

bool Timeline::IsFirst(const std::string& creation) {
    const std::lock_guard<std::mutex> guard(_mutex);
    return _creations.insert(creation).second;
}

// The child has one thread, and a file of its own.
void Timeline::RegisterWithFork() {
    const auto lock = [] { Instance()->_mutex.lock(); };
    const auto unlock = [] { Instance()->_mutex.unlock(); };
    const auto unlockChild = [] {
        Instance()->_threads.clear();
        Instance()->_mutex.unlock();
    };
    static const int isRegistered = ::pthread_atfork(lock, unlock, unlockChild);
    static_cast<void>(isRegistered);
}

}  // namespace lyr::internal

#include "explanation/Reporter.h"
#include "explanation/Timeline.h"
#include "support/Listener.h"
#include "support/Notes.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <new>

namespace lyr {

namespace internal {

namespace {

/// Who listens: nobody, the reporter, the timeline, or both. Before anybody has looked that is
/// unknown.
enum Ears : unsigned { kNone = 0, kReporter = 1, kTimeline = 2, kUnknown = 4 };

constinit std::atomic<unsigned> ears = kUnknown;

bool Hears(Ears one) {
    return (ears.load(std::memory_order_acquire) & one) != 0;
}

/// Gives what there is to hear to those who listen now. The timeline first: it looks at the clock,
/// and the reporter takes the notes away.
class Audience final : public Listener {
public:
    void AfterSearch(const LYRSysTSMetaClass& asked, const GUID& iid, Notes& notes,
                     bool isFound) noexcept override {
        if (Hears(kTimeline)) Timeline::Instance()->AfterSearch(asked, iid, notes, isFound);
        if (Hears(kReporter)) Reporter::Instance()->AfterSearch(asked, iid, notes, isFound);
    }
    void OnFactoryGaveNull(const LYRSysTSMetaClass& asked, const GUID& iid) noexcept override {
        if (Hears(kReporter)) Reporter::Instance()->OnFactoryGaveNull(asked, iid);
    }
    void OnNoImplementation(lyr::Cause cause, const char* asked,
                            const char* implementation) noexcept override {
        if (Hears(kReporter)) {
            Reporter::Instance()->OnNoImplementation(cause, asked, implementation);
        }
    }
    void AfterCreation(Notes& notes, bool isMade) noexcept override {
        if (Hears(kTimeline)) Timeline::Instance()->AfterCreation(notes, isMade);
        if (isMade || !Hears(kReporter)) return;
        const Asked& asked = notes.WhatIsAsked();
        if (asked.clsid != nullptr) {
            Reporter::Instance()->OnNotCreated(*asked.clsid, notes);
        } else {
            Reporter::Instance()->OnNotCreated(asked.className, notes);
        }
    }
    void AfterFile(const FileReading& file) noexcept override {
        if (Hears(kTimeline)) Timeline::Instance()->AfterFile(file);
    }
    void AfterScan(std::chrono::steady_clock::time_point begin) noexcept override {
        if (Hears(kTimeline)) Timeline::Instance()->AfterScan(begin);
    }
    void BeforeLine(const char* path, int line, const char* const* words,
                    int count) noexcept override {
        if (Hears(kReporter)) Reporter::Instance()->BeforeLine(path, line, words, count);
    }
    void AfterLine() noexcept override {
        if (Hears(kReporter)) Reporter::Instance()->AfterLine();
    }
    void OnContradiction(const Contradiction& contradiction) noexcept override {
        if (Hears(kReporter)) Reporter::Instance()->OnContradiction(contradiction);
    }
};

constinit Audience audience;

void TellSum() {
    Reporter* const reporter = Reporter::Instance();
    const std::string sum = reporter->Sum();
    if (!sum.empty()) reporter->Write(sum);
}

/// Has the reporter go by the words; whether it is to listen. Throws std::bad_alloc.
bool SetReporter(const DebugWords& words) {
    Reporter* const reporter = Reporter::Instance();
    if (reporter == nullptr) return false;
    reporter->Set(words);
    static const int isRegistered = std::atexit(&TellSum);
    static_cast<void>(isRegistered);
    return words.explain;
}

/// The same of the timeline. One that nobody has asked for is not made.
bool SetTimeline(const DebugWords& words) {
    if (words.timeline.empty() && !Hears(kTimeline)) return false;
    Timeline* const timeline = Timeline::Instance();
    return timeline != nullptr && timeline->Set(words.timeline);
}

/// Has those listen whom the words ask for.
void Listen(const char* words) noexcept {
    unsigned listening = kNone;
    try {
        const bool isSilent = words == nullptr || *words == '\0';
        const DebugWords read = DebugWords::Of(isSilent ? "" : words);
        if (SetTimeline(read)) listening |= kTimeline;
        if (!isSilent && SetReporter(read)) listening |= kReporter;
    } catch (const std::bad_alloc&) {
        listening = kNone;
    }
    ears.store(listening, std::memory_order_release);
}

void ListenToEnvironment() noexcept {
    {
        // Whoever comes while the words are looked at is not heard, nor this thread itself.
        unsigned unknown = kUnknown;
        if (!ears.compare_exchange_strong(unknown, kNone)) return;
    }
    if (const char* const words = ::secure_getenv("LYRDebug")) Listen(words);
}

bool IsReporting() {
    return CurrentListener() != nullptr && Hears(kReporter);
}

}  // namespace

Listener* CurrentListener() noexcept {
    if (Hears(kUnknown)) ListenToEnvironment();
    return ears.load(std::memory_order_acquire) != kNone ? &audience : nullptr;
}

bool RecallSteps(const std::string& className, const GUID& iid, bool isFound, Notes& notes) {
    if (!IsReporting()) return false;
    auto heard = Reporter::Instance()->StepsOf(className, iid);
    if (!heard) return false;
    const auto holds = [](const std::vector<Step>& steps, Cause cause) {
        return std::any_of(steps.begin(), steps.end(),
                           [=](const Step& step) { return step.cause == cause; });
    };
    const bool isOfFactory = holds(*heard, Cause::kFactoryGaveNull);
    const bool isRemembered = holds(notes.Steps(), Cause::kKnownAbsence);
    if (isFound ? !isOfFactory : isOfFactory || !isRemembered) return false;
    notes.Steps() = std::move(*heard);
    if (isRemembered) notes.Add(Cause::kKnownAbsence, className.c_str(), nullptr);
    return true;
}

}  // namespace internal

inline namespace v1 {

void SetDebug(const char* words) noexcept {
    internal::Listen(words);
}

void Report(const Explanation& explanation) noexcept {
    if (!internal::IsReporting()) return;
    internal::Reporter::Instance()->OnRequired(explanation);
}

}  // namespace v1

}  // namespace lyr

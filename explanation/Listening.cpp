#include "explanation/Reporter.h"
#include "support/Notes.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <iterator>
#include <new>

namespace lyr {

namespace internal {

namespace {

/// Who listens: nobody has looked yet, or nobody, or somebody.
enum class Ear : std::uint8_t { kUnknown, kNone, kReporter };

constinit std::atomic<Ear> ear = Ear::kUnknown;

void TellSum() {
    Reporter* const reporter = Reporter::Instance();
    const std::string sum = reporter->Sum();
    if (!sum.empty()) reporter->Write(sum);
}

/// Has the reporter go by the words, or nobody listen.
void Listen(const char* words) noexcept {
    const bool isSilent = words == nullptr || *words == '\0';
    Reporter* const reporter = isSilent ? nullptr : Reporter::Instance();
    if (reporter == nullptr) {
        ear.store(Ear::kNone, std::memory_order_release);
        return;
    }
    try {
        const DebugWords read = DebugWords::Of(words);
        reporter->Set(read);
        static const int isRegistered = std::atexit(&TellSum);
        static_cast<void>(isRegistered);
        ear.store(read.explain ? Ear::kReporter : Ear::kNone, std::memory_order_release);
    } catch (const std::bad_alloc&) {
        ear.store(Ear::kNone, std::memory_order_release);
    }
}

void ListenToEnvironment() noexcept {
    {
        // Whoever comes while the words are looked at is not heard, nor this thread itself.
        Ear unknown = Ear::kUnknown;
        if (!ear.compare_exchange_strong(unknown, Ear::kNone)) return;
    }
    if (const char* const words = ::secure_getenv("LYRDebug")) Listen(words);
}

}  // namespace

Listener* CurrentListener() noexcept {
    if (ear.load(std::memory_order_acquire) == Ear::kUnknown) ListenToEnvironment();
    return ear.load(std::memory_order_acquire) == Ear::kReporter ? Reporter::Instance() : nullptr;
}

bool RecallSteps(const std::string& className, const GUID& iid, bool isFound, Notes& notes) {
    if (CurrentListener() == nullptr) return false;
    auto heard = Reporter::Instance()->StepsOf(className, iid);
    if (!heard) return false;
    const auto holds = [](const std::vector<Step>& steps, Cause cause) {
        return std::any_of(steps.begin(), steps.end(),
                           [=](const Step& step) { return step.cause == cause; });
    };
    const bool isOfFactory = holds(*heard, Cause::kFactoryGaveNull);
    const bool isRemembered = holds(notes.Steps(), Cause::kKnownAbsence);
    if (isFound ? !isOfFactory : isOfFactory || !isRemembered) return false;
    const auto isOfToday = [](const Step& step) { return step.cause == Cause::kNameOfAnotherId; };
    std::copy_if(notes.Steps().begin(), notes.Steps().end(), std::back_inserter(*heard), isOfToday);
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
    if (internal::CurrentListener() == nullptr) return;
    internal::Reporter::Instance()->OnRequired(explanation);
}

}  // namespace v1

}  // namespace lyr

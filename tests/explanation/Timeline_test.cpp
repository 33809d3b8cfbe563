#include "LYRThrLibraryManager.h"
#include "TestRoads.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <csignal>
#include <map>
#include <nlohmann/json.hpp>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

namespace {

using Json = nlohmann::json;
using Clock = std::chrono::steady_clock;

/// The events of a timeline, which lacks nothing but its end to be JSON.
std::vector<Json> EventsIn(const std::string& path) {
    std::ifstream file(path);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    const Json events = Json::parse(text + "\n]", nullptr, false);
    EXPECT_TRUE(events.is_array()) << text;
    return {events.begin(), events.end()};
}

std::vector<Json> SlicesIn(const std::string& path, const std::string& category = "") {
    std::vector<Json> slices = EventsIn(path);
    std::erase_if(slices, [&](const Json& event) {
        return event["ph"] != "X" || (!category.empty() && event["cat"] != "lyr." + category);
    });
    return slices;
}

/// The slice of that name; null for none.
Json Find(const std::vector<Json>& slices, const std::string& name) {
    for (const Json& slice : slices) {
        if (slice["name"] == name) return slice;
    }
    return {};
}

/// In nanoseconds.
std::pair<long long, long long> SpanOf(const Json& slice) {
    const auto time = [&](const char* key) {
        return std::llround(slice[key].get<double>() * 1000);
    };
    return {time("ts"), time("ts") + time("dur")};
}

bool IsAround(const Json& outer, const Json& inner) {
    const auto [outerBegin, outerEnd] = SpanOf(outer);
    const auto [begin, end] = SpanOf(inner);
    return outer["tid"] == inner["tid"] && outerBegin <= begin && end <= outerEnd;
}

/// Checks that of two slices of one thread one is around the other, or they do not meet.
void ExpectNested(const std::vector<Json>& slices) {
    for (std::size_t i = 0; i < slices.size(); ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            const Json& a = slices[i];
            const Json& b = slices[j];
            if (a["tid"] != b["tid"] || IsAround(a, b) || IsAround(b, a)) continue;
            const auto [aBegin, aEnd] = SpanOf(a);
            const auto [bBegin, bEnd] = SpanOf(b);
            EXPECT_TRUE(aEnd <= bBegin || bEnd <= aBegin) << a << "\n" << b;
        }
    }
}

/// A folder with dictionary files, and a timeline of this process in it.
struct TimedFiles : Files {
    explicit TimedFiles(const std::string& pairs) : Files(pairs) {}
    ~TimedFiles() { lyr::SetDebug(nullptr); }
    TimedFiles(const TimedFiles&) = delete;
    TimedFiles& operator=(const TimedFiles&) = delete;

    std::string Timeline() const { return path + "/timeline.json"; }
    void Begin() const { lyr::SetDebug(("timeline=" + Timeline()).c_str()); }
};

bool Request(const std::string& className, unsigned iid) {
    LYRSysTSMetaClass* const meta = Class(className.c_str(), ImplementationClass);
    return meta->ToMetaClassBase()->QueryDerivationInterfaceFactory(Iid(iid)) != nullptr;
}

int StatusOf(pid_t child) {
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    return status;
}

constexpr const char* kNest =
    "Nest1 I0 LyrTestNest1\nNest2 I0 LyrTestNest2\nNest3 I0 LyrTestNest3\n"
    "Gadget I1 LyrTestParts\nThing CreateInterface LyrTestParts\nLost I0 LyrNoSuchLibrary\n";

TEST(Timeline, NestsOnEachThreadOverAStartOfManyWithLoadsInsideOfLoads) {
    const TimedFiles files(kNest);
    files.Begin();
    std::vector<std::thread> threads;
    threads.emplace_back([] { EXPECT_TRUE(Request("Nest1", 0)); });
    for (unsigned t = 0; t < 3; ++t) {
        threads.emplace_back([] {
            EXPECT_TRUE(Request("Gadget", 1));
            int argument = 0;
            EXPECT_EQ(LYRSysTSCreateExternalObject("Thing", nullptr, &argument), &argument);
            for (unsigned i = 2; i < 9; ++i) EXPECT_FALSE(Request("Gadget", i));
        });
    }
    for (std::thread& thread : threads) thread.join();

    const std::vector<Json> slices = SlicesIn(files.Timeline());
    ExpectNested(slices);
    // The innermost of all, and what is around it.
    const Json innermost = Find(slices, "load LyrTestNest3");
    for (const char* name : {"I0 for a Nest3", "load LyrTestNest2", "I0 for a Nest2",
                             "load LyrTestNest1", "I0 for a Nest1"}) {
        EXPECT_TRUE(IsAround(Find(slices, name), innermost)) << name;
    }
    EXPECT_FALSE(IsAround(Find(slices, "I1 for a Gadget"), innermost));
    const auto [begin, end] = SpanOf(Find(slices, "load LyrTestNest1"));
    EXPECT_GE(end - begin, 6'000'000) << "each of the three sleeps for two milliseconds";
    // The files are read once, inside of a request; each is a slice in that.
    const std::vector<Json> scans = SlicesIn(files.Timeline(), "scan");
    ASSERT_EQ(scans.size(), 1U);
    for (const Json& file : SlicesIn(files.Timeline(), "file")) {
        EXPECT_TRUE(IsAround(scans.front(), file)) << file;
    }
}

TEST(Timeline, NamesRequestsCreationsFilesAndLoadsWithWhatTheyCameTo) {
    const TimedFiles files(kNest);
    files.Write("b.dicts", "Gadget I9 LyrTestParts\nbad line\nGadget I8 LyrTestParts\n");
    files.Begin();
    ExpectErrors("Problem reading dico : " + files.path + "/b.dicts line 2\n", [] {
        EXPECT_TRUE(Request("Gadget", 1));
        EXPECT_FALSE(Request("Lost", 0));
        EXPECT_FALSE(Request("Gadget", 8));
        EXPECT_EQ(LYRSysTSCreateExternalObject("No\"b\xFFody\n\xC3\xA9", nullptr, nullptr),
                  nullptr);
        EXPECT_NE(LYRThrLibraryManager::LoadLibrary("LyrTestHook"), nullptr);
        // An answer that is known is no event.
        EXPECT_TRUE(Request("Gadget", 1));
    });
    const std::vector<Json> slices = SlicesIn(files.Timeline());
    const auto arguments = [&](const char* name) { return Find(slices, name)["args"]; };
    const Json found = {{"class", "Gadget"},
                        {"interface", "I1"},
                        {"id", "{A0000001-0000-0000-0000-000000000000}"},
                        {"found", true},
                        {"library", "LyrTestParts"},
                        {"function", "LYRSysTSCreateI1Gadget"}};
    EXPECT_EQ(arguments("I1 for a Gadget"), found);
    EXPECT_EQ(arguments("I8 for a Gadget")["cause"], "NoEntry");
    EXPECT_EQ(SlicesIn(files.Timeline(), "request").size(), 3U);

    const Json lost = arguments("load LyrNoSuchLibrary");
    EXPECT_EQ(lost["loaded"], false);
    EXPECT_TRUE(Has(lost["words"], "libLyrNoSuchLibrary.so: cannot open")) << lost;
    EXPECT_EQ(lost["class"].get<std::string>() + lost["interface"].get<std::string>(), "LostI0");
    const Json parts = arguments("load LyrTestParts");
    EXPECT_TRUE(Has(parts["file"], "/libLyrTestParts.so")) << parts;
    EXPECT_FALSE(arguments("load LyrTestHook").contains("class"));

    const Json nobody = arguments("make No\"b\xEF\xBF\xBDody\n\xC3\xA9");
    EXPECT_EQ(nobody["made"], false);
    const Json file = arguments((files.path + "/b.dicts").c_str());
    EXPECT_EQ(file["bad line"], 2);
    EXPECT_EQ(arguments(files.Pairs().c_str())["lines"], 6);
    EXPECT_FALSE(arguments(files.Pairs().c_str()).contains("error"));
}

TEST(Timeline, OfACreationThatIsRepeatedTheFirstIsEnough) {
    const TimedFiles files(kNest);
    files.Begin();
    int argument = 0;
    for (int i = 0; i < 50; ++i) LYRSysTSCreateExternalObject("Thing", nullptr, &argument);
    const std::vector<Json> creations = SlicesIn(files.Timeline(), "creation");
    ASSERT_FALSE(creations.empty());
    EXPECT_EQ(creations.front()["args"]["library"], "LyrTestParts");
    // But for those that have taken a millisecond.
    EXPECT_TRUE(std::all_of(creations.begin() + 1, creations.end(),
                            [](const Json& slice) { return slice["dur"] >= 1000; }));
}

/// How long the lock keeps another thread waiting that is held for so long, once it waits.
Clock::duration WaitFor(LYRSmartMutex& mutex, Clock::duration held) {
    std::atomic<bool> isWaiting = false;
    Clock::duration waited{};
    mutex.LockF();
    std::thread other([&] {
        isWaiting = true;
        const auto begin = Clock::now();
        mutex.LockF();
        waited = Clock::now() - begin;
        mutex.UnlockF();
    });
    while (!isWaiting) std::this_thread::yield();
    std::this_thread::sleep_for(held);
    mutex.UnlockF();
    other.join();
    return waited;
}

std::string AddressOf(const LYRSmartMutex& mutex) {
    char text[24];
    std::snprintf(text, sizeof text, "%p", static_cast<const void*>(&mutex));
    return text;
}

TEST(Timeline, ShowsLongWaitsForLocksAndNoShortOnes) {
    const TimedFiles files("");
    files.Begin();
    EXPECT_GE(WaitFor(*GetGlobalDicoMutex(), std::chrono::milliseconds(20)),
              std::chrono::milliseconds(1));
    LYRSmartMutex ofObject(0);
    WaitFor(ofObject, std::chrono::milliseconds(20));
    std::vector<Json> waits = SlicesIn(files.Timeline(), "wait");
    ASSERT_EQ(waits.size(), 2U);
    EXPECT_EQ(waits[0]["args"]["lock"], "dictionary");
    EXPECT_EQ(waits[1]["args"]["lock"], "object or class");
    EXPECT_EQ(waits[1]["args"]["address"], AddressOf(ofObject));
    EXPECT_NE(waits[0]["tid"], ::gettid());
    EXPECT_GE(waits[1]["dur"], 1000);
    // On a busy machine a short wait may take long.
    bool isShort = false;
    for (int i = 0; i < 200 && !isShort; ++i) {
        LYRSmartMutex brief(0);
        const std::size_t before = SlicesIn(files.Timeline(), "wait").size();
        isShort = WaitFor(brief, std::chrono::microseconds(200)) < std::chrono::milliseconds(1);
        const std::size_t now = SlicesIn(files.Timeline(), "wait").size();
        EXPECT_TRUE(!isShort || now == before);
    }
    EXPECT_TRUE(isShort);
}

TEST(Timeline, OpensAfterItsProcessWasKilledInTheMiddle) {
    const TimedFiles files(kNest);
    const pid_t child = ::fork();
    if (child == 0) {
        files.Begin();
        Request("Nest1", 0);
        std::thread other([] { Request("Gadget", 1); });
        other.join();
        ::raise(SIGKILL);
    }
    EXPECT_EQ(WTERMSIG(StatusOf(child)), SIGKILL);
    const std::vector<Json> slices = SlicesIn(files.Timeline());
    EXPECT_TRUE(Find(slices, "load LyrTestNest3").is_object());
    EXPECT_TRUE(Find(slices, "I1 for a Gadget").is_object());
    EXPECT_EQ(slices.back()["pid"], child);
}

TEST(Timeline, EachProcessHasAFileOfItsOwn) {
    const TimedFiles files(kNest);
    int begun[2];
    ASSERT_EQ(::pipe(begun), 0);
    // One that asks for the same file while another process writes it, and one that is forked off.
    const pid_t second = ::fork();
    if (second == 0) {
        char byte = 0;
        static_cast<void>(::read(begun[0], &byte, 1));
        files.Begin();
        Request("Lost", 0);
        ::_exit(0);
    }
    files.Begin();
    EXPECT_TRUE(Request("Gadget", 1));
    ASSERT_EQ(::write(begun[1], "!", 1), 1);
    const pid_t forked = ::fork();
    if (forked == 0) {
        Request("Nest3", 0);
        ::_exit(0);
    }
    for (const pid_t child : {second, forked}) {
        EXPECT_EQ(StatusOf(child), 0);
        const std::vector<Json> events = EventsIn(files.Timeline() + "." + std::to_string(child));
        ASSERT_FALSE(events.empty());
        EXPECT_EQ(events.front()["name"], "process_name");
        EXPECT_EQ(events[1]["name"], "thread_name");
        const char* const load = child == second ? "load LyrNoSuchLibrary" : "load LyrTestNest3";
        EXPECT_TRUE(Find(events, load).is_object());
        for (const Json& event : events) EXPECT_EQ(event["pid"], child);
    }
    for (const Json& event : EventsIn(files.Timeline())) EXPECT_EQ(event["pid"], ::getpid());
    ::close(begun[0]);
    ::close(begun[1]);
}

TEST(Timeline, GoesOnInItsFileAndBeginsAnotherOneAnew) {
    const TimedFiles files(kNest);
    const std::string other = files.Write("other.json", "of yesterday");
    files.Begin();
    EXPECT_TRUE(Request("Gadget", 1));
    lyr::SetDebug(nullptr);
    EXPECT_FALSE(Request("Gadget", 2));
    files.Begin();
    EXPECT_FALSE(Request("Gadget", 3));
    const std::vector<Json> slices = SlicesIn(files.Timeline(), "request");
    ASSERT_EQ(slices.size(), 2U);
    EXPECT_EQ(slices[1]["name"], "I3 for a Gadget");
    lyr::SetDebug(("timeline=" + other).c_str());
    EXPECT_FALSE(Request("Gadget", 4));
    EXPECT_EQ(SlicesIn(other).size(), 1U);
}

TEST(Timeline, SaysNothingUnlessItCannotWriteOrIsAskedTo) {
    const TimedFiles files(kNest);
    ExpectErrors("", [&] {
        files.Begin();
        EXPECT_FALSE(Request("Gadget", 2));
        EXPECT_EQ(LYRSysTSCreateExternalObject("Nobody", nullptr, nullptr), nullptr);
        // Nor is what is required told, which is the reporter's.
        lyr::Report(lyr::ExplainRequest("Gadget", "I2"));
    });
    const auto told = [](const std::string& words) {
        return ErrorsOf([&] {
            lyr::SetDebug(words.c_str());
            EXPECT_FALSE(Request("Gadget", 3));
            LYRSysTSCreateExternalObject("Nobody", nullptr, nullptr);
        });
    };
    const std::string end = "; there is no timeline from here on\n";
    EXPECT_EQ(told("timeline=/dev/full"),
              "lyr: /dev/full cannot be written: No space left on device" + end);
    EXPECT_EQ(told("timeline=" + files.path + "/none/t"),
              "lyr: " + files.path + "/none/t cannot be written: No such file or directory" + end);
    EXPECT_EQ(told("timeline,timeline=,help"),
              told("help") +
                  "lyr: LYRDebug has no word \"timeline\"; LYRDebug=help lists them\n"
                  "lyr: LYRDebug has no word \"timeline=\"; LYRDebug=help lists them\n");
    EXPECT_TRUE(Has(told("help"), "timeline=PATH"));
    const std::string both = told("explain,timeline=" + files.path + "/both.json");
    EXPECT_TRUE(Has(both, "lyr: no Nobody is made")) << both;
    EXPECT_TRUE(Find(SlicesIn(files.path + "/both.json"), "make Nobody").is_object());
    EXPECT_EQ(told("explain,timelin=/tmp/x"),
              "lyr: LYRDebug has no word \"timelin=/tmp/x\"; LYRDebug=help lists them\n");
}

}  // namespace

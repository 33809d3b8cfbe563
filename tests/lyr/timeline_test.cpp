#include "Workshop.h"

#include <nlohmann/json.hpp>

namespace {

using Json = nlohmann::json;

/// An event as LYRDebug=timeline writes it, in microseconds; `rest` are the arguments.
std::string Slice(const std::string& name, const std::string& category, int thread, double begin,
                  double length, const std::string& rest = "") {
    return R"({"name":")" + name + R"(","cat":"lyr.)" + category + R"(","ph":"X","ts":)" +
           std::to_string(begin) + R"(,"dur":)" + std::to_string(length) + R"(,"pid":7,"tid":)" +
           std::to_string(thread) + R"(,"args":{)" + rest + "}}";
}

std::string Load(const std::string& library, int thread, double begin, double length,
                 const std::string& rest = "") {
    return Slice("load " + library, "load", thread, begin, length,
                 R"("library":")" + library + R"(","file":"/l/lib)" + library + R"(.so")" + rest);
}

std::string TraceOf(const std::vector<std::string>& events) {
    std::string text =
        "[\n"
        R"({"name":"process_name","ph":"M","pid":7,"tid":7,"args":{"name":"app"}})";
    for (const std::string& event : events) text += ",\n" + event;
    return text;
}

// Thread 7 makes a Plan, for which A is loaded, which needs B while it is initialised, twice, and B
// needs C. Thread 8 asks for D at the same time, and waits for a lock. Written as a process does
// it, each at its end.
const std::vector<std::string> kStart = {
    R"({"name":"thread_name","ph":"M","pid":7,"tid":8,"args":{"name":"worker"}})",
    Load("C", 7, 1500, 100),
    Slice("I3 for a Third", "request", 7, 1490, 120),
    Load("B", 7, 1400, 1000),
    Slice("I2 for a Second", "request", 7, 1300, 1200),
    Load("B", 7, 2600, 2),
    Load("A", 7, 1200, 2000),
    Slice("make Plan", "creation", 7, 1000, 2300),
    Slice("wait: dictionary", "wait", 8, 1600, 1250.25, R"("lock":"dictionary","address":"0x1")"),
    Load("D", 8, 3000, 1500, R"(,"class":"Fourth","interface":"I4")"),
};

TEST(Timeline, SumsUpWhatALookAtThePictureWouldShow) {
    const Workshop shop;
    shop.Write("t.json", TraceOf(kStart));
    const Outcome outcome = shop.Lyr("timeline t.json --count 3");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(
        outcome.text,
        "app: 3.500 ms from the first event to the end of the last, in 2 threads\n"
        "\n"
        "  number     all threads            wall\n"
        "       5        3.500 ms        3.300 ms  loads\n"
        "       2        1.200 ms        1.200 ms  first answers\n"
        "       1        2.300 ms        2.300 ms  creations\n"
        "       1        1.250 ms        1.250 ms  waits for locks\n"
        "\n"
        "The most expensive loads, 3 of 4\n"
        "         alone    with its own\n"
        "      1.500 ms        1.500 ms  D: /l/libD.so\n"
        "                                first asked for after 2.000 ms by thread worker (8), "
        "in I4 for a Fourth\n"
        "      0.998 ms        2.000 ms  A: /l/libA.so\n"
        "                                first asked for after 0.200 ms by thread 7, "
        "in make Plan\n"
        "      0.902 ms        1.002 ms  B, 2 times: /l/libB.so\n"
        "                                first asked for after 0.400 ms by thread 7, "
        "in I2 for a Second, in load A, in make Plan\n"
        "\n"
        "The longest waits for locks\n"
        "      1.250 ms  dictionary 0x1\n"
        "                after 0.600 ms by thread worker (8)\n");
    const Json json = Json::parse(shop.Lyr("timeline t.json --json").text);
    EXPECT_EQ(json["format"], 1);
    EXPECT_EQ(json["loads"][2]["self_us"], 902);
    EXPECT_EQ(json["loads"][3]["askers"].size(), 5U);
    EXPECT_EQ(json["waits"][0]["length_us"], 1250.25);
}

TEST(Timeline, ReadsWhatAKilledProcessHasWritten) {
    const Workshop shop;
    const std::string whole = TraceOf(kStart);
    shop.Write("cut.json", whole.substr(0, whole.size() - 20));
    const Outcome cut = shop.Lyr("timeline cut.json");
    EXPECT_EQ(cut.status, 0);
    EXPECT_NE(cut.text.find("stops in the middle"), std::string::npos) << cut.text;
    EXPECT_EQ(cut.text.find("D: /l"), std::string::npos) << cut.text;
    // One that somebody has closed says what the open one does.
    shop.Write("open.json", whole);
    shop.Write("closed.json", whole + "\n]\n");
    const Outcome closed = shop.Lyr("timeline closed.json");
    EXPECT_EQ(closed.status, 0) << closed.text;
    EXPECT_EQ(closed.text, shop.Lyr("timeline open.json").text);
}

TEST(Timeline, SaysWhatIsBroken) {
    const Workshop shop;
    const auto said = [&](const std::string& text) {
        shop.Write("t.json", text);
        const Outcome outcome = shop.Lyr("timeline t.json");
        EXPECT_EQ(outcome.status, 1) << outcome.text;
        return outcome.text;
    };
    const std::string foreign =
        "lyr: t.json is no timeline; LYRDebug=timeline=PATH has a program write one\n";
    EXPECT_EQ(said(""), foreign);
    EXPECT_EQ(said("\x7F"
                   "ELF"),
              foreign);
    EXPECT_EQ(said("[\n"), foreign);
    EXPECT_EQ(said(TraceOf({R"({"ph":"X","cat":"v8"})"})), foreign);
    EXPECT_EQ(said(TraceOf({"{\"name\"", Load("A", 7, 1, 2)})),
              "t.json:3: error: this is no event of a trace\n");
    EXPECT_EQ(said(TraceOf({"12", Load("A", 7, 1, 2)})),
              "t.json:3: error: this is no event of a trace\n");
    EXPECT_EQ(said(TraceOf({Load("A", 7, 1, -2)})),
              "t.json:3: error: the event ends before it begins\n");
    EXPECT_EQ(said(TraceOf({Load("A", 7, 1e18, 2)})), "t.json:3: error: no time is that long\n");
    EXPECT_EQ(said(TraceOf({Load("A", 7, 10, 10), Load("B", 7, 15, 10)})),
              "t.json:4: error: the event goes on after the one around it\n");
    const std::string lacking = said(TraceOf({R"({"ph":"X","cat":"lyr.load","ts":1,"dur":"2"})"}));
    EXPECT_EQ(lacking.substr(0, 45), "t.json:3: error: the event is not whole: [jso") << lacking;
    EXPECT_EQ(shop.Lyr("timeline none.json").text,
              "lyr: none.json cannot be read: No such file or directory\n");
    EXPECT_EQ(shop.Lyr("timeline").status, 2);
}

}  // namespace

#include "Workshop.h"

#include <chrono>
#include <cstdlib>
#include <nlohmann/json.hpp>

namespace {

const std::string kId = "{11111111-0000-0000-0000-00000000000A}";

/// Builds a library with the entry point of the class, which runs the code when it is loaded.
void BuildRunning(const Workshop& shop, const std::string& name, const std::string& className,
                  const std::string& code) {
    shop.Build("lib" + name + ".so", {}, {"LYRSysTSCreateIShape" + className},
               "#include <cstdio>\n#include <cstdlib>\n#include <unistd.h>\n"
               "__attribute__((constructor)) static void Run() { " +
                   code + " }",
               "-lc");
}

void WriteDictionary(const Workshop& shop, const std::string& lines) {
    shop.Run("mkdir -p d");
    shop.Write("d/i.iidts", kId + " IShape\n");
    shop.Write("d/p.dicts", lines);
}

Outcome Check(const Workshop& shop, const std::string& options) {
    return shop.Run("LD_LIBRARY_PATH= '" LYR_PROGRAM "' check -d d -l . " + options);
}

bool Holds(const Outcome& outcome, const std::string& text) {
    return outcome.text.find(text) != std::string::npos;
}

TEST(Load, EachEndOfALibraryIsAFindingAndTheCheckGoesOn) {
    const Workshop shop;
    BuildRunning(shop, "Aborts", "A", R"(puts("first\nhalf a word"); fflush(stdout); abort();)");
    BuildRunning(shop, "Ends", "B", "_exit(3);");
    BuildRunning(shop, "Hangs", "C", "for (;;) pause();");
    BuildRunning(shop, "Well", "D", "puts(\"not ours\");");
    // What this machine's loader refuses, and the files do not tell.
    shop.Build("libTls.so", {}, {"LYRSysTSCreateIShapeE"},
               "__attribute__((tls_model(\"initial-exec\"))) thread_local char room[1 << 20]; "
               "extern \"C\" char* Room() { return room; }");
    WriteDictionary(shop,
                    "A IShape libAborts\nB IShape libEnds\nC IShape libHangs\nD IShape libWell\n"
                    "E IShape libTls\n");
    EXPECT_EQ(Check(shop, "").text, "0 errors, 0 warnings in 2 files, 5 libraries\n");

    const Outcome outcome = Check(shop, "--load --load-timeout 2");
    EXPECT_EQ(outcome.status, 1);
    const std::size_t refusal = outcome.text.find(
        "d/p.dicts:5: error: libTls.so (./libTls.so) "
        "does not load: ");
    ASSERT_NE(refusal, std::string::npos) << outcome.text;
    EXPECT_EQ(outcome.text.substr(0, refusal),
              "d/p.dicts:1: error: libAborts.so (./libAborts.so) ends the process by signal 6, "
              "Aborted while it is loaded; look at what it does when it is initialised "
              "[load-crash]\n"
              "./libAborts.so: note: its last line was: half a word\n"
              "d/p.dicts:2: error: libEnds.so (./libEnds.so) ends the process with status 3 while "
              "it is loaded; look at what it does when it is initialised [load-exit]\n"
              "d/p.dicts:3: error: libHangs.so (./libHangs.so) is not done after 2 seconds while "
              "it is loaded; look at what it does when it is initialised [load-timeout]\n");
    EXPECT_TRUE(Holds(outcome, " [load-refused]\n4 errors, "));
}

TEST(Load, NothingStaysBehindAChild) {
    const Workshop shop;
    BuildRunning(shop, "Forks", "A",
                 "if (fork() == 0) { for (;;) pause(); } FILE* f = fopen(\"pid\", \"w\"); "
                 "fprintf(f, \"%d\", getpgrp()); fclose(f); for (;;) pause();");
    WriteDictionary(shop, "A IShape libForks\n");
    const auto start = std::chrono::steady_clock::now();
    EXPECT_TRUE(Holds(Check(shop, "--load --load-timeout 1"), "[load-timeout]"));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(30));
    const int group = std::atoi(shop.Read("pid").c_str());
    ASSERT_GT(group, 1);
    // Those that are killed are soon reaped by whoever has taken them over.
    const Outcome left = shop.Run(
        "for i in 1 2 3 4 5 6 7 8 9 10; do ps -eo pgid=,stat= | awk "
        "'$1 == " +
        std::to_string(group) + " && $2 !~ /Z/' | grep . || exit 0; sleep 0.2; done; exit 1");
    EXPECT_EQ(left.status, 0) << left.text;
}

TEST(Load, WhatOnlyCodeTellsIsKnownThen) {
    const Workshop shop;
    const std::string path =
        "-I'" LYR_INCLUDE_DIR "' -I'" LYR_INCLUDE_DIR "/../platform/include' " LYR_ASKER_LIBRARIES;
    shop.Build("libA.so", {}, {"LYRSysTSCreateIShapeLayer", "LYRSysTSCreateILeafCircle"},
               "#include \"LYRComponentModel.h\"\n"
               "__attribute__((constructor)) static void Run() {\n"
               "  LYRSysTSMetaClass* layer = LYRSysTSFindOrCreateMetaObject(\"Layer\", "
               "KeptExtension, nullptr, nullptr, nullptr);\n"
               "  LYRSysTSMetaClassExt::AddExtendedComponent(layer, \"Circle\");\n"
               "  static const GUID leaf = {1, 2, 3, {}};\n"
               "  LYRSysTSFindOrCreateMetaObject(\"ILeaf\", PlainClass, &leaf, nullptr, nullptr);\n"
               "}\n",
               path);
    WriteDictionary(shop,
                    "Circle IShape libA EXTENDED_BY Layer\nSquare IShape libA EXTENDED_BY Layer\n"
                    "Oval IShape libA EXTENDED_BY Rim\nCircle IOther libA ITFLEAF ILeaf\n");
    shop.Write("d/j.iidts", "{11111111-0000-0000-0000-00000000000B} IOther\n");
    const Outcome outcome = Check(shop, "--load --ignore no-entry-point");
    EXPECT_TRUE(Holds(outcome, "d/p.dicts:2: error: the extension Layer does not extend Square"))
        << outcome.text;
    EXPECT_TRUE(Holds(outcome,
                      "d/p.dicts:3: error: libA.so (./libA.so) brings no meta-object of "
                      "the extension Rim"));
    EXPECT_TRUE(Holds(outcome,
                      "d/p.dicts:4: error: the leaf interface ILeaf is not derived from "
                      "IOther"));
    EXPECT_FALSE(Holds(outcome, "d/p.dicts:1: error"));

    const auto explain = [&](const std::string& arguments) {
        return shop.Run("LD_LIBRARY_PATH= '" LYR_PROGRAM "' explain -d d -l . " + arguments);
    };
    EXPECT_EQ(explain("Circle IShape").status, 3);
    const Outcome loaded = explain("Circle IShape --load");
    EXPECT_EQ(loaded.text.substr(0, loaded.text.find('\n')), "lyr: IShape for a Circle: yes");
    EXPECT_EQ(loaded.status, 0);
    const auto json = nlohmann::json::parse(explain("Circle IShape --load --json").text);
    EXPECT_EQ(json["answer"], "yes");
    EXPECT_EQ(json["loaded"].get<std::string>().find("lyr: IShape for a Circle: yes\n"), 0U);
}

TEST(Load, AnEndInTheMiddleOfARequestIsTold) {
    const Workshop shop;
    BuildRunning(shop, "Ends", "A", "_exit(3);");
    WriteDictionary(shop, "A IShape libEnds\n");
    const Outcome outcome = shop.Lyr("explain -d d -l . A IShape --load");
    EXPECT_TRUE(Holds(outcome, "a process that asks ends the process with status 3"))
        << outcome.text;
}

TEST(Load, IsWrongUsageForAnotherImageAndWithoutTime) {
    const Workshop shop;
    WriteDictionary(shop, "");
    EXPECT_EQ(Check(shop, "--load --root .").status, 2);
    EXPECT_EQ(Check(shop, "--load --load-timeout 0").status, 2);
    EXPECT_EQ(Check(shop, "--load-timeout 3").status, 2);
}

}  // namespace

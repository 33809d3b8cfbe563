#include "Workshop.h"

#include <nlohmann/json.hpp>
#include <sstream>

namespace {

// What the shell's text of a case may use: lib FILE CODE [OPTION...] builds a library, program
// [OPTION...] the program that asks, which is built without options before.
const std::string kTools = R"(
export LD_LIBRARY_PATH=$PWD/loaderpath
export LC_ALL=C
lib() { f=$1; code=$2; shift 2
  printf '%s\n' "$code" | ')" LYR_COMPILER
                           R"(' -x c++ -shared -fPIC -nostdlib -o "$f" - -x none "$@"; }
program() { ')" LYR_COMPILER R"(' )" LYR_COMPILER_FLAGS R"( -o asker ')" LYR_ASKER
                           R"(' -rdynamic "$@" )" LYR_ASKER_LIBRARIES R"(; }
shape='extern "C" void* LYRSysTSCreateIShapeCircle(void* p) { return p; }'
mkdir d e libs loaderpath
echo '{11111111-0000-0000-0000-00000000000A} IShape' >d/i.iidts
echo 'Circle IShape libA' >d/p.dicts
)";

struct Case {
    const char* name;
    /// What is done in the shop: makes libraries, dictionaries, perhaps another program.
    const char* shell;
    /// The findings, one a line, as "FILE:LINE severity kind".
    const char* found;
    bool answers;
    const char* asked = "Circle IShape";
    const char* options = "";
    /// Whether the answer can be told without loading anything.
    bool isKnown = true;
};

const Case kCases[] = {
    {"all is well", "lib libs/libA.so \"$shape\"", "", true},
    {"LD_LIBRARY_PATH", "lib loaderpath/libA.so \"$shape\"", "", true},
    {"a name without lib", "lib libs/libA.so \"$shape\"; echo Circle IShape A >d/p.dicts", "",
     true},
    {"the whole name", "lib libs/libA.so \"$shape\"; echo Circle IShape libA.so >d/p.dicts", "",
     true},
    {"a path", "lib libs/libA.so \"$shape\"; echo Circle IShape ./libs/A >d/p.dicts", "", true},
    {"a path that begins with lib",
     "lib libs/libA.so \"$shape\"; echo Circle IShape libs/A >d/p.dicts",
     "d/p.dicts:1 error library-not-found", false},
    {"a versioned link",
     "lib libs/libA.so.1.2 \"$shape\"; ln -s libA.so.1.2 libs/libA.so; echo Circle IShape A.so.1.2 "
     ">>d/p.dicts; sed -i 1d d/p.dicts",
     "", true},
    {"no library", "lib libs/liba.so \"$shape\"", "d/p.dicts:1 error library-not-found", false},
    {"text", "echo text >libs/libA.so", "d/p.dicts:1 error no-library", false},
    {"empty", ": >libs/libA.so", "d/p.dicts:1 error no-library", false},
    {"cut short", "lib a \"$shape\"; head -c 4200 a >libs/libA.so", "d/p.dicts:1 error no-library",
     false},
    {"stripped of its sections",
     "lib libs/libA.so \"$shape\"; dd if=/dev/zero of=libs/libA.so bs=1 seek=40 count=8 "
     "conv=notrunc; dd if=/dev/zero of=libs/libA.so bs=1 seek=58 count=6 conv=notrunc",
     "", true},
    {"another processor",
     "lib libs/libA.so \"$shape\"; printf '\\010\\000' | dd of=libs/libA.so bs=1 seek=18 "
     "conv=notrunc",
     "d/p.dicts:1 error other-processor", false},
    {"another processor's is passed over",
     "lib loaderpath/libA.so \"$shape\"; cp loaderpath/libA.so libs; printf '\\010\\000' | dd "
     "of=libs/libA.so bs=1 seek=18 conv=notrunc",
     "", true},
    {"a program", "program -pie; cp asker libs/libA.so", "d/p.dicts:1 error no-library", false},
    {"forbidden to load", "lib libs/libA.so \"$shape\" -Wl,-z,nodlopen",
     "d/p.dicts:1 error no-library", false},
    {"a dependency by its new run path",
     "mkdir libs/deep; lib libs/deep/libD.so 'int d = 1;' -Wl,-soname,libD.so.1; mv "
     "libs/deep/libD.so libs/deep/libD.so.1; lib libs/libA.so \"$shape extern int d; int* a = "
     "&d;\" "
     "libs/deep/libD.so.1 '-Wl,-rpath,$ORIGIN/deep'",
     "", true},
    {"a dependency by the old run path of who needs who needs it",
     "mkdir libs/deep; lib libs/deep/libE.so 'int e = 1;' -Wl,-soname,libE.so; lib "
     "libs/deep/libD.so "
     "'extern int e; int* d = &e;' libs/deep/libE.so -Wl,-soname,libD.so; lib libs/libA.so "
     "\"$shape extern int* d; int** a = &d;\" libs/deep/libD.so "
     "'-Wl,--disable-new-dtags,-rpath,$ORIGIN/deep' -Wl,--allow-shlib-undefined",
     "", true},
    {"a new run path is that of its file alone",
     "mkdir libs/deep; lib libs/deep/libE.so 'int e = 1;' -Wl,-soname,libE.so; lib "
     "libs/deep/libD.so "
     "'extern int e; int* d = &e;' libs/deep/libE.so -Wl,-soname,libD.so; lib libs/libA.so "
     "\"$shape extern int* d; int** a = &d;\" libs/deep/libD.so "
     "'-Wl,--enable-new-dtags,-rpath,$ORIGIN/deep' -Wl,--allow-shlib-undefined",
     "d/p.dicts:1 error missing-dependency", false},
    {"two dependencies are missing",
     "lib libD.so 'int d;' -Wl,-soname,libD.so; lib libE.so 'int e;' -Wl,-soname,libE.so; lib "
     "libs/libA.so \"$shape extern int d, e; int* a[] = {&d, &e};\" libD.so libE.so; rm libD.so "
     "libE.so",
     "d/p.dicts:1 error missing-dependency\nd/p.dicts:1 error missing-dependency", false},
    {"an undefined symbol", "lib libs/libA.so \"$shape extern int gone; int* a = &gone;\"",
     "d/p.dicts:1 error undefined-symbol", false, "Circle IShape", "-p asker"},
    {"an undefined symbol without the program to look at",
     "lib libs/libA.so \"$shape extern int gone; int* a = &gone;\"",
     "d/p.dicts:1 note undefined-symbol", false, "Circle IShape", "", false},
    {"a weak symbol",
     "lib libs/libA.so \"$shape extern __attribute__((weak)) int gone; int* a = &gone;\"", "", true,
     "Circle IShape", "-p asker"},
    {"a symbol of the program",
     "lib libs/libA.so \"$shape extern \\\"C\\\" void OfTheProgram(); void (*a)() = "
     "OfTheProgram;\"",
     "", true, "Circle IShape", "-p asker"},
    {"a version that is gone",
     "echo 'V1 {}; V2 { d; };' >map; lib libs/libD.so 'extern \"C\" { int d; }' "
     "-Wl,-soname,libD.so "
     "-Wl,--version-script=map; lib libs/libA.so \"$shape extern \\\"C\\\" int d; int* a = &d;\" "
     "libs/libD.so; echo 'V1 { d; };' >map; lib libs/libD.so 'extern \"C\" { int d; }' "
     "-Wl,-soname,libD.so -Wl,--version-script=map",
     "d/p.dicts:1 error missing-version", false},
    {"the program's old run path",
     "program -Wl,--disable-new-dtags '-Wl,-rpath,$ORIGIN/own'; mkdir own; lib own/libA.so "
     "\"$shape\"",
     "", true, "Circle IShape", "-p asker"},
    {"the program's new run path does not count",
     "program -Wl,--enable-new-dtags '-Wl,-rpath,$ORIGIN/own'; mkdir own; lib own/libA.so "
     "\"$shape\"",
     "d/p.dicts:1 error library-not-found", false, "Circle IShape", "-p asker"},
    {"what the program is linked with is there already",
     "mkdir own; lib own/libA.so \"$shape\" -Wl,-soname,libA.so; program -Wl,--no-as-needed "
     "own/libA.so '-Wl,--enable-new-dtags,-rpath,$ORIGIN/own'",
     "", true, "Circle IShape", "-p asker"},
    {"the system's folders", "echo Circle IShape m.so.6 >d/p.dicts",
     "d/p.dicts:1 error no-entry-point", false},
    {"a hidden function", "lib libs/libA.so \"$shape\" -fvisibility=hidden",
     "d/p.dicts:1 error no-entry-point", false},
    {"a C++ function", "lib libs/libA.so 'void* LYRSysTSCreateIShapeCircle(void* p) { return p; }'",
     "d/p.dicts:1 error no-entry-point", false},
    {"a function of a dependency",
     "lib libs/libD.so \"$shape\" -Wl,-soname,libD.so; lib libs/libA.so 'int a;' "
     "-Wl,--no-as-needed "
     "libs/libD.so",
     "d/p.dicts:1 error no-entry-point", false},
    {"a leaf without a meta-object",
     "lib libs/libA.so 'extern \"C\" void LYRSysTSCreateILeafCircle() {}'; echo Circle IShape libA "
     "ITFLEAF ILeaf >d/p.dicts",
     "d/p.dicts:1 note leaf", false, "Circle IShape", "", false},
    {"creation by name",
     "lib libs/libA.so 'extern \"C\" void* fctLYRSysTSCreateCircle() { static int c; return &c; "
     "}'; "
     "echo Circle CreateInterface libA >d/p.dicts",
     "", true, "Circle CreateInterface"},
    {"no creation by name",
     "lib libs/libA.so \"$shape\"; echo Circle CreateInterface libA >>d/p.dicts",
     "d/p.dicts:2 error no-entry-point", false, "Circle CreateInterface"},
    {"creation by id",
     "lib libs/libA.so 'extern \"C\" long LYRSysTSDllGetClassObject() { return 0; }'; rm "
     "d/p.dicts; "
     "echo '{22222222-0000-0000-0000-00000000000B} Circle libA' >d/c.clsidts",
     "", true, "{22222222-0000-0000-0000-00000000000B}"},
    {"no creation by id",
     "lib libs/libA.so \"$shape\"; echo '{22222222-0000-0000-0000-00000000000B} Circle libA' "
     ">d/c.clsidts",
     "d/c.clsidts:1 error no-entry-point", false, "{22222222-0000-0000-0000-00000000000B}"},
    {"a library that comes too late",
     "lib libs/libA.so 'extern \"C\" long LYRSysTSDllGetClassObject() { return 0; }'; rm "
     "d/p.dicts; "
     "i='{22222222-0000-0000-0000-00000000000B}'; echo \"$i Circle\" >d/b.clsidts; echo \"$i "
     "Circle "
     "libA\" >d/c.clsidts",
     "d/c.clsidts:1 warning late-library", false, "{22222222-0000-0000-0000-00000000000B}"},
    {"a refused line ends its file",
     R"(lib libs/libA.so "$shape"; printf 'Circle\nCircle IShape libA\n' >d/p.dicts)",
     "d/p.dicts:1 error bad-line", false},
    {"a refused id ends its file",
     "lib libs/libA.so \"$shape\"; echo '{11111111-0000-0000-0000-00000000000B} IOther' "
     ">d/i.iidts; "
     "printf '{11111111-0000-0000-0000-00000000000B} ITwo\\n{1111-0000} IX\\n' >d/j.iidts; echo "
     "'{11111111-0000-0000-0000-00000000000C} IShape' >>d/j.iidts",
     "d/j.iidts:1 error two-names\nd/p.dicts:1 warning no-id", false, "Circle IShape", "", false},
    {"digits that are none",
     "lib libs/libA.so \"$shape\"; echo '{1111111O-0000-0000-0000-00000000000B} IShape' >d/i.iidts",
     "d/i.iidts:1 error bad-id", true},
    {"two libraries",
     "lib libs/libA.so \"$shape\"; lib libs/libB.so 'int b;'; echo Circle IShape libB >d/a.dicts",
     "d/a.dicts:1 error no-entry-point\nd/p.dicts:1 error two-libraries", false},
    {"the same twice",
     "lib libs/libA.so \"$shape\"; echo Circle IShape A >d/q.dicts; cp d/i.iidts d/j.iidts",
     "d/q.dicts:1 warning said-twice", true},
    {"an extension that is filled in",
     "lib libs/libA.so \"$shape\"; echo Circle IShape libA EXTENDED_BY Circle >d/q.dicts",
     "d/q.dicts:1 warning filled-in", false, "Circle IShape", "", false},
    {"a file that another hides",
     "lib libs/libA.so \"$shape\"; mv d/p.dicts e; echo '# nothing' >d/p.dicts",
     "e/p.dicts warning hidden-file", false},
    {"a folder that is not there", "lib libs/libA.so \"$shape\"; rmdir e", "e warning no-folder",
     true},
    {"a file that is a folder", "lib libs/libA.so \"$shape\"; mkdir d/q.dicts",
     "d/q.dicts error unreadable", true},
    {"a carriage return",
     R"(lib libs/libA.so "$shape"; printf 'Circle IShape libA\r\n' >d/p.dicts)",
     "d/p.dicts:1 warning carriage-return\nd/p.dicts:1 error library-not-found", false},
    {"a byte-order mark",
     R"(lib libs/libA.so "$shape"; printf '\357\273\277Circle IShape libA\n' >d/p.dicts)",
     "d/p.dicts:1 warning byte-order-mark\nd/p.dicts:1 error no-entry-point", false},
    {"Latin letters",
     R"(lib libs/libA.so "$shape"; printf '# \344 is none\nCircl\351 IShape libA\n' >d/p.dicts)",
     "d/p.dicts:2 warning encoding\nd/p.dicts:2 error no-entry-point", false},
    {"a zero byte", R"(lib libs/libA.so "$shape"; printf 'Circle IShape libA\0 X\n' >d/p.dicts)",
     "d/p.dicts:1 warning zero-byte", true},
    {"dropped words",
     "lib libs/libA.so \"$shape\"; echo Circle IShape libA EXTENDED_BY X '# ours' >d/p.dicts",
     "d/p.dicts:1 error no-entry-point\nd/p.dicts:1 warning dropped-words", false},
    {"a long line, and the number of the next",
     R"(lib libs/libA.so "$shape"; { printf '#%2100s\n' x; echo Circle; } >d/p.dicts)",
     "d/p.dicts:1 warning long-line\nd/p.dicts:2 error bad-line", false},
};

void PrintTo(const Case& one, std::ostream* stream) {
    *stream << one.name;
}

std::string Sorted(const std::string& lines) {
    std::istringstream stream(lines);
    std::vector<std::string> all;
    for (std::string line; std::getline(stream, line);) all.push_back(line);
    std::sort(all.begin(), all.end());
    std::string text;
    for (const std::string& line : all) text += (text.empty() ? "" : "\n") + line;
    return text;
}

/// The findings of a check, without their words: "FILE:LINE severity kind".
std::string FoundIn(const std::string& text) {
    std::istringstream stream(text);
    std::string found;
    for (std::string line; std::getline(stream, line);) {
        const std::size_t kind = line.rfind(" [");
        if (!line.ends_with("]") || kind == std::string::npos) continue;
        const std::size_t place = line.find(": ");
        const std::size_t severity = place + 2;
        found += line.substr(0, place) + " " +
                 line.substr(severity, line.find(':', severity) - severity) + " " +
                 line.substr(kind + 2, line.size() - kind - 3) + "\n";
    }
    return Sorted(found);
}

class CheckOfCase : public testing::TestWithParam<Case> {};

// The same folders for both: those named by --libraries stand at the front of LD_LIBRARY_PATH.
TEST_P(CheckOfCase, SaysWhatARequestThenMeets) {
    const Case& one = GetParam();
    const Workshop shop;
    shop.Write("tools", kTools);
    const Outcome made = shop.Run("set -e; . ./tools; program; " + std::string(one.shell));
    ASSERT_EQ(made.status, 0) << made.text;
    const Outcome checked =
        shop.Run("export LD_LIBRARY_PATH=$PWD/loaderpath; '" LYR_PROGRAM "' check -d d:e -l libs " +
                 std::string(one.options));
    const std::string found = FoundIn(checked.text);
    EXPECT_EQ(found, Sorted(one.found)) << checked.text;
    EXPECT_EQ(checked.status, found.find(" error ") != std::string::npos ? 1 : 0);

    const Outcome asked =
        shop.Run("LD_LIBRARY_PATH=$PWD/libs:$PWD/loaderpath LYRDictionaryPath=d:e ./asker " +
                 std::string(one.asked) + " 2>&- | tail -1");
    EXPECT_EQ(asked.text == "yes\n", one.answers) << asked.text << checked.text;
    if (std::string_view(one.asked).find(' ') == std::string_view::npos) return;  // by class id
    const Outcome explained =
        shop.Run("export LD_LIBRARY_PATH=$PWD/loaderpath; '" LYR_PROGRAM "' explain " +
                 std::string(one.asked) + " -d d:e -l libs " + one.options);
    const int known = one.answers ? 0 : 1;
    EXPECT_EQ(explained.status, one.isKnown ? known : 3) << explained.text;
}

INSTANTIATE_TEST_SUITE_P(Cases, CheckOfCase, testing::ValuesIn(kCases), [](const auto& named) {
    std::string name;
    bool isStart = true;
    for (const char c : std::string_view(named.param.name)) {
        const bool isLetter = std::isalnum(static_cast<unsigned char>(c)) != 0;
        if (isLetter) name.push_back(isStart ? static_cast<char>(std::toupper(c)) : c);
        isStart = !isLetter;
    }
    return name;
});

/// A shop in which two hundred lines name a library that is not there, and one warning stands.
void FillWithFaults(const Workshop& shop) {
    shop.Write("tools", kTools);
    const Outcome made =
        shop.Run(". ./tools; rm d/i.iidts; seq 1 200 | sed 's/.*/C& IShape libGone/' >d/p.dicts");
    ASSERT_EQ(made.status, 0) << made.text;
}

TEST(Check, OneCauseIsOneFindingWithThreeOfItsLines) {
    const Workshop shop;
    FillWithFaults(shop);
    const std::string check = "LD_LIBRARY_PATH= '" LYR_PROGRAM "' check -d d ";
    EXPECT_EQ(shop.Run(check).text,
              "d/p.dicts:1: warning: no file gives the interface IShape an id, so only what code "
              "registers leads here [no-id]\n"
              "d/p.dicts:1: error: \"C1 IShape libGone\" needs a library that is not found: "
              "libGone.so in the program's old run path, the loader's cache and the system's "
              "folders [library-not-found]\n"
              "d/p.dicts:2: note: so does \"C2 IShape libGone\"\n"
              "d/p.dicts:3: note: so does \"C3 IShape libGone\"\n"
              "d/p.dicts:4: note: so does \"C4 IShape libGone\"\n"
              "d/p.dicts: note: and 196 more\n"
              "1 error, 1 warning in 1 file, 0 libraries\n");
    EXPECT_NE(shop.Run(check + "--all").text.find(":200: note: "), std::string::npos);
    const auto json = nlohmann::json::parse(shop.Run(check + "--json").text);
    EXPECT_EQ(json["format"], 1);
    EXPECT_EQ(json["errors"], 1);
    EXPECT_EQ(json["findings"][1]["kind"], "library-not-found");
    EXPECT_EQ(json["findings"][1]["line"], 1);
    EXPECT_EQ(json["findings"][1]["notes"].size(), 199U);
}

TEST(Check, FindingsAreChosenByKindAndFileAndWhatIsKnown) {
    const Workshop shop;
    FillWithFaults(shop);
    const auto status = [&](const std::string& options) {
        return shop.Lyr("check -d d " + options).status;
    };
    EXPECT_EQ(status(""), 1);
    EXPECT_EQ(status("--ignore library-not-found"), 0);
    EXPECT_EQ(status("--ignore library-not-found --strict"), 1);
    EXPECT_EQ(status("--ignore library-not-found --ignore no-id --strict"), 0);
    EXPECT_EQ(status("--ignore 'library-not-found:d/*'"), 0);
    EXPECT_EQ(status("--ignore 'library-not-found:e/*'"), 1);
    EXPECT_EQ(status("--ignore library-not-found --error no-id"), 1);

    EXPECT_EQ(status("--write-baseline known"), 1);
    EXPECT_EQ(status("--baseline known --strict"), 0);
    // What is known stays so when lines move; what is new is told.
    shop.Run("sed -i '1i# a comment' d/p.dicts");
    EXPECT_EQ(status("--baseline known --strict"), 0);
    shop.Run("echo Circle IShape libOther >>d/p.dicts");
    EXPECT_EQ(status("--baseline known"), 1);

    EXPECT_EQ(status("--baseline missing"), 2);
    EXPECT_EQ(shop.Run("unset LYRDictionaryPath; '" LYR_PROGRAM "' check").status, 2);
}

TEST(Check, AnotherImageIsLookedAtFromItsRoot) {
    const Workshop shop;
    shop.Write("tools", kTools);
    const Outcome made = shop.Run(
        ". ./tools; mkdir -p r/opt/d r/opt/lib r/usr/lib; lib r/opt/lib/libA.so.1 \"$shape\"; cp "
        "d/* "
        "r/opt/d; ln -s /opt/lib/libA.so.1 r/usr/lib/libA.so; ln -s opt/d r/dictionaries");
    ASSERT_EQ(made.status, 0) << made.text;
    const Outcome outcome =
        shop.Run("LD_LIBRARY_PATH= '" LYR_PROGRAM "' check --root r -d /dictionaries");
    EXPECT_EQ(outcome.text, "0 errors, 0 warnings in 2 files, 1 library\n");
    EXPECT_EQ(outcome.status, 0);
}

TEST(Check, RecordsTellWhatCannotAnswer) {
    const std::string id = "{11111111-0000-0000-0000-00000000000A}";
    const Workshop shop;
    shop.Build("libA.so",
               {"lyr1 extension Layer kept", "lyr1 extends Layer Circle ILayer " + id,
                "lyr1 class Square - -"},
               {"LYRSysTSCreateILayerLayer", "LYRSysTSCreateILayerSquare"});
    shop.Build("libB.so", {"lyr1 class Square - -"}, {"LYRSysTSCreateIShapeSquare"});
    shop.Run("mkdir d");
    shop.Write("d/a.iidts", "{11111111-0000-0000-0000-00000000000B} ILayer\n" + id + " IShape\n");
    shop.Write("d/a.dicts",
               "Circle ILayer A EXTENDED_BY Layer\nSquare ILayer A EXTENDED_BY Layer\n"
               "Oval ILayer A EXTENDED_BY Square\nSquare IShape B\n");
    EXPECT_EQ(FoundIn(shop.Lyr("check -d d -l .").text),
              "./libB.so error two-classes\nd/a.dicts:2 error extension\n"
              "d/a.dicts:3 error extension\nd/a.iidts:1 error two-ids");
}

}  // namespace

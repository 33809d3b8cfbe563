#include "../kit/Workshop.h"
#include "LYRThrLibraryManager.h"
#include "Workshop.h"

namespace {

/// What packagers do to a finished library, as a command with a program that may be missing.
struct Alteration {
    const char* name;
    const char* program;
    const char* command;

    friend std::ostream& operator<<(std::ostream& out, const Alteration& alteration) {
        return out << alteration.name;
    }
};

// The run path is longer than any that was there: sections must move for it.
#define SET_LONG_RUN_PATH \
    "patchelf --set-rpath \"/$(printf '%1000s' | tr ' ' x):\\$ORIGIN/../lib\" libA.so"

const Alteration kAlterations[] = {
    {"RunPath", "patchelf", SET_LONG_RUN_PATH},
    {"Copy", "objcopy",
     "objcopy --remove-section=.comment libA.so libCopy.so && mv libCopy.so libA.so"},
    {"Strip", "strip", "strip libA.so"},
    {"StripThenRunPath", "patchelf", "strip libA.so && " SET_LONG_RUN_PATH},
};

class AlteredLibrary : public testing::TestWithParam<Alteration> {};

/// The three dictionary files that `lyr manifest` writes for the library.
std::string Manifest(const Workshop& shop) {
    const Outcome outcome = shop.Lyr("manifest libA.so");
    EXPECT_EQ(outcome.text, "");
    EXPECT_EQ(outcome.status, 0);
    return shop.Read("libA.dicts") + shop.Read("libA.iidts") + shop.Read("libA.clsidts");
}

TEST_P(AlteredLibrary, KeepsItsRecordsAndLoads) {
    const auto& [name, program, command] = GetParam();
    const Workshop shop;
    if (shop.Run(std::string("command -v ") + program).status != 0) {
        GTEST_SKIP() << program << " is not installed: the library cannot be altered with it";
    }
    ASSERT_EQ(shop.Run("cp '" LYR_TEST_LIBRARY_DIR "/libLyrTestWorkshop.so' libA.so").status, 0);
    const std::string before = Manifest(shop);
    ASSERT_NE(before.find("\nSquare CreateInterface libA\n"), std::string::npos) << before;
    const std::string bytes = shop.Read("libA.so");

    const Outcome altered = shop.Run(command);
    ASSERT_EQ(altered.status, 0) << altered.text;
    EXPECT_TRUE(shop.Read("libA.so") != bytes) << "nothing is altered";
    ASSERT_EQ(shop.Run("rm libA.dicts libA.iidts libA.clsidts").status, 0);
    EXPECT_EQ(Manifest(shop), before);

    UseDictionaryPath(shop.path);
    ASSERT_TRUE(LYRThrLibraryManager::AddFolder(shop.path.c_str(), nullptr));
    EXPECT_EQ(lyr::Create<workshop::IPolygon>("Square")->Diagonals(), 2);
}

INSTANTIATE_TEST_SUITE_P(By, AlteredLibrary, testing::ValuesIn(kAlterations),
                         [](const auto& alteration) { return alteration.param.name; });

}  // namespace

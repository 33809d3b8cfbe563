#include "LYRThrLibraryManager.h"

#include <gtest/gtest.h>
#include <string>

#define IN_DIRECTORY(name) LYR_TEST_LIBRARY_DIR "/" name

using Manager = LYRThrLibraryManager;

TEST(LYRThrLibraryManager, FindsOnlyWhatTheLibraryItselfDefines) {
    const auto find = Manager::GetFunctionAddress;
    EXPECT_EQ(reinterpret_cast<int (*)()>(find("PlatformUser", "PlatformAnswer"))(), 42);
    EXPECT_EQ(*static_cast<void**>(find("PlatformUser", "PlatformEarly")),
              find("PlatformProvider", "PlatformProvided"));
    EXPECT_TRUE(*static_cast<const bool*>(find("PlatformUser", "PlatformIsAwaited")));
    for (const char* symbol : {"PlatformProvided", "malloc", "PlatformMissing"}) {
        EXPECT_EQ(find("PlatformUser", symbol), nullptr);
        EXPECT_NE(Manager::LastFailure().find(symbol), std::string::npos);
    }
    EXPECT_EQ(find("PlatformUser", nullptr), nullptr);
}

TEST(LYRThrLibraryManager, AllFormsOfANameReachOneFileAndNothingElseDoes) {
    void* const handle = Manager::LoadLibrary("PlatformUser");
    ASSERT_NE(handle, nullptr) << Manager::LastFailure();
    for (const char* name : {"libPlatformUser", "libPlatformUser.so", "PlatformUser.so",
                             IN_DIRECTORY("PlatformUser"), IN_DIRECTORY("libPlatformUser.so")}) {
        EXPECT_EQ(Manager::LoadLibrary(name), handle) << name;
    }
    for (const char* name : {static_cast<const char*>(nullptr), "", "/", "PlatformUse"}) {
        EXPECT_EQ(Manager::GetFunctionAddress(name, "PlatformAnswer"), nullptr);
    }
}

TEST(LYRThrLibraryManager, AnAbsentFileDoesNotHideWhyAnotherDoesNotLoad) {
    EXPECT_EQ(Manager::LastFailure(), "");
    for (const char* name : {"PlatformBroken", "libPlatformBroken", IN_DIRECTORY("PlatformBroken"),
                             IN_DIRECTORY("libPlatformBroken.so")}) {
        EXPECT_EQ(Manager::LoadLibrary(name), nullptr);
        EXPECT_NE(Manager::LastFailure().find("PlatformDefinedNowhere"), std::string::npos);
    }
}

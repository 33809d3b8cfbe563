#include "LYRThrLibraryManager.h"

#include <climits>
#include <dlfcn.h>
#include <filesystem>
#include <future>
#include <gtest/gtest.h>
#include <sched.h>
#include <string>
#include <sys/mount.h>

#define IN_DIRECTORY(name) LYR_TEST_LIBRARY_DIR "/" name

using Manager = LYRThrLibraryManager;

TEST(LYRThrLibraryManager, FindsOnlyWhatTheLibraryItselfDefines) {
    const auto find = Manager::GetFunctionAddress;
    for (const char* function : {"PlatformAnswer", "PlatformChosen"}) {
        EXPECT_EQ(reinterpret_cast<int (*)()>(find("PlatformUser", function))(), 42);
    }
    EXPECT_EQ(*static_cast<void**>(find("PlatformUser", "PlatformEarly")),
              find("PlatformProvider", "PlatformProvided"));
    for (const char* symbol : {"PlatformProvided", "malloc", "PlatformMissing"}) {
        EXPECT_EQ(find("PlatformUser", symbol), nullptr);
        EXPECT_NE(Manager::LastFailure().find(symbol), std::string::npos);
    }
    EXPECT_EQ(find("PlatformUser", nullptr), nullptr);
}

TEST(LYRThrLibraryManager, AllFormsOfANameReachOneFileAndNothingElseDoes) {
    void* const handle = Manager::LoadLibrary("PlatformUser");
    ASSERT_NE(handle, nullptr) << Manager::LastFailure();
    for (const char* name :
         {"libPlatformUser", "libPlatformUser.so", "PlatformUser.so", IN_DIRECTORY("PlatformUser"),
          IN_DIRECTORY("libPlatformUser"), IN_DIRECTORY("libPlatformUser.so")}) {
        EXPECT_EQ(Manager::LoadLibrary(name), handle) << name;
    }
    EXPECT_NE(Manager::LoadLibrary("PlatformBare.so"), nullptr) << Manager::LastFailure();
    const std::string path = IN_DIRECTORY("PlatformBare");
    for (const char* name : {static_cast<const char*>(nullptr), "", "/", "PlatformUse",
                             "PlatformBare", "libPlatformBare.so", path.c_str()}) {
        EXPECT_FALSE(Manager::LoadLibrary(name));
        EXPECT_FALSE(Manager::GetFunctionAddress(name, "PlatformAnswer"));
    }
}

TEST(LYRThrLibraryManager, LooksIntoFoldersOfTheCodeWhereTheLoaderFindsNothing) {
    const std::filesystem::path folder = IN_DIRECTORY("of: the code");
    std::filesystem::create_directory(folder);
    const auto put = [&](const char* library, const char* name) {
        std::filesystem::copy_file(std::filesystem::path(LYR_TEST_LIBRARY_DIR) / library,
                                   folder / name,
                                   std::filesystem::copy_options::overwrite_existing);
    };
    put("libPlatformProvider.so", "libPlatformCoded.so");
    put("libPlatformProvider.so", "libPlatformBroken.so");
    put("libPlatformProvider.so", "libPlatformUser.so");
    put("libPlatformBroken.so", "libPlatformCodedBroken.so");
    EXPECT_FALSE(Manager::LoadLibrary("PlatformCoded"));
    static const int inTheProgram = 0;
    const int onTheStack = 0;
    EXPECT_FALSE(Manager::AddFolder("of: the code", &onTheStack));
    for (const char* none : {static_cast<const char*>(nullptr), ""}) {
        EXPECT_FALSE(Manager::AddFolder(none, &inTheProgram));
    }
    const std::string fromProgram = std::filesystem::relative(
        folder, std::filesystem::canonical("/proc/self/exe").parent_path());
    EXPECT_TRUE(Manager::AddFolder("/no/such/folder", nullptr));
    EXPECT_TRUE(Manager::AddFolder(fromProgram.c_str(), &inTheProgram));

    for (const char* name : {"PlatformCoded", "libPlatformCoded.so"}) {
        EXPECT_TRUE(Manager::GetFunctionAddress(name, "PlatformProvided")) << name;
    }
    EXPECT_FALSE(Manager::GetFunctionAddress("PlatformUser", "PlatformProvided"));
    for (const char* broken : {"PlatformBroken", "PlatformCodedBroken"}) {
        EXPECT_FALSE(Manager::LoadLibrary(broken));
        EXPECT_NE(Manager::LastFailure().find("PlatformDefinedNowhere"), std::string::npos);
    }
    EXPECT_FALSE(Manager::LoadLibrary("nowhere/PlatformCoded"));

    char path[64];
    EXPECT_TRUE(Manager::FolderOf("/a", nullptr, path, 3));
    EXPECT_STREQ(path, "/a");
    EXPECT_FALSE(Manager::FolderOf("/ab", nullptr, path, 3));
    EXPECT_STREQ(path, "");
    // The function of a library starts from that library's file.
    const void* const provided = Manager::GetFunctionAddress("PlatformCoded", "PlatformProvided");
    char besides[PATH_MAX];
    EXPECT_TRUE(Manager::FolderOf("x", provided, besides, sizeof besides));
    EXPECT_EQ(besides, std::filesystem::canonical(folder) / "x");
}

TEST(LYRThrLibraryManager, AnAbsentFileDoesNotHideWhyAnotherDoesNotLoad) {
    EXPECT_EQ(Manager::LastFailure(), "");
    for (const char* name : {"PlatformBroken", "libPlatformBroken", IN_DIRECTORY("PlatformBroken"),
                             IN_DIRECTORY("libPlatformBroken.so")}) {
        EXPECT_EQ(Manager::LoadLibrary(name), nullptr);
        EXPECT_NE(Manager::LastFailure().find("PlatformDefinedNowhere"), std::string::npos);
    }
}

TEST(LYRThrLibraryManager, KnowsWhetherALibraryMayBeLoadingWithoutWaiting) {
    const auto isLoading = [] { return Manager::MayHaveBeenLoadingSince(Manager::MarkLoads()); };
    const auto hasBeenLoading = [&](auto load) {
        const std::uint64_t mark = Manager::MarkLoads();
        load();
        return Manager::MayHaveBeenLoadingSince(mark);
    };
    // What the program loads by itself is there where nobody else could be loading it.
    EXPECT_FALSE(hasBeenLoading([] { ::dlopen(IN_DIRECTORY("libLyrTestParts.so"), RTLD_NOW); }));
    std::promise<void> end;
    const auto other = std::async(std::launch::async, [&] { end.get_future().wait(); });
    void* found = nullptr;
    EXPECT_TRUE(hasBeenLoading(
        [&] { found = Manager::GetFunctionAddress("PlatformUser", "PlatformIsLoading"); }));
    EXPECT_TRUE(found != nullptr && *static_cast<bool*>(found) && !isLoading());
    ::dlopen(IN_DIRECTORY("libLyrTestHook.so"), RTLD_NOW);
    for (int i = 0; i < 2; ++i) EXPECT_TRUE(isLoading());
    Manager::LoadLibrary("PlatformBare.so");
    EXPECT_TRUE(isLoading());  // it may have been the other's initialiser that asked for this one
    std::this_thread::sleep_for(std::chrono::milliseconds(3100));
    EXPECT_FALSE(isLoading());
    end.set_value();
}

TEST(LYRThrLibraryManager, AFileSystemThatForbidsExecutionIsNoShortage) {
    if (::unshare(CLONE_NEWNS) != 0) GTEST_SKIP() << "only root may mount one";
    ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr);
    const std::string file = testing::TempDir() + "libPlatformProvider.so";
    ASSERT_EQ(::mount("none", testing::TempDir().c_str(), "tmpfs", MS_NOEXEC, nullptr), 0);
    std::filesystem::copy_file(IN_DIRECTORY("libPlatformProvider.so"), file);
    bool mayPass = true;
    EXPECT_EQ(Manager::TryLoadLibrary(file.c_str(), mayPass), nullptr);
    EXPECT_FALSE(mayPass) << Manager::LastFailure();
}

TEST(LYRThrLibraryManager, AnExceptionOutOfAnInitialiserEndsTheProcess) {
    EXPECT_DEATH(Manager::LoadLibrary("PlatformThrowing"), "int");
}

#include "Workshop.h"
#include "inspection/LibraryFile.h"
#include "inspection/SharedObject.h"

#include <atomic>
#include <thread>

namespace {

using namespace lyr::inspection;

/// Whether the file can be read in both ways; whatever it holds, there is an answer.
bool IsRead(const std::string& path) {
    Findings findings;
    const bool isRead = ReadLibraryFile(path, findings).has_value();
    EXPECT_NE(isRead, findings.HasErrors());
    try {
        return !ReadSharedObject(path).definitions.empty() && isRead;
    } catch (const Unreadable& unreadable) {
        EXPECT_NE(unreadable.reason, "");
        return false;
    }
}

/// A library with versions, symbols that it needs, and records.
std::string BuildLibrary(const Workshop& shop) {
    shop.Write("map", "V1 { LYRSysTSCreateIShapeCircle; }; V2 { other; } V1;");
    shop.Build("libA.so", {"lyr1 class Circle - -"}, {"LYRSysTSCreateIShapeCircle", "other"},
               "extern int gone; int* needed = &gone;",
               "-Wl,--version-script=map -Wl,--hash-style=both -Wl,-z,noseparate-code");
    return shop.Read("libA.so");
}

TEST(BrokenLibrary, NothingIsReadOfOneThatIsCutShort) {
    const Workshop shop;
    const std::string whole = BuildLibrary(shop);
    EXPECT_TRUE(IsRead(shop.path + "/libA.so"));
    for (std::size_t size = 0; size < whole.size(); size += size < 1024 ? 7 : 97) {
        EXPECT_FALSE(IsRead(shop.Write("libCut.so", whole.substr(0, size)))) << size;
    }
}

TEST(BrokenLibrary, EachByteMayBeAnother) {
    const Workshop shop;
    const std::string whole = BuildLibrary(shop);
    for (std::size_t at = 4; at < whole.size(); at += at < 1024 ? 1 : 13) {
        std::string broken = whole;
        broken[at] = static_cast<char>(~broken[at]);
        IsRead(shop.Write("libBroken.so", broken));
    }
}

TEST(BrokenLibrary, OneIsCutShortWhileItIsRead) {
    const Workshop shop;
    const std::string whole = BuildLibrary(shop);
    const std::string path = shop.Write("libCut.so", whole);
    std::atomic<bool> isDone = false;
    std::thread cutter([&] {
        while (!isDone) {
            shop.Write("libCut.so", whole);
            EXPECT_EQ(::truncate(path.c_str(), static_cast<off_t>(whole.size() / 3)), 0);
        }
    });
    for (int i = 0; i < 500; ++i) IsRead(path);
    isDone = true;
    cutter.join();
}

}  // namespace

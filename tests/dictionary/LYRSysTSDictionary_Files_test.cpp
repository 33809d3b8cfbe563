#include "TestSupport.h"

#include <algorithm>
#include <fcntl.h>
#include <future>
#include <unistd.h>

TEST(DictionaryFiles, EveryRequestAsksAgainUntilThePathIsSetAndNotBanned) {
    const auto noPath = "Error in reading dictionaries : LYRDictionaryPath is not defined.\n";
    const auto request = [] { Dictionary::QueryDictionary("C", "I", 1); };
    ::unsetenv("LYRDictionaryPath");
    ExpectErrors("", [] { Dictionary::QueryMetaObject("C"); });
    ExpectErrors(noPath, request);
    ExpectErrors(noPath, [] { Dictionary::GetInterfaceName(G(1)); });
    UseDictionaryPath("");
    ::setenv("LYRDictionaryNoPathNoFallback", "", 1);
    ExpectErrors(noPath, request);
    UseDictionaryPath("");
    ExpectErrors("", request);
    ::unsetenv("LYRDictionaryPath");
    ExpectErrors("", request);
}

TEST(DictionaryFiles, FoldersOfTheCodeComeBehindThoseOfTheUserAndBeforeTheFirstRequest) {
    const TempDirectory users, own, later;
    std::filesystem::create_directory(own.path + "/b: c");
    std::filesystem::create_directory_symlink("b: c", own.path + "/link");
    users.Write("1.dicts", "C I Users\n");
    std::ofstream(own.path + "/b: c/1.dicts") << "D I Hidden\n";
    std::ofstream(own.path + "/b: c/2.dicts") << "C I Own\nD I Own\n";
    later.Write("2.dicts", "F I Hidden\n");
    later.Write("3.dicts", "E I Later\n");
    const auto add = [](const std::string& folder, const void* origin = nullptr) {
        return Dictionary::AddFolder(folder.c_str(), origin);
    };
    std::filesystem::current_path(own.path);
    for (int i = 0; i < 2; ++i) EXPECT_EQ(add("b: c"), S_OK);
    EXPECT_EQ(add(later.path), S_OK);
    EXPECT_EQ(add(later.path + "/none"), S_OK);
    static const int inThisFile = 0;
    const int onTheStack = 0;
    const auto expectUnknown = [&](const char* folder, const void* origin) {
        const std::string errors = ErrorsOf([&] { EXPECT_EQ(add(folder, origin), E_FAIL); });
        EXPECT_EQ(errors.find("lyr: there is no folder of dictionaries \"" + std::string(folder)),
                  0U);
    };
    expectUnknown("", &inThisFile);
    expectUnknown("a", &onTheStack);
    UseDictionaryPath(users.path);
    ExpectErrors(kRefused, Dictionary::EnsureInitDictionary);
    for (const auto& [name, entry] : {std::pair("C", "Users (null) (null)"),
                                      {"D", "Own (null) (null)"},
                                      {"E", "Later (null) (null)"},
                                      {"F", "none"}}) {
        EXPECT_EQ(Entry(name), entry);
    }
    ExpectErrors("", [&] { EXPECT_EQ(add("link/."), S_OK); });
    ExpectErrors("", [&] { EXPECT_EQ(add(users.path), S_OK); });
    const std::string tooLate = ErrorsOf([&] { EXPECT_EQ(add(own.path), E_FAIL); });
    EXPECT_EQ(tooLate.find("lyr: the folder of dictionaries \"" + own.path + "\" comes too late"),
              0U);
}

TEST(DictionaryFiles, AFolderOfTheCodeMakesThePathUnneededButTheUserMayForbidIt) {
    const TempDirectory own;
    own.Write("1.dicts", "C I Own\n");
    EXPECT_EQ(Dictionary::AddFolder(own.path.c_str(), nullptr), S_OK);
    ::unsetenv("LYRDictionaryPath");
    ::setenv("LYRDictionaryNoPathNoFallback", "", 1);
    EXPECT_NE(ErrorsOf(Dictionary::EnsureInitDictionary), "");
    EXPECT_EQ(Entry("C"), "none");
    ::unsetenv("LYRDictionaryNoPathNoFallback");
    ExpectErrors("", Dictionary::EnsureInitDictionary);
    EXPECT_EQ(Entry("C"), "Own (null) (null)");
}

TEST(DictionaryFiles, ALineMayHaveEachKeywordOnce) {
    const std::string keywords[] = {"ITFLEAF", "EXTENDED_BY"};
    const std::string entries[] = {"none", "L X Y", "L Y X", "none"};
    for (int i = 0; i < 4; ++i) {
        const std::string first = keywords[i / 2], second = keywords[i % 2];
        std::string texts[] = {first + second, "I", "libL", first, "X", second, "Y"};
        char* words[7];
        std::ranges::transform(texts, words, [](std::string& text) { return text.data(); });
        const bool isBad = first == second;
        ExpectErrors(isBad ? "Problem reading dico : file line 3\n" : "", [&] {
            EXPECT_EQ(LYRSysTSDicReader().PutInfo(words, 7, "file", 3), isBad ? E_FAIL : S_OK);
        });
        EXPECT_EQ(Entry(words[0]), entries[i]);
    }
}

TEST(DictionaryFiles, TheStepsOfTheScanAnswerOutsideItToo) {
    static const int file = ::dup(0);
    ::close(file);
    struct Refuser final : LYRSysTSDictionaryReader {
        HRESULT PutInfo(char**, int, const char*, int) override {
            EXPECT_EQ(::fcntl(file, F_GETFD), FD_CLOEXEC) << "others inherit the file";
            return E_FAIL;
        }
    } refuser;
    const TempDirectory files;
    const std::string path = files.Write("a.dicts", "C I L\n");
    EXPECT_EQ(Dictionary::_ReadDictionary(path.c_str(), &refuser), E_FAIL);
    EXPECT_EQ(Dictionary::_ReadDictionary(nullptr, &refuser), E_FAIL);
    EXPECT_EQ(Dictionary::_ReadDictionary(path.c_str(), nullptr), E_FAIL);
    EXPECT_EQ(Dictionary::_DicoIsAlreadyRead("a.dicts"), 0);
}

TEST(DictionaryFiles, OneThreadAtATimeAddsToTheRegistries) {
    LYRSysTSIidReader iidReader;
    LYRSysTSClsidReader clsidReader;
    LYRSysTSDictionaryReader* const readers[] = {&iidReader, &clsidReader};
    for (auto* const reader : readers) {
        char id[] = "{0000000A-0000-0000-0000-000000000000}", name[] = "A", *words[] = {id, name};
        const auto put = [&] { return reader->PutInfo(words, 2, "file", 1); };
        GetGlobalDicoMutex()->LockF();
        auto line = std::async(std::launch::async, put);
        EXPECT_EQ(line.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
        GetGlobalDicoMutex()->UnlockF();
        EXPECT_EQ(line.get(), S_OK);
    }
}

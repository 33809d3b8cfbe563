#include "TestSupport.h"

TEST(DictionaryFiles, TheFirstDirectoryThatListsANameSuppliesIt) {
    TempDirectory first, second;
    first.Write("b.dicts", "Both I first\n");
    std::filesystem::create_directory(first.path + "/y.dicts");
    std::filesystem::create_symlink("nowhere", first.path + "/z.dicts");
    second.Write("a.dicts", "Both I second\nTwo I a\n");
    for (const char* name :
         {"b.dicts", "y.dicts", "z.dicts", ".dicts", ".clsidts", "a.clsidt", "a.dicts~"})
        second.Write(name, "Hidden I L\n");
    second.Write("d.dicts", "Two I d\n");
    UseDictionaryPath(":" + first.path + "::/nowhere:" + second.path + ":" + first.path);
    const std::string errors = "Error : fgets on " + first.path +
                               "/y.dicts\n--> fgets(): Is a directory\nError : fopen on " +
                               first.path + "/z.dicts\n--> fopen(): No such file or directory\n";
    ExpectErrors(errors + kRefused + kRefused, [] { Dictionary::EnsureInitDictionary(); });
    EXPECT_EQ(Dictionary::QueryDictionary("Hidden", "I", 1), nullptr);
    EXPECT_STREQ(Find("Both")->sharedLibrary, "first");
    EXPECT_STREQ(Find("Two")->sharedLibrary, "a");
    EXPECT_EQ(Dictionary::_DicoIsAlreadyRead("a.dicts"), 0) << "no scan runs";
}

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

TEST(DictionaryFiles, LinesAreCutIntoFiveWordsAndPiecesOf2047Bytes) {
    struct : LYRSysTSDictionaryReader {
        HRESULT PutInfo(char** words, int count, const char*, int lineNumber) override {
            seen += std::to_string(lineNumber);
            for (int i = 0; i < count; ++i) seen += "|" + std::string(words[i]).substr(0, 3);
            return words[0] == std::string("end") ? E_FAIL : S_OK;
        }
        std::string seen;
    } reader;
    const std::string y(2046, 'y'), z(2047, 'z');
    const std::string words = "#c\n//c\n\n \t \n/x a\n #b c\n\ta\t b\r\n1 2 3 4 5 6 7\n";
    TempDirectory files;
    const auto path = files.Write("f", words + y + "\n" + z + "#c\n" + z + "\nend \v\xff\nlost\n");
    EXPECT_EQ(Dictionary::_ReadDictionary(path.c_str(), &reader), E_FAIL);
    EXPECT_EQ(reader.seen, "5|/x|a6|#b|c7|a|b\r8|1|2|3|4|59|yyy10|zzz12|zzz14|end|\v\xff");
}

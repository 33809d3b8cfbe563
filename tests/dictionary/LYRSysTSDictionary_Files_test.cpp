#include "TestSupport.h"

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

TEST(DictionaryFiles, TheStepsOfTheScanAnswerOutsideItToo) {
    struct : LYRSysTSDictionaryReader {
        HRESULT PutInfo(char**, int, const char*, int) override { return E_FAIL; }
    } refuser;
    const TempDirectory files;
    const std::string path = files.Write("a.dicts", "C I L\n");
    EXPECT_EQ(Dictionary::_ReadDictionary(path.c_str(), &refuser), E_FAIL);
    EXPECT_EQ(Dictionary::_ReadDictionary(nullptr, &refuser), E_FAIL);
    EXPECT_EQ(Dictionary::_ReadDictionary(path.c_str(), nullptr), E_FAIL);
    EXPECT_EQ(Dictionary::_DicoIsAlreadyRead("a.dicts"), 0);
}

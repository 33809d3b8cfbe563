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

#include "TableWalk.h"

TEST(Stores, EveryContentHasOneAddressInCrowdedBucketsAndAfterFree) {
    const auto intern = [](const std::string& text) {
        return TextOf(LYRSysTSDicoString::AddStringInDico(text.c_str())) == text;
    };
    for (int round = 0; round < 2; ++round) {
        for (unsigned i = 0; i < 2 * 5461; ++i) {
            // All of them twice and in a scattered order: texts of 0 to 6 letters out of four, and
            // ids of which half have the Data1 of another one.
            const unsigned k = i * 7919 % 5461;
            std::string text;
            for (unsigned n = k; n != 0; n = (n - 1) / 4) text += "a\x80z\xff"[n % 4];
            ASSERT_TRUE(intern(text));
            const GUID id = k % 2 == 0 ? G(k, 2) : G(k - 1, 0, 0, {1});
            ASSERT_EQ(*LYRSysTSDicoGUID::AddGUIDInDico(&id), id);
        }
        // The last two are one character too many for one block.
        for (unsigned n : {4999U, 4000U, 999U}) EXPECT_TRUE(intern(std::string(n, 'l')));
        EXPECT_FALSE(intern(std::string(5000, 'l')));
        EXPECT_EQ(ExpectStoresAgree(), 5461 + 3 + 5461);
        LYRSysTSDicoString::_FreeDictionary();
        LYRSysTSDicoGUID::_FreeDictionary();
    }
}

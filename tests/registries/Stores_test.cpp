#include "TableWalk.h"

TEST(Stores, EveryContentHasOneAddressInCrowdedBucketsAndAfterFree) {
    const auto intern = [](const std::string& text) {
        return TextOf(LYRSysTSDicoString::AddStringInDico(text.c_str())) == text;
    };
    for (int round = 0; round < 2; ++round) {
        for (unsigned i = 0; i < 2 * 5461; ++i) {
            // All of them twice and in a scattered order: texts of 0 to 6 letters out of four,
            // texts of which the first six letters tell nothing, and ids that differ in their first
            // bytes alone, or in their last.
            const unsigned k = i * 7919 % 5461;
            ASSERT_TRUE(intern("number" + std::to_string(k)));
            std::string text;
            for (unsigned n = k; n != 0; n = (n - 1) / 4) text += "a\x80z\xff"[n % 4];
            ASSERT_TRUE(intern(text));
            const GUID id = k % 2 == 0 ? G(k) : IdWithEnd(k);
            ASSERT_EQ(*LYRSysTSDicoGUID::AddGUIDInDico(&id), id);
        }
        // Blocks of 5'000 characters: what fits in is packed, down to the last of them.
        const char* last = "";
        std::string packed;
        for (const unsigned n : {4999U, 4000U, 998U, 3999U, 1000U}) {
            const char* const copy =
                LYRSysTSDicoString::AddStringInDico(std::string(n, 'l').c_str());
            packed += copy == last + std::strlen(last) + 1 ? 'y' : 'n';
            last = copy;
        }
        EXPECT_EQ(packed, "nnynn");
        EXPECT_FALSE(intern(std::string(5000, 'l')));
        EXPECT_EQ(ExpectStoresAgree(), 5461 + 5461 + 5 + 5461);
        LYRSysTSDicoString::_FreeDictionary();
        LYRSysTSDicoGUID::_FreeDictionary();
    }
}

#include "TestSupport.h"

#include <map>

TEST(StringStore, EveryContentHasOneAddressInCrowdedBucketsAndAfterFree) {
    const auto intern = [](const std::string& text) {
        return LYRSysTSDicoString::AddStringInDico(text.c_str());
    };
    for (int round = 0; round < 2; ++round) {
        // Texts of 0 to 6 letters out of four, all of them twice and in a scattered order: what
        // hangs in a wrong place is missed by a search, which ends at a shorter or greater text.
        std::map<std::string, const char*> stored;
        for (unsigned i = 0; i < 2 * 5461; ++i) {
            std::string text;
            for (unsigned n = i * 7919 % 5461; n != 0; n = (n - 1) / 4) text += "a\x80z\xff"[n % 4];
            const char* address = intern(text);
            ASSERT_EQ(stored.try_emplace(text, address).first->second, address);
        }
        EXPECT_EQ(intern(std::string(5000, 'l')), nullptr);
        // The last two are one character too many for one block.
        for (unsigned n : {4999U, 4000U, 999U})
            stored[std::string(n, 'l')] = intern(std::string(n, 'l'));
        for (const auto& [text, address] : stored) ASSERT_EQ(text, address);
        LYRSysTSDicoString::_FreeDictionary();
    }
}

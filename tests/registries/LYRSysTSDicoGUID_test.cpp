#include "TestSupport.h"

TEST(GuidStore, EveryValueHasOneAddressInCrowdedBucketsAndAfterFree) {
    for (int round = 0; round < 2; ++round) {
        const GUID* stored[10000];
        for (std::uint32_t i = 0; i < 20000; ++i) {
            // Two and more to a bucket, also with the same Data1.
            const GUID guid = i % 2 == 0 ? G(i % 10000, 2) : G(i % 10000 - 1, 0, 0, {1});
            const GUID* address = LYRSysTSDicoGUID::AddGUIDInDico(&guid);
            if (i < 10000) stored[i] = address;
            ASSERT_EQ(stored[i % 10000], address);
            ASSERT_EQ(*address, guid);
        }
        LYRSysTSDicoGUID::_FreeDictionary();
    }
}

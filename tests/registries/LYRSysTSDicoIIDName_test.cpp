#include "TestSupport.h"

using Registry = LYRSysTSDicoIIDName;

TEST(GuidText, ChecksLengthAndBracesOnly) {
    const auto convert = [](const char* text) {
        GUID guid = G(7);
        const int result = LYRSysTSConvertStringToGUID(text, guid);
        return result == (guid == G(7) ? 1 : 0) ? guid : GUID{};
    };
    EXPECT_EQ(convert("{6DADD843-BCD7-4107-B9E9-72342D738784}"), CLSID_LYRSysTSBaseUnknown);
    EXPECT_EQ(convert("{G1@`g/:1-/:fF-gGaA-\x80\x31-1--1-1x1X1 1-1}"),
              G(0x01000001, 0x00FF, 0x00AA, {1, 1, 1, 1, 1, 1, 1, 1}));
    EXPECT_EQ(convert("6DADD843-BCD7-4107-B9E9-72342D738784"), G(7));
    EXPECT_EQ(convert("(6DADD843-BCD7-4107-B9E9-72342D738784}"), G(7));
    EXPECT_EQ(convert("{6DADD843-BCD7-4107-B9E9-72342D738784)"), G(7));
}

TEST(InterfaceNames, PairsAreOneToOneUntilFreed) {
    const auto add = [](const GUID& iid, const char* name) {
        const std::string result = std::to_string(Registry::AddDicoIIDName(iid, name));
        const GUID* known = Registry::QueryDicoIIDNameByName(name);
        EXPECT_EQ(known, LYRSysTSDicoGUID::AddGUIDInDico(known)) << "not interned";
        return result + " " + TextOf(Registry::QueryDicoIIDNameByIID(iid)) + " " +
               (known == nullptr ? "-" : std::to_string(known->Data1));
    };
    EXPECT_EQ(add(G(1), "IPoint"), "1 IPoint 1");
    EXPECT_EQ(add(G(1), "IPoint"), "1 IPoint 1");
    EXPECT_EQ(add(G(1), "ICurve"), "0 IPoint -");
    EXPECT_EQ(add(G(2), "IPoint"), "0 (null) 1");
    EXPECT_EQ(add(G(2), "JPoint"), "1 JPoint 2") << "both share their buckets with the first";
    EXPECT_EQ(add(G(3), ""), "1  3");
    EXPECT_EQ(add(G(4), nullptr), "0 (null) -");
    EXPECT_EQ(add(G(4), std::string(5000, 'x').c_str()), "0 (null) -");
    Registry::_FreeDictionary();
    EXPECT_EQ(add(G(2), "IPoint"), "1 IPoint 2");
}

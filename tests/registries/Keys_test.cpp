#include "TestSupport.h"

using Keys = std::array<int, 4>;

TEST(Keys, OfTextsDifferInSignFirstWeightAndWidth) {
    const auto keys = [](const std::string& text, const char* partner) {
        int length = 0, key = LYRSysTSDicoString::_ComputeStringKey(text.c_str(), length);
        return Keys{length, key, LYRSysTSDicoIIDName::_ComputeKeyForName(text.c_str()),
                    Dictionary::_ComputeHashKey(text.c_str(), partner)};
    };
    EXPECT_EQ(keys("a\xff", nullptr), (Keys{2, 255, 1023, 95}));
    EXPECT_EQ(keys("MetaObject", "Point"), (Keys{10, 513, 513, 954}));
    EXPECT_EQ(keys("CreateInterface", ""), (Keys{15, 2556, 508, 4065}));
    EXPECT_EQ(keys("\xba\x80\x80\x80\x80\x80\x80\x80\xce", ""), (Keys{9, 1136, 112, 904}));
    EXPECT_EQ(keys(std::string(7000, '\x7f'), ""), (Keys{7000, 140, 140, 3788}));
}

TEST(Keys, OfGuidsDifferInSignFirstWeightAndWidth) {
    const auto keys = [](const GUID& guid, const GUID& partner) {
        return Keys{LYRSysTSDicoGUID::_ComputeGUIDKey(&guid),
                    LYRSysTSDicoIIDName::_ComputeKeyForIID(guid),
                    LYRSysTSDicoCLSIDName::_ComputeKeyForCLSID(guid),
                    Dictionary::_ComputeHashKey(&guid, &partner)};
    };
    const GUID ones = G(~0U, 0xffff, 0xffff, {255, 255, 255, 255, 255, 255, 255, 255});
    EXPECT_EQ(keys(CLSID_LYRSysTSBaseUnknown, IID_IUnknown), (Keys{111, 556, 556, 1009}));
    EXPECT_EQ(keys(IID_IUnknown, CLSID_LYRSysTSBaseUnknown), (Keys{2586, 538, 538, 1009}));
    EXPECT_EQ(keys(G(0x1000), GUID{}), (Keys{16, 16, 16, 32}));
    EXPECT_EQ(keys(ones, GUID{}), (Keys{1927, 904, 904, 136}));
}

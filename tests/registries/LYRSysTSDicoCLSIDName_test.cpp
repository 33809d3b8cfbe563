#include "TestSupport.h"

TEST(ClassIds, TheFirstRegistrationStaysAndTheQueryReadsTheFilesOnce) {
    TempDirectory files;
    files.Write("a.clsidts", "{00000009-0000-0000-0000-000000000000} Filed libA\n");
    UseDictionaryPath(files.path);
    const auto add = [](const GUID& clsid, const char* name, const char* library) {
        const auto* added = LYRSysTSDicoCLSIDName::AddDicoCLSIDName(clsid, name, library);
        const auto* found = LYRSysTSDicoCLSIDName::QueryDicoCLSIDNameByCLSID(clsid);
        if (found == nullptr) return std::string("none");
        return (added ? "" : "no: ") + TextOf(found->className) + " " + TextOf(found->library);
    };
    EXPECT_EQ(add(G(9), nullptr, nullptr), "no: Filed libA");
    EXPECT_EQ(add(G(1), "Point", "libA"), "Point libA");
    EXPECT_EQ(add(G(1), "Point", nullptr), "Point libA");
    EXPECT_EQ(add(G(1), "Point", "A"), "no: Point libA");
    EXPECT_EQ(add(G(2), "Point", nullptr), "Point (null)");
    EXPECT_EQ(add(G(2), "Point", "libB"), "Point (null)");
    EXPECT_EQ(add(G(3), std::string(5000, 'x').c_str(), nullptr), "none");
    EXPECT_EQ(add(G(3), "Point", std::string(5000, 'x').c_str()), "none");
    LYRSysTSDicoCLSIDName::_FreeDictionary();
    EXPECT_EQ(add(G(9), nullptr, nullptr), "none");
}

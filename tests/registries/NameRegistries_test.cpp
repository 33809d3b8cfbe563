// What files can say of ids and names is tested in fuzz/; here is what only code can say.
#include "TestSupport.h"

using Classes = LYRSysTSDicoCLSIDName;
using Interfaces = LYRSysTSDicoIIDName;

TEST(NameRegistries, RefuseWhatCannotBeInternedAndForgetAllWhenFreed) {
    UseDictionaryPath("");
    const std::string tooLong(5000, 'x');
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(Interfaces::AddDicoIIDName(G(1), tooLong.c_str()), 0);
        EXPECT_EQ(Interfaces::AddDicoIIDName(G(1), nullptr), 0);
        EXPECT_EQ(Interfaces::QueryDicoIIDNameByName("I"), nullptr);
        EXPECT_EQ(Interfaces::AddDicoIIDName(G(1), "I"), 1);
        const GUID* const id = Interfaces::QueryDicoIIDNameByName("I");
        EXPECT_EQ(id, LYRSysTSDicoGUID::AddGUIDInDico(id));
        EXPECT_EQ(Classes::AddDicoCLSIDName(G(1), tooLong.c_str(), nullptr), nullptr);
        EXPECT_EQ(Classes::AddDicoCLSIDName(G(1), "C", tooLong.c_str()), nullptr);
        EXPECT_EQ(Classes::QueryDicoCLSIDNameByCLSID(G(1)), nullptr);
        auto* const added = Classes::AddDicoCLSIDName(G(1), "C", nullptr);
        EXPECT_TRUE(added && Classes::QueryDicoCLSIDNameByCLSID(G(1)) == added);
        Interfaces::_FreeDictionary(), Classes::_FreeDictionary();
    }
}

TEST(NameRegistries, AndTheDictionaryTellIdsApartByTheirLastBytes) {
    for (unsigned k = 1; k < 4000; ++k) {
        const GUID id = IdWithEnd(k);
        const std::string name = std::to_string(k);
        ASSERT_TRUE(Interfaces::AddDicoIIDName(id, name.c_str()) == 1 &&
                    Classes::AddDicoCLSIDName(id, name.c_str(), nullptr) != nullptr);
        ASSERT_TRUE(Dictionary::AddDictionaryTS(id, G(1), Creator(k), nullptr));
        ASSERT_TRUE(Dictionary::AddDictionaryTS(G(1), id, Creator(k), nullptr));
    }
}

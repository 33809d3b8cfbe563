#include "TestSupport.h"

TEST(RegistrationTrace, PrintsFiveLinesAndCountsRefusedCalls) {
    const GUID meta = CLSID_LYRSysTSMetaClass, id = G(0xab, 0x1, 0xF0, {1, 2, 3, 4, 5, 6, 7, 255});
    Record info;
    info.className = "C";
    testing::internal::CaptureStdout();
    EXPECT_EQ(DumpTSAddDicEntry(nullptr, nullptr, "C", "I", 42, Creator(26), nullptr, nullptr), 1);
    EXPECT_EQ(DumpTSAddDicEntry(&id, &id, "C", nullptr, 42, Creator(26), nullptr, "L"), 0);
    EXPECT_EQ(DumpTSAddDicEntry(&id, &meta, nullptr, nullptr, 42, Creator(26), &info, "L"), 1);
    const std::string top = "\n" + std::string(133, '_') + "\nNewEntry_";
    const std::string names[] = {"NAME_1      : C I (null) (null) in_info:0x(nil)",
                                 "GUID_3      : C MetaObject 000000AB-0001-00F0-0102-0304050607FF "
                                 "DC9A2804-3801-43DE-AD64-971FAE3C7F4A in_info:0x" +
                                     testing::PrintToString(&info)};
    const std::string bottom = " \n----------------------\nAdded_Value   : Crea:0x0x1a";
    EXPECT_EQ(testing::internal::GetCapturedStdout(), top + names[0] + bottom + " Clef:42   \n" +
                                                          top + names[1] + bottom +
                                                          " ShL:L  Clef:42   \n");
}

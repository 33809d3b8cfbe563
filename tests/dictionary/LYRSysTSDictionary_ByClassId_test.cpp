#include "TestSupport.h"

static const GUID a = G(1), b = G(2), c = G(0x100);  // (a, b) and (a, c) share a bucket

static Record* Add(const GUID& clsid, const GUID& iid, std::uintptr_t creator, Record* info) {
    return Dictionary::AddDictionaryTS(clsid, iid, Creator(creator), info);
}

TEST(EntriesByClassId, ARefusalChangesNeitherTheEntryNorTheRecordHandedIn) {
    Record infos[3], other;
    infos[0].clsid = infos[1].iid = &c;
    infos[2].creator = Creator(2);
    for (Record& info : infos) ExpectRefused(info, [&] { return Add(a, b, 1, &info); });
    ExpectErrors("", [] { EXPECT_EQ(Add(a, b, 0, nullptr), nullptr); });
    EXPECT_EQ(Find(a, b), nullptr);
    Record* record = Add(a, b, 1, nullptr);
    EXPECT_EQ(Add(a, b, 1, record), record);
    EXPECT_EQ(Find(a, b), record);
    ExpectRefused(*record, [] { return Add(a, b, 2, nullptr); });
    ExpectRefused(other, [&] { return Add(a, b, 1, &other); });
}

TEST(CombinedAddition, OneRecordServesBothTables) {
    TempDirectory files;
    files.Write("a.dicts", "Filed I libL ITFLEAF Leaf\n");
    UseDictionaryPath(files.path);
    const auto add = [](const GUID* clsid, const GUID* iid, const char* name, unsigned by = 1) {
        return Dictionary::AddDictionaryTS(clsid, iid, name, "I", "libL", Creator(by), 1);
    };
    ExpectErrors("", [&] {
        Record* record = add(&a, &b, "Filed");
        EXPECT_TRUE(record != nullptr && Find("Filed") == record && Find(a, b) == record);
        EXPECT_EQ(Entry("Filed"), "L Leaf (null)") << "the files are read first";
        EXPECT_EQ(add(&a, &b, nullptr), record);
        record = add(&a, &c, "Coded");
        EXPECT_TRUE(record != nullptr && Find("Coded") == record && Find(a, c) == record);
        EXPECT_TRUE(add(&a, nullptr, "Named") && Find("Named"));
        EXPECT_TRUE(add(&b, &b, "Uncreated", 0) && Find("Uncreated") && !Find(b, b));
        EXPECT_EQ(add(&a, nullptr, nullptr), nullptr);
    });
    ExpectErrors(kRefused, [&] { EXPECT_EQ(add(&a, &b, "Own", 2)->clsid, nullptr); });
    ExpectErrors(kRefused + kRefused, [&] { EXPECT_EQ(add(&a, &b, "Filed", 2), nullptr); });
}

TEST(InterfaceName, IsThatOfTheMetaObjectElseTheRegistered) {
    UseDictionaryPath("");
    LYRSysTSDicoIIDName::AddDicoIIDName(a, "Registered");
    EXPECT_STREQ(Dictionary::GetInterfaceName(a), "Registered");
    Dictionary::FindOrCreateMetaObject("IMeta", PlainClass, &a, nullptr, nullptr);
    EXPECT_STREQ(Dictionary::GetInterfaceName(a), "IMeta");
}

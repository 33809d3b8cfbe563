#include "TestSupport.h"

#include <algorithm>

TEST(EntriesByName, RepetitionsMergeInSilence) {
    ExpectErrors("", [] {
        Record* record = Add("C", "I", nullptr, "Leaf");
        EXPECT_EQ(Add("C", "I", "libFoo"), record);
        EXPECT_EQ(Add("C", "I", "Foo", nullptr, "Ext", nullptr, record), record);
        EXPECT_EQ(Add("C", "I", nullptr, nullptr, nullptr, Creator(1)), record);
        EXPECT_EQ(Entry("C"), "Foo Leaf Ext");
        EXPECT_EQ(record->creator.load(), Creator(1));
        EXPECT_TRUE(Add("C", "\3#") != record && Add("\1!", "I") != record) << "in one bucket";
        EXPECT_EQ(Add(nullptr, "I"), nullptr);
        EXPECT_STREQ(Add("D", "I", "lib")->sharedLibrary, "");
        EXPECT_STREQ(Add("F", "I", "Lib")->sharedLibrary, "Lib");
    });
}

TEST(EntriesByName, ARefusalChangesNeitherTheEntryNorTheRecordHandedIn) {
    std::string name;
    const auto add = [&](Record* info) {
        return Add(name.c_str(), "I", "L", "F", "E", Creator(1), info);
    };
    for (int field = 0; field < 4; ++field) {
        name = std::to_string(field);
        Record* info = new Record;
        if (field == 0) info->sharedLibrary = "other";
        if (field == 1) info->itfLeaf = "other";
        if (field == 2) info->extendedBy = "other";
        if (field == 3) info->creator = Creator(2);
        ExpectRefused(*info, [&] { return add(info); });
        EXPECT_EQ(Find(name.c_str()), nullptr);
        EXPECT_EQ(Add(name.c_str(), "I", nullptr, nullptr, nullptr, nullptr, info), info);
        ExpectRefused(*info, [&] { return add(nullptr); });
    }
    Record other;
    ExpectRefused(other, [&] { return Add("0", "I", nullptr, nullptr, nullptr, nullptr, &other); });
    ExpectRefused(other, [&] { return Add(std::string(5000, 'x').c_str(), "I"); });
    other.className = "other";
    ExpectRefused(other, [&] { return Add("1", "J", nullptr, nullptr, nullptr, nullptr, &other); });
}

TEST(StaticRegistration, RecordsCreationFunctionsOnly) {
    LYRSysTSFillDictionary("C", "I", Creator(1));
    LYRSysTSFillDictionary("D", "CreateInterface", nullptr);
    LYRSysTSFillDictionary("C", "CreateInterface", Creator(1));
    EXPECT_FALSE(Find("C") || Dictionary::QueryDictionary("D", "CreateInterface", 0));
    EXPECT_EQ(Dictionary::QueryDictionary("C", "CreateInterface", 0)->creator.load(), Creator(1));
}

TEST(EntryRecord, LeavesNothingBehind) {
    alignas(Record) static unsigned char memory[sizeof(Record)];
    auto* const record = new (memory) Record;
    std::memset(memory, 1, sizeof memory);
    record->~Record();
    EXPECT_EQ(std::count(std::begin(memory), std::end(memory), 0), sizeof memory);
}

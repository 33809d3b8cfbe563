#include "TestClasses.h"

TEST(MetaClass, KindOfPassesOverClassesWithoutNameOrIdAndDestructFreesTheList) {
    const GUID one = G(1), two = G(2);
    auto* root = new LYRSysTSMetaClassBase(&one, "Root", nullptr);
    auto* mid = new LYRSysTSMetaClassBase(nullptr, nullptr, root);
    auto* leaf = new LYRSysTSMetaClassBase(&two, "Leaf", mid);
    auto* twin = new LYRSysTSMetaClassBase(nullptr, "Leaf", nullptr);
    EXPECT_TRUE(leaf->IsAKindOf("Leaf") && leaf->IsAKindOf("Root") && !root->IsAKindOf("Leaf"));
    EXPECT_TRUE(leaf->IsAKindOf(G(2)) && leaf->IsAKindOf(G(1)) && !root->IsAKindOf(G(2)));
    EXPECT_TRUE(leaf->IsAKindOf(leaf) && leaf->IsAKindOf(root) && !root->IsAKindOf(leaf));
    EXPECT_FALSE(twin->IsAKindOf(leaf) || twin->IsAKindOf(GUID{}) || leaf->IsAKindOf(mid->IsA()));
    EXPECT_EQ(sHeadMeta, twin);
    LYRSysTSMetaClassBase::Destruct();
    EXPECT_EQ(sHeadMeta, nullptr);
}

TEST(MetaObjects, OnePerNameRecordedByNameAndIdInOneRecord) {
    UseDictionaryPath("");
    Record* record = Add("Gadget", "MetaObject", "Lib");
    auto* meta = Class("Gadget", ImplementationClass, Class("Base", PlainClass, nullptr, 2), 1);
    EXPECT_TRUE(Class("Gadget") == meta && Dictionary::QueryMetaObject("Gadget") == meta);
    EXPECT_EQ(Find(Id(1), CLSID_LYRSysTSMetaClass), record);
    EXPECT_EQ(Find(Id(2), CLSID_LYRSysTSMetaClass), Add("Base", "MetaObject"));
    ExpectErrors(kRefused, [&] { EXPECT_NE(Class("Two", PlainClass, nullptr, 1), meta); });
    EXPECT_TRUE(Dictionary::QueryMetaObject("Two") && Dictionary::QueryMetaObject(Id(1)) == meta);
    Dictionary::_DeleteDictionary();
    ExpectErrors("", [&] { EXPECT_NE(Class("Gadget"), meta); });
    EXPECT_NE(Class("Gadget"), Class("Gadget"));
}

TEST(MetaObjects, TypeSelectsTheKindEveryCallMayExtendAndMadeUpIdsCount) {
    std::string kinds;
    for (int type = 0; type < 7; ++type) {
        auto* meta = Class(std::to_string(type), type)->ToMetaClassBase();
        auto* ext = meta->CastToMetaExtension();
        kinds += ext ? 'e' : dynamic_cast<LYRSysTSMetaClassImpl*>(meta) ? 'i' : '-';
        LYRSysTSFindOrCreateMetaObject(meta->IsA(), PlainClass, nullptr, nullptr, "0");
        EXPECT_TRUE(!ext || (ext->GetExtensionType() == type && ext->IsExtensionOf(Class("0"))));
        EXPECT_FALSE(ext && ext->IsExtensionOf(Class("Derived", PlainClass, Class("0"), 1)));
        EXPECT_EQ(*meta->GetClassId(), G(static_cast<unsigned>(2 * type + 1)));
        EXPECT_EQ(Class("LYRNull"), nullptr);
        EXPECT_EQ(*Dictionary::_CreateCLSID(), G(static_cast<unsigned>(2 * type + 2)));
    }
    EXPECT_EQ(kinds, "-i--ee-");
}

#pragma once

#include "Tables.h"
#include "TestSupport.h"

/// Checks that each stored string stands in its bucket and in order, and is the one that interning
/// answers; and so with the ids. How many there are of both.
inline std::size_t ExpectStoresAgree() {
    using Strings = LYRSysTSDicoString;
    const auto checkText = [](int bucket, const DicoStringNode& node) {
        int length = 0;
        EXPECT_EQ(Strings::_ComputeStringKey(node.text, length), bucket);
        EXPECT_EQ(node.length, length);
        EXPECT_EQ(Strings::AddStringInDico(node.text), node.text);
        const DicoStringNode* const next = node.next;
        EXPECT_TRUE(next == nullptr || next->length < length ||
                    (next->length == length && std::strcmp(next->text, node.text) > 0));
    };
    const auto checkId = [](int bucket, const DicoGUIDNode& node) {
        EXPECT_EQ(LYRSysTSDicoGUID::_ComputeGUIDKey(&node.guid), bucket);
        EXPECT_EQ(LYRSysTSDicoGUID::AddGUIDInDico(&node.guid), &node.guid);
    };
    return Walk<DicoStringNode>(kStrings, checkText) + Walk<DicoGUIDNode>(kIds, checkId);
}

/// Checks that each entry of the dictionary stands in its bucket and is the one that a query finds.
inline void ExpectEntriesAgree() {
    Walk<DicEntryLink>(kEntriesByName, [](int bucket, const DicEntryLink& link) {
        const Record& info = *link.info;
        EXPECT_EQ(Dictionary::_ComputeHashKey(info.className, info.interfaceName), bucket);
        EXPECT_EQ(Dictionary::QueryDictionary(info.className, info.interfaceName, 0), &info);
    });
    Walk<DicEntryLink>(kEntriesById, [](int bucket, const DicEntryLink& link) {
        EXPECT_EQ(Dictionary::_ComputeHashKey(link.info->clsid, link.info->iid), bucket);
        EXPECT_EQ(Find(*link.info->clsid, *link.info->iid), link.info);
    });
}

/// The entries of the dictionary, how much the registries hold, and the meta-objects.
inline std::string Contents() {
    std::string all;
    const auto add = [&](int, const DicEntryLink& link) {
        const Record& r = *link.info;
        for (const GUID* id : {r.clsid, r.iid}) all += id ? testing::PrintToString(*id) : "-";
        for (const char* text :
             {r.className, r.interfaceName, r.sharedLibrary, r.itfLeaf, r.extendedBy}) {
            all += " " + TextOf(text);
        }
        all += r.creator.load() ? " creator\n" : "\n";
    };
    Walk<DicEntryLink>(kEntriesByName, add);
    Walk<DicEntryLink>(kEntriesById, add);
    const auto count = [](int, const auto&) {};
    all += std::to_string(Walk<IIDNameLink>(kInterfacesById, count, 1024) +
                          Walk<IIDNameLink>(kInterfacesByName, count, 1024) +
                          Walk<CLSIDNameLink>(kClassesById, count, 1024));
    struct Metas : LYRSysTSMetaClassBase {
        static auto* After(LYRSysTSMetaClassBase* meta) { return meta->*(&Metas::_nextMeta); }
    };
    for (auto* meta = sHeadMeta; meta != nullptr; meta = Metas::After(meta)) {
        all += "\n" + TextOf(meta->IsA());
    }
    return all;
}

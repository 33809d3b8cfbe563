#pragma once

// The process-wide tables, walked from outside: they are private and exported, so they are found by
// their symbols.

#include "TestSupport.h"

#include <algorithm>
#include <dlfcn.h>
#include <future>
#include <set>
#include <unistd.h>
#include <vector>

/// Visits every link of the table with its bucket; how many there are.
template <typename Link, typename Visit>
std::size_t Walk(const char* symbol, Visit visit, int buckets = 4096) {
    auto** const heads = static_cast<Link**>(dlsym(RTLD_DEFAULT, symbol));
    std::size_t count = 0;
    for (int bucket = 0; bucket < buckets; ++bucket) {
        for (Link* link = heads[bucket]; link != nullptr; link = link->next, ++count) {
            visit(bucket, *link);
        }
    }
    return count;
}

template <typename Visit>
std::size_t WalkStrings(Visit visit) {
    return Walk<DicoStringNode>("_ZN18LYRSysTSDicoString11_DicoStringE", visit);
}
template <typename Visit>
std::size_t WalkGUIDs(Visit visit) {
    return Walk<DicoGUIDNode>("_ZN16LYRSysTSDicoGUID9_DicoGUIDE", visit);
}
template <typename Visit>
std::size_t WalkByName(Visit visit) {
    return Walk<DicEntryLink>("_ZN18LYRSysTSDictionary10_dicByNameE", visit);
}
template <typename Visit>
std::size_t WalkById(Visit visit) {
    return Walk<DicEntryLink>("_ZN18LYRSysTSDictionary10_dicByGUIDE", visit);
}

/// Checks that each stored string stands once, in its bucket and in order, and is the one that
/// interning answers; and so with the GUIDs. How many strings there are.
inline std::size_t ExpectStoresAgree() {
    const DicoStringNode* last = nullptr;
    int lastBucket = -1;
    std::set<std::string> texts;
    const std::size_t strings = WalkStrings([&](int bucket, DicoStringNode& node) {
        int length = 0;
        EXPECT_EQ(LYRSysTSDicoString::_ComputeStringKey(node.text, length), bucket);
        EXPECT_EQ(node.length, length);
        EXPECT_EQ(LYRSysTSDicoString::AddStringInDico(node.text), node.text);
        EXPECT_TRUE(texts.insert(node.text).second) << "twice: " << node.text;
        if (bucket == lastBucket) {
            EXPECT_TRUE(last->length > length ||
                        (last->length == length && std::strcmp(last->text, node.text) < 0));
        }
        last = &node;
        lastBucket = bucket;
    });
    WalkGUIDs([](int bucket, DicoGUIDNode& node) {
        EXPECT_EQ(LYRSysTSDicoGUID::_ComputeGUIDKey(&node.guid), bucket);
        EXPECT_EQ(LYRSysTSDicoGUID::AddGUIDInDico(&node.guid), &node.guid);
    });
    return strings;
}

/// Checks that each entry of the dictionary stands in its bucket and is the one that a query finds.
inline void ExpectEntriesAgree() {
    WalkByName([](int bucket, DicEntryLink& link) {
        const Record& info = *link.info;
        EXPECT_EQ(Dictionary::_ComputeHashKey(info.className, info.interfaceName), bucket);
        EXPECT_EQ(Dictionary::QueryDictionary(info.className, info.interfaceName, 0), &info);
    });
    WalkById([](int bucket, DicEntryLink& link) {
        EXPECT_EQ(Dictionary::_ComputeHashKey(link.info->clsid, link.info->iid), bucket);
        EXPECT_EQ(Find(*link.info->clsid, *link.info->iid), link.info);
    });
}

/// The meta-objects, newest first.
inline std::vector<LYRSysTSMetaClassBase*> MetaObjects() {
    struct Access : LYRSysTSMetaClassBase {
        static LYRSysTSMetaClassBase* Next(LYRSysTSMetaClassBase* meta) {
            return meta->*&Access::_nextMeta;
        }
    };
    std::vector<LYRSysTSMetaClassBase*> all;
    for (auto* meta = sHeadMeta; meta != nullptr; meta = Access::Next(meta)) all.push_back(meta);
    return all;
}

/// What the dictionary, the registries and the list of meta-objects hold, in sorted lines.
inline std::string Contents() {
    const auto id = [](const GUID* guid) {
        return guid == nullptr ? "(null)" : std::string(reinterpret_cast<const char*>(guid), 16);
    };
    std::vector<std::string> lines;
    const auto addEntry = [&](int bucket, DicEntryLink& link) {
        const Record& info = *link.info;
        std::string line = std::to_string(bucket) + id(info.clsid) + id(info.iid);
        for (const char* text : {info.className, info.interfaceName, info.sharedLibrary,
                                 info.itfLeaf, info.extendedBy}) {
            line += " " + TextOf(text);
        }
        lines.push_back(line + (info.creator != nullptr ? " creator" : ""));
    };
    WalkByName(addEntry);
    WalkById(addEntry);
    const auto addInterface = [&](int bucket, IIDNameLink& link) {
        const IIDNameRecord& record = *link.record;
        lines.push_back(std::to_string(bucket) + id(record.iid) + record.interfaceName);
    };
    Walk<IIDNameLink>("_ZN19LYRSysTSDicoIIDName13_IIDNameByIIDE", addInterface, 1024);
    Walk<IIDNameLink>("_ZN19LYRSysTSDicoIIDName14_IIDNameByNameE", addInterface, 1024);
    const auto addClass = [&](int bucket, CLSIDNameLink& link) {
        const CLSIDNameRecord& record = *link.record;
        lines.push_back(std::to_string(bucket) + id(record.clsid) + TextOf(record.className) + " " +
                        TextOf(record.library));
    };
    Walk<CLSIDNameLink>("_ZN21LYRSysTSDicoCLSIDName17_CLSIDNameByCLSIDE", addClass, 1024);
    for (const auto* meta : MetaObjects()) lines.push_back("meta-object " + TextOf(meta->IsA()));
    std::sort(lines.begin(), lines.end());
    std::string all;
    for (const std::string& line : lines) all += line + '\n';
    return all;
}

/// Checks that another thread can take every lock, that of `object` too if there is one, and that
/// the tables are in order. Ends the process when a lock is held.
inline void ExpectSound(LYRSysTSBaseUnknown* object) {
    auto other = std::async(std::launch::async, [object] {
        for (auto* mutex :
             {GetGlobalCLSIDDicoMutex(), GetGlobalGUIDDicoMutex(), GetGlobalIIDDicoMutex(),
              GetGlobalStringDicoMutex(), GetGlobalDicoMutex()}) {
            mutex->LockF();
            mutex->UnlockF();
        }
        for (auto* meta : MetaObjects()) {
            auto* implementation = dynamic_cast<LYRSysTSMetaClassImpl*>(meta);
            if (implementation != nullptr) implementation->_GetInterfaceFactory(G(1));
            auto* extension = meta->CastToMetaExtension();
            if (extension != nullptr) extension->_IsExtensionOf("");
        }
        if (object != nullptr) object->Lock(), object->Unlock();
    });
    if (other.wait_for(std::chrono::seconds(5)) != std::future_status::ready) {
        std::fputs("A lock is held.\n", stderr);
        ::_exit(1);
    }
    for (const auto* meta : MetaObjects()) EXPECT_NE(meta->IsA(), nullptr);
    ExpectStoresAgree();
    ExpectEntriesAgree();
}

/// Fills the indexes and a block of the string store, so that the next addition needs more room.
inline void CrowdTables() {
    const auto all = [](int, const auto&) {};
    LYRSysTSDicoString::AddStringInDico(std::string(4995, 'x').c_str());
    GUID id = G(1000);
    for (; WalkById(all) < 42; ++id.Data1) {
        Dictionary::AddDictionaryTS(id, id, Creator(1), nullptr);
    }
    for (int i = 0; WalkByName(all) < 42; ++i) Add(std::to_string(i).c_str(), "J");
    for (int i = 0; WalkStrings(all) < 85; ++i) {
        LYRSysTSDicoString::AddStringInDico(std::to_string(i).c_str());
    }
    for (; WalkGUIDs(all) < 85; ++id.Data1) LYRSysTSDicoGUID::AddGUIDInDico(&id);
}

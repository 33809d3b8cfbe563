#pragma once

#include <cstddef>
#include <dlfcn.h>

/// Visits every link of a table of chains with its bucket; the number of links. The table is found
/// by its symbol, since it is private and exported.
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

constexpr const char* kStrings = "_ZN18LYRSysTSDicoString11_DicoStringE";
constexpr const char* kIds = "_ZN16LYRSysTSDicoGUID9_DicoGUIDE";
constexpr const char* kEntriesByName = "_ZN18LYRSysTSDictionary10_dicByNameE";
constexpr const char* kEntriesById = "_ZN18LYRSysTSDictionary10_dicByGUIDE";
// These have 1024 buckets.
constexpr const char* kInterfacesById = "_ZN19LYRSysTSDicoIIDName13_IIDNameByIIDE";
constexpr const char* kInterfacesByName = "_ZN19LYRSysTSDicoIIDName14_IIDNameByNameE";
constexpr const char* kClassesById = "_ZN21LYRSysTSDicoCLSIDName17_CLSIDNameByCLSIDE";

#include "LYRSysTSDictionary.h"
#include "dictionary/Addition.h"
#include "dictionary/DictionaryTables.h"
#include "dictionary/PairKey.h"
#include "support/ByteSum.h"

#include <string_view>

namespace {

std::uint32_t TextSum(const char* text) {
    return text != nullptr ? lyr::internal::WeightedByteSum<signed char>(std::string_view(text), 1)
                           : 0;
}

}  // namespace

int LYRSysTSDictionary::_ComputeHashKey(const char* a, const char* b) {
    return lyr::internal::PairBucket(TextSum(a), TextSum(b));
}

LYRSysTSInfoDic* LYRSysTSDictionary::AddDictionaryTS(const char* className,
                                                     const char* interfaceName,
                                                     const char* sharedLibrary, const char* itfLeaf,
                                                     const char* extendedBy,
                                                     LYRSysTSInterfaceFactory creator,
                                                     LYRSysTSInfoDic* info) {
    if (className == nullptr || interfaceName == nullptr) return nullptr;
    lyr::internal::Addition addition(className, interfaceName, sharedLibrary, itfLeaf, extendedBy,
                                     creator);
    return lyr::internal::Add(addition, info);
}

LYRSysTSInfoDic* LYRSysTSDictionary::QueryDictionary(const char* className,
                                                     const char* interfaceName, short load) {
    using Tables = lyr::internal::DictionaryTables;
    return Tables::ReadEntry(className, interfaceName, load, &Tables::Record);
}

LYRSysTSMetaClass* LYRSysTSDictionary::QueryMetaObject(const char* className) {
    using Tables = lyr::internal::DictionaryTables;
    return Tables::ReadEntry(className, "MetaObject", 0, &Tables::MetaObject);
}

#include "dictionary/EntryCopy.h"

#include "dictionary/DictionaryTables.h"

namespace lyr::internal {

namespace {

EntryCopy Copy(LYRSysTSInfoDic* record) {
    if (record == nullptr) return {};
    return {record, record->creator, record->sharedLibrary, record->itfLeaf, record->extendedBy};
}

}  // namespace

EntryCopy EntryCopy::Of(const char* className, const char* interfaceName, short load) {
    return DictionaryTables::ReadEntry(className, interfaceName, load, &Copy);
}

EntryCopy EntryCopy::Of(const GUID& clsid, const GUID& iid, short load) {
    return DictionaryTables::ReadEntry(clsid, iid, load, &Copy);
}

}  // namespace lyr::internal

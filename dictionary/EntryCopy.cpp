#include "dictionary/EntryCopy.h"

#include "dictionary/DictionaryTables.h"

namespace lyr {

namespace {

EntryCopy Copy(LYRSysTSInfoDic* record) {
    if (record == nullptr) return {};
    return {record, record->creator, record->sharedLibrary, record->itfLeaf, record->extendedBy};
}

}  // namespace

EntryCopy EntryCopy::Of(const char* className, const char* interfaceName) {
    return DictionaryTables::ReadEntry(className, interfaceName, 1, &Copy);
}

EntryCopy EntryCopy::Of(const GUID& clsid, const GUID& iid) {
    return DictionaryTables::ReadEntry(clsid, iid, 1, &Copy);
}

}  // namespace lyr

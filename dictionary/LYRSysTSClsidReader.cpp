#include "LYRSysTSClsidReader.h"

#include "LYRSysTSConvertStringToGUID.h"
#include "LYRSysTSDicoCLSIDName.h"
#include "dictionary/Messages.h"
#include "support/MutexGuard.h"
#include "support/Text.h"

namespace {

/// Under the dictionary's lock: the registry leaves it to its callers that one adds at a time.
bool Add(const GUID& clsid, const char* name, const char* library) {
    const lyr::internal::MutexGuard guard(*GetGlobalDicoMutex());
    return LYRSysTSDicoCLSIDName::AddDicoCLSIDName(clsid, name, library) != nullptr;
}

}  // namespace

HRESULT LYRSysTSClsidReader::PutInfo(char** words, int count, const char* path, int lineNumber) {
    path = lyr::internal::TextOrNull(path);
    const bool rightCount = count == 2 || count == 3;
    if (words == nullptr || !rightCount || words[0] == nullptr || words[1] == nullptr) {
        lyr::internal::Say("Problem reading dico name %s line %d\n", path, lineNumber);
        return E_FAIL;
    }
    const char* const library = count == 3 ? words[2] : nullptr;
    GUID clsid;
    if (LYRSysTSConvertStringToGUID(words[0], clsid) != 0) {
        lyr::internal::Say("Problem converting CLSID in %s line %d\n", path, lineNumber);
        return E_FAIL;
    }
    if (Add(clsid, words[1], library)) return S_OK;
    lyr::internal::Say("Error in dictionary %s line %d\nCan not add class '%s %s %s'\n", path,
                       lineNumber, words[1], words[0], lyr::internal::TextOrNull(library));
    return E_FAIL;
}

#include "LYRSysTSClsidReader.h"

#include "LYRSysTSConvertStringToGUID.h"
#include "LYRSysTSDicoCLSIDName.h"
#include "support/Text.h"

#include <cstdio>

HRESULT LYRSysTSClsidReader::PutInfo(char** words, int count, const char* path, int lineNumber) {
    path = lyr::TextOrNull(path);
    const bool rightCount = count == 2 || count == 3;
    if (words == nullptr || !rightCount || words[0] == nullptr || words[1] == nullptr) {
        std::fprintf(stderr, "Problem reading dico name %s line %d\n", path, lineNumber);
        return E_FAIL;
    }
    const char* const library = count == 3 ? words[2] : nullptr;
    GUID clsid;
    if (LYRSysTSConvertStringToGUID(words[0], clsid) != 0) {
        std::fprintf(stderr, "Problem converting CLSID in %s line %d\n", path, lineNumber);
        return E_FAIL;
    }
    if (LYRSysTSDicoCLSIDName::AddDicoCLSIDName(clsid, words[1], library) != nullptr) return S_OK;

    std::fprintf(stderr, "Error in dictionary %s line %d\n", path, lineNumber);
    std::fprintf(stderr, "Can not add class '%s %s %s'\n", words[1], words[0],
                 lyr::TextOrNull(library));
    return E_FAIL;
}

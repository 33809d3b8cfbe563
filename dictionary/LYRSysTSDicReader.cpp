#include "LYRSysTSDicReader.h"

#include "LYRSysTSDictionary.h"
#include "dictionary/Messages.h"
#include "dictionary/PairLine.h"
#include "support/Text.h"

HRESULT LYRSysTSDicReader::PutInfo(char** words, int count, const char* path, int lineNumber) {
    const char* itfLeaf = nullptr;
    const char* extendedBy = nullptr;
    if (!lyr::internal::ReadPairLine(words, count, itfLeaf, extendedBy)) {
        lyr::internal::Say("Problem reading dico : %s line %d\n", lyr::internal::TextOrNull(path),
                           lineNumber);
        return E_FAIL;
    }
    // The dictionary says itself when it refuses the entry, and the file is read on.
    LYRSysTSDictionary::AddDictionaryTS(words[0], words[1], words[2], itfLeaf, extendedBy, nullptr,
                                        nullptr);
    return S_OK;
}

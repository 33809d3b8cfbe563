#include "LYRSysTSDicReader.h"

#include "LYRSysTSDictionary.h"
#include "dictionary/Messages.h"
#include "support/Text.h"

namespace {

/// Takes `value` for a keyword that may stand once; false when it is missing or a second one.
bool TakeOnce(const char*& taken, const char* value) {
    if (taken != nullptr || value == nullptr) return false;
    taken = value;
    return true;
}

/// Reads the pairs of keyword and value behind the first three words; false for a bad line.
bool ReadKeywords(char** words, int count, const char*& itfLeaf, const char*& extendedBy) {
    for (int i = 3; i < count; i += 2) {
        const char* const keyword = words[i];
        if (i + 1 == count || keyword == nullptr) return false;
        const bool isLeaf = lyr::internal::SameText(keyword, "ITFLEAF");
        if (!isLeaf && !lyr::internal::SameText(keyword, "EXTENDED_BY")) return false;
        if (!TakeOnce(isLeaf ? itfLeaf : extendedBy, words[i + 1])) return false;
    }
    return true;
}

bool HasNames(char** words, int count) {
    return words != nullptr && count >= 3 && words[0] != nullptr && words[1] != nullptr &&
           words[2] != nullptr;
}

}  // namespace

HRESULT LYRSysTSDicReader::PutInfo(char** words, int count, const char* path, int lineNumber) {
    const char* itfLeaf = nullptr;
    const char* extendedBy = nullptr;
    if (!HasNames(words, count) || !ReadKeywords(words, count, itfLeaf, extendedBy)) {
        lyr::internal::Say("Problem reading dico : %s line %d\n", lyr::internal::TextOrNull(path),
                           lineNumber);
        return E_FAIL;
    }
    // The dictionary says itself when it refuses the entry, and the file is read on.
    LYRSysTSDictionary::AddDictionaryTS(words[0], words[1], words[2], itfLeaf, extendedBy, nullptr,
                                        nullptr);
    return S_OK;
}

#include "LYRSysTSIidReader.h"

#include "LYRSysTSConvertStringToGUID.h"
#include "LYRSysTSDicoIIDName.h"
#include "dictionary/Messages.h"
#include "support/MutexGuard.h"
#include "support/Text.h"

namespace {

/// What became of a pair, and if it was refused, the name that its id has, or the id that its name
/// has, as far as the registry tells.
struct Addition {
    bool isRefused;
    const char* otherName = nullptr;
    const GUID* otherId = nullptr;
};

/// Under the dictionary's lock: the registry leaves it to its callers that one adds at a time.
Addition Add(const GUID& iid, const char* name) {
    using Registry = LYRSysTSDicoIIDName;
    const lyr::internal::MutexGuard guard(*GetGlobalDicoMutex());
    if (Registry::AddDicoIIDName(iid, name) != 0) return {false};
    return {true, Registry::QueryDicoIIDNameByIID(iid), Registry::QueryDicoIIDNameByName(name)};
}

}  // namespace

HRESULT LYRSysTSIidReader::PutInfo(char** words, int count, const char* path, int lineNumber) {
    path = lyr::internal::TextOrNull(path);
    if (words == nullptr || count != 2 || words[0] == nullptr || words[1] == nullptr) {
        lyr::internal::Say("Error in IId dictionary %s line %d\n", path, lineNumber);
        return E_FAIL;
    }
    GUID iid;
    if (LYRSysTSConvertStringToGUID(words[0], iid) != 0) {
        lyr::internal::Say("Error in dictionary %s line %d\nInvalid iid :%s\n\n", path, lineNumber,
                           words[0]);
        return E_FAIL;
    }
    const Addition addition = Add(iid, words[1]);
    if (!addition.isRefused) return S_OK;

    lyr::internal::Say("Error in dictionary %s line %d\nCan not add interface '%s %s'\n", path,
                       lineNumber, words[0], words[1]);
    if (addition.otherName != nullptr && !lyr::internal::SameText(addition.otherName, words[1])) {
        lyr::internal::Say(
            "The iid is already defined with interface name '%s'\n"
            "Check dictionaries.\n\n",
            addition.otherName);
    } else if (addition.otherId != nullptr && *addition.otherId != iid) {
        lyr::internal::Say("The interface name is already defined with another iid\n");
    }
    return E_FAIL;
}

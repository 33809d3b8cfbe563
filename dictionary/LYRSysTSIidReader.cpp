#include "LYRSysTSIidReader.h"

#include "LYRSysTSConvertStringToGUID.h"
#include "LYRSysTSDicoIIDName.h"
#include "support/Text.h"

#include <cstdio>

namespace {

/// Says which of the two is taken, when the registry still tells.
void ExplainConflict(const GUID& iid, const char* name) {
    const char* const otherName = LYRSysTSDicoIIDName::QueryDicoIIDNameByIID(iid);
    if (otherName != nullptr && !lyr::SameText(otherName, name)) {
        std::fprintf(stderr, "The iid is already defined with interface name '%s'\n", otherName);
        std::fputs("Check dictionaries.\n\n", stderr);
        return;
    }
    const GUID* const otherId = LYRSysTSDicoIIDName::QueryDicoIIDNameByName(name);
    if (otherId != nullptr && *otherId != iid) {
        std::fputs("The interface name is already defined with another iid\n", stderr);
    }
}

}  // namespace

HRESULT LYRSysTSIidReader::PutInfo(char** words, int count, const char* path, int lineNumber) {
    path = lyr::TextOrNull(path);
    if (words == nullptr || count != 2 || words[0] == nullptr || words[1] == nullptr) {
        std::fprintf(stderr, "Error in IId dictionary %s line %d\n", path, lineNumber);
        return E_FAIL;
    }
    GUID iid;
    if (LYRSysTSConvertStringToGUID(words[0], iid) != 0) {
        std::fprintf(stderr, "Error in dictionary %s line %d\n", path, lineNumber);
        std::fprintf(stderr, "Invalid iid :%s\n\n", words[0]);
        return E_FAIL;
    }
    if (LYRSysTSDicoIIDName::AddDicoIIDName(iid, words[1]) != 0) return S_OK;

    std::fprintf(stderr, "Error in dictionary %s line %d\n", path, lineNumber);
    std::fprintf(stderr, "Can not add interface '%s %s'\n", words[0], words[1]);
    ExplainConflict(iid, words[1]);
    return E_FAIL;
}

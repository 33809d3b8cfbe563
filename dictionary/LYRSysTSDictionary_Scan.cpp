#include "LYRSysTSDictionary.h"
#include "LYRThrLibraryManager.h"
#include "dictionary/DictionaryScan.h"
#include "dictionary/DictionaryTables.h"
#include "dictionary/Messages.h"
#include "support/MutexGuard.h"
#include "support/Shortage.h"
#include "support/Text.h"

#include <climits>

void LYRSysTSDictionary::EnsureInitDictionary() {
    lyr::internal::EnsureDictionaryFilesAreRead();
}

HRESULT LYRSysTSDictionary::AddFolder(const char* folder, const void* origin) {
    char path[PATH_MAX];
    if (!LYRThrLibraryManager::FolderOf(folder, origin, path, sizeof path)) {
        lyr::internal::Say(
            "lyr: there is no folder of dictionaries \"%s\" to read\n"
            "  because     its place cannot be told\n"
            "  remedy      name an absolute folder, or with a relative one the address of a "
            "function of the program or library\n",
            lyr::internal::TextOrNull(folder));
        return E_FAIL;
    }
    const lyr::internal::NamedFolder named = lyr::internal::NameFolder(path);
    if (named == lyr::internal::NamedFolder::kTooLate) {
        lyr::internal::Say(
            "lyr: the folder of dictionaries \"%s\" comes too late, and is not read\n"
            "  because     the dictionary files have been read, by the first request that wanted "
            "them\n"
            "  remedy      name it before the first request, or in LYRDictionaryPath\n",
            path);
    }
    return named == lyr::internal::NamedFolder::kTaken ? S_OK : E_FAIL;
}

int LYRSysTSDictionary::_DicoIsAlreadyRead(const char* name) {
    if (name == nullptr) return 0;
    const lyr::internal::MutexGuard guard(*GetGlobalDicoMutex());
    if (lyr::internal::DictionaryTables::MetNames() == nullptr) return 0;
    return lyr::internal::RefuseOnShortage(0, [=]() LYR_REQUIRES(GetGlobalDicoMutex()) {
        return lyr::internal::IsFirstOfItsName(name) ? 0 : 1;
    });
}

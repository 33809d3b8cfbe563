#include "LYRSysTSDictionary.h"
#include "dictionary/DictionaryScan.h"
#include "dictionary/DictionaryTables.h"
#include "support/MutexGuard.h"
#include "support/Shortage.h"

void LYRSysTSDictionary::EnsureInitDictionary() {
    lyr::EnsureDictionaryFilesAreRead();
}

int LYRSysTSDictionary::_DicoIsAlreadyRead(const char* name) {
    if (name == nullptr) return 0;
    const lyr::MutexGuard guard(*GetGlobalDicoMutex());
    if (lyr::DictionaryTables::MetNames() == nullptr) return 0;
    return lyr::RefuseOnShortage(0, [=]() LYR_REQUIRES(GetGlobalDicoMutex()) {
        return lyr::IsFirstOfItsName(name) ? 0 : 1;
    });
}

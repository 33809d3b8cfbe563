#include "LYRSysTSDictionary.h"
#include "dictionary/DictionaryScan.h"
#include "dictionary/DictionaryTables.h"
#include "support/MutexGuard.h"
#include "support/Shortage.h"

void LYRSysTSDictionary::EnsureInitDictionary() {
    lyr::internal::EnsureDictionaryFilesAreRead();
}

int LYRSysTSDictionary::_DicoIsAlreadyRead(const char* name) {
    if (name == nullptr) return 0;
    const lyr::internal::MutexGuard guard(*GetGlobalDicoMutex());
    if (lyr::internal::DictionaryTables::MetNames() == nullptr) return 0;
    return lyr::internal::RefuseOnShortage(0, [=]() LYR_REQUIRES(GetGlobalDicoMutex()) {
        return lyr::internal::IsFirstOfItsName(name) ? 0 : 1;
    });
}

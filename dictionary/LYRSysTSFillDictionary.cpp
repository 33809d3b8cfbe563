#include "LYRSysTSFillDictionary.h"

#include "LYRSysTSDictionary.h"
#include "support/Text.h"

LYRSysTSFillDictionary::LYRSysTSFillDictionary(const char* className, const char* interfaceName,
                                               LYRSysTSInterfaceFactory factory) {
    if (className == nullptr || interfaceName == nullptr || factory == nullptr) return;
    if (!lyr::internal::SameText(interfaceName, "CreateInterface")) return;
    LYRSysTSDictionary::AddDictionaryTS(className, interfaceName, nullptr, nullptr, nullptr,
                                        factory, nullptr);
}

LYRSysTSFillDictionary::LYRSysTSFillDictionary(const LYRSysTSMetaClass*, const LYRSysTSMetaClass*,
                                               LYRSysTSInterfaceFactory) {}

int LYRSysTSFillDictionary::InitMetaClasses(LYRSysTSMetaClass*, LYRSysTSMetaClass*) {
    return 1;
}

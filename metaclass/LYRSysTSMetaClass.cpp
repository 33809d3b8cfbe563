#include "LYRSysTSMetaClass.h"

LYRSysTSMetaClass::LYRSysTSMetaClass() = default;

LYRSysTSMetaClass::~LYRSysTSMetaClass() = default;

int LYRSysTSMetaClass::IsAKindOf(const LYRSysTSMetaClass* other) const {
    const LYRSysTSMetaClass* current = this;
    while (current != nullptr && current != other) current = current->GetMetaObjectOfBaseClass();
    return current != nullptr ? 1 : 0;
}

#include "LYRSysTSRefCounterUnknown.h"

LYRSysTSRefCounterUnknown::LYRSysTSRefCounterUnknown() : _refCount(1) {}

LYRSysTSRefCounterUnknown::~LYRSysTSRefCounterUnknown() = default;

int LYRSysTSRefCounterUnknown::AddRef() {
    return _refCount.fetch_add(1) + 1;
}

int LYRSysTSRefCounterUnknown::Release() {
    const int count = _refCount.fetch_sub(1) - 1;
    if (count == 0) delete this;
    return count;
}

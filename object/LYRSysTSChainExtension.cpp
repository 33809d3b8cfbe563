#include "LYRSysTSChainExtension.h"

LYRSysTSChainExtension::LYRSysTSChainExtension(LYRSysTSBaseUnknown* extension)
    : _extension(extension), _next(nullptr) {}

LYRSysTSChainExtension::~LYRSysTSChainExtension() {
    _extension = nullptr;
    _next = nullptr;
}

HRESULT LYRSysTSChainExtension::SetNextChainExtension(LYRSysTSChainExtension* next) {
    if (next == nullptr || next == this) return E_FAIL;
    if (_next != nullptr || next->_next != nullptr) return E_FAIL;
    _next = next;
    return S_OK;
}

LYRSysTSChainExtension* LYRSysTSChainExtension::GetNextChainExtension() {
    return _next;
}

HRESULT LYRSysTSChainExtension::GetAssociatedExtension(LYRSysTSBaseUnknown*& extension) {
    extension = _extension;
    return extension != nullptr ? S_OK : E_FAIL;
}

#include "registries/Intern.h"

#include "LYRSysTSDicoGUID.h"
#include "LYRSysTSDicoString.h"

#include <cstring>
#include <new>

namespace lyr::internal {

const char* InternText(const char* text) {
    const char* const interned = LYRSysTSDicoString::AddStringInDico(text);
    if (interned != nullptr || text == nullptr) return interned;
    if (std::strlen(text) >= sizeof(DicoStringBlock::chars)) return nullptr;
    throw std::bad_alloc();
}

const GUID* InternGUID(const GUID* guid) {
    const GUID* const interned = LYRSysTSDicoGUID::AddGUIDInDico(guid);
    if (interned == nullptr && guid != nullptr) throw std::bad_alloc();
    return interned;
}

}  // namespace lyr::internal

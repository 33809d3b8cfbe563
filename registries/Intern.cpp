#include "registries/Intern.h"

#include "LYRSysTSDicoGUID.h"
#include "LYRSysTSDicoString.h"

#include <new>

namespace lyr::internal {

/// What the store does for the library's own code alone.
struct TextStore {
    static const char* Intern(const HashedText& text) { return LYRSysTSDicoString::Intern(text); }
};

const char* InternText(const HashedText& text) {
    if (text.text == nullptr) return nullptr;
    const char* const interned = TextStore::Intern(text);
    if (interned != nullptr || text.length >= sizeof(DicoStringBlock::chars)) return interned;
    throw std::bad_alloc();
}

const GUID* InternGUID(const GUID* guid) {
    const GUID* const interned = LYRSysTSDicoGUID::AddGUIDInDico(guid);
    if (interned == nullptr && guid != nullptr) throw std::bad_alloc();
    return interned;
}

}  // namespace lyr::internal

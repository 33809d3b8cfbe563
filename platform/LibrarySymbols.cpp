#include "LibrarySymbols.h"

#include <cstring>

namespace lyr::internal {

namespace {

/// What stands at an address, which the loader tells as a number.
template <typename Thing>
const Thing* At(std::uintptr_t address) {
    return reinterpret_cast<const Thing*>(address);  // NOLINT(performance-no-int-to-ptr)
}

struct Place {
    std::uintptr_t base;
    const ElfW(Dyn) * dynamic;
};

/// What the loader has noted of a library. Whoever has a handle comes after that, by the loader's
/// lock, of which the thread sanitizer does not know.
[[gnu::noinline]] __attribute__((no_sanitize("thread"))) Place PlaceOf(const link_map& library) {
    return {library.l_addr, library.l_ld};
}

std::uint32_t HashOf(const char* name) {
    std::uint32_t hash = 5381;
    for (; *name != '\0'; ++name) hash = hash * 33 + static_cast<unsigned char>(*name);
    return hash;
}

}  // namespace

LibrarySymbols::LibrarySymbols(const link_map& library) {
    const Place place = PlaceOf(library);
    _base = place.base;
    const std::uint32_t* table = nullptr;
    for (const ElfW(Dyn)* entry = place.dynamic; entry->d_tag != DT_NULL; ++entry) {
        // Most loaders, and not all, have added the base to the addresses that stand here.
        const std::uintptr_t value = entry->d_un.d_ptr;
        const std::uintptr_t address = value < _base ? value + _base : value;
        if (entry->d_tag == DT_SYMTAB) _symbols = At<ElfW(Sym)>(address);
        if (entry->d_tag == DT_STRTAB) _names = At<char>(address);
        if (entry->d_tag == DT_VERSYM) _versions = At<ElfW(Half)>(address);
        if (entry->d_tag == DT_GNU_HASH) table = At<std::uint32_t>(address);
    }
    if (table == nullptr || _symbols == nullptr || _names == nullptr) return;
    const std::uint32_t filterSize = table[2];
    const auto* const filter = reinterpret_cast<const ElfW(Addr)*>(table + 4);
    _bucketCount = table[0];
    _firstSymbol = table[1];
    _buckets = reinterpret_cast<const std::uint32_t*>(filter + filterSize);
    _hashes = _buckets + _bucketCount;
}

void* LibrarySymbols::Find(const char* name) const {
    if (_bucketCount == 0) return nullptr;
    const std::uint32_t hash = HashOf(name);
    std::uint32_t symbol = _buckets[hash % _bucketCount];
    if (symbol < _firstSymbol) return nullptr;
    for (;; ++symbol) {
        __builtin_prefetch(_symbols + symbol);  // arrives while the hash does
        const std::uint32_t known = _hashes[symbol - _firstSymbol];
        const bool isSame =
            (known | 1) == (hash | 1) && std::strcmp(_names + _symbols[symbol].st_name, name) == 0;
        if (isSame && IsPlain(symbol)) {
            return const_cast<char*>(At<char>(_base + _symbols[symbol].st_value));
        }
        if ((known & 1) != 0) return nullptr;
    }
}

/// Whether it is defined here, in the version that counts, and at the address that stands there.
bool LibrarySymbols::IsPlain(std::uint32_t symbol) const {
    constexpr ElfW(Half) kOldVersion = 0x8000;
    const ElfW(Sym)& entry = _symbols[symbol];
    if (_versions != nullptr && (_versions[symbol] & kOldVersion) != 0) return false;
    if (entry.st_shndx == SHN_UNDEF || entry.st_shndx == SHN_ABS) return false;
    const auto type = ELF64_ST_TYPE(entry.st_info);
    return type == STT_FUNC || type == STT_OBJECT || type == STT_NOTYPE;
}

}  // namespace lyr::internal

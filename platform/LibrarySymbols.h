#pragma once

#include <cstdint>
#include <elf.h>
#include <link.h>

namespace lyr::internal {

/// The functions that a loaded library itself defines, found through its own tables: without the
/// loader's lock, and at a cost that does not grow with their number. For a library that is never
/// unloaded.
class LibrarySymbols {
public:
    explicit LibrarySymbols(const link_map& library);

    /// The address of the function, as the loader would give it. Null when the library does not
    /// define it, and where only the loader can tell: in a library without a table of this kind,
    /// for a function that is chosen at run time, or that stands there in an old version only.
    void* Find(const char* name) const;

private:
    bool IsPlain(std::uint32_t symbol) const;

    std::uintptr_t _base = 0;
    const ElfW(Sym) * _symbols = nullptr;
    const char* _names = nullptr;
    const ElfW(Half) * _versions = nullptr;  // null: there are none

    // The table: each bucket begins a chain of symbols that lie one after the other. (It also has a
    // filter for names that are not there. Mostly they are, and it would be one more line of memory
    // to wait for.)
    std::uint32_t _bucketCount = 0;  // 0 without a table
    std::uint32_t _firstSymbol = 0;
    const std::uint32_t* _buckets = nullptr;
    const std::uint32_t* _hashes = nullptr;  // from the first symbol; the last of a chain is odd
};

}  // namespace lyr::internal

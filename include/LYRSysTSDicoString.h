#pragma once

#include "LYRExport.h"
#include "LYRSmartMutex.h"

#include <atomic>
#include <cstdint>

namespace lyr::internal {
struct HashedText;
struct TextStore;
}  // namespace lyr::internal

/// The lock of LYRSysTSDicoString, never null. It guards the table and the blocks, and is a leaf:
/// the store takes it itself and calls nothing under it.
LYR_EXPORT LYRSmartMutex* GetGlobalStringDicoMutex();

/// The address of that lock, set while the library loads so that the lock exists before any
/// thread can want it.
extern LYR_EXPORT LYRSmartMutex* StaticStringMutextToForceInitDuringDllLoading;

/// One stored string; chained longest first, and in strcmp order among equal lengths.
struct DicoStringNode {
    DicoStringNode* next;
    char* text;
    std::int32_t length;
};

/// One piece of memory into which copies are packed; chained in order of creation.
struct DicoStringBlock {
    DicoStringBlock* next;
    char chars[5000];
};

static_assert(sizeof(DicoStringBlock) == 5008, "a block is one piece of 5008 bytes");

/// The process-wide store that keeps one copy of each distinct string. Every operation may be
/// called by any thread, and none throws.
class LYR_EXPORT LYRSysTSDicoString {
public:
    LYRSysTSDicoString() = delete;

    /// The stored copy of `s`: the same address for equal contents, valid and unchanged until
    /// _FreeDictionary. The store owns it. Null, with nothing changed, for a null `s`, for 5000
    /// characters or more, and when memory is out.
    static const char* AddStringInDico(const char* s);

    /// The bucket of `s` (0 to 4095) and, in `length`, its number of characters. `s` is not null.
    static int _ComputeStringKey(const char* s, int& length);

    /// Makes the table ready for use, once; later calls do nothing.
    static void _ClearDictionary();

    /// Frees every copy: all addresses handed out before become invalid. For the very end of the
    /// application, with no other thread in the store; it may be filled again.
    static void _FreeDictionary();

private:
    friend struct lyr::internal::TextStore;

    // AddStringInDico of a text that is not null.
    LYR_LOCAL static const char* Intern(const lyr::internal::HashedText& text);
    // Room for one copy, in a new block where the current one has too little; null without memory.
    LYR_LOCAL static char* TakeRoom(std::int32_t size) LYR_REQUIRES(GetGlobalStringDicoMutex());

    static DicoStringNode* _DicoString[4096] LYR_GUARDED_BY(GetGlobalStringDicoMutex());
    static std::atomic<bool> _DictionaryCleared;
    static DicoStringBlock* _HeadBlocStringForDico LYR_GUARDED_BY(GetGlobalStringDicoMutex());
    static DicoStringBlock* _LastBlocStringForDico LYR_GUARDED_BY(GetGlobalStringDicoMutex());
    static char* _StringForDicoAvailable LYR_GUARDED_BY(GetGlobalStringDicoMutex());
    static std::int32_t _SizeStringForDicoAvailable LYR_GUARDED_BY(GetGlobalStringDicoMutex());
};

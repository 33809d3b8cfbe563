#pragma once

#include "GUID.h"
#include "HRESULT.h"
#include "LYRExport.h"

/// @file
/// What makes a name for the assembler, and the one entry point that a library with class ids has.

// How an operand that is an address is asked for, and how a symbol is said to be a function.
#if defined(__aarch64__)
#define LYR_KIT_ADDRESS "S"
#define LYR_KIT_FUNCTION "%%function"
#else
#define LYR_KIT_ADDRESS "i"
#define LYR_KIT_FUNCTION "@function"
#endif

namespace lyr {
inline namespace v1 {
namespace detail {

/// Makes an object by class id as by the name that the dictionary files give for that id, in the
/// library that they name, and asks it for the interface.
LYR_EXPORT HRESULT GetClassObject(const GUID& clsid, const GUID& iid, void** out);

// Another function of that name, one that the library's author has written, comes before it.
[[gnu::noinline, gnu::visibility("hidden")]] inline HRESULT ClassObjectEntry(const GUID& clsid,
                                                                             const GUID& iid,
                                                                             void** out) {
    __asm__ volatile(
        ".weak LYRSysTSDllGetClassObject\n\t.type LYRSysTSDllGetClassObject, " LYR_KIT_FUNCTION
        "\n\t.set LYRSysTSDllGetClassObject, %c0"
        :
        : LYR_KIT_ADDRESS(&ClassObjectEntry));
    return GetClassObject(clsid, iid, out);
}

/// Keeps that entry point in the library.
inline void OfferClassObjects() {
    __asm__ volatile("" : : LYR_KIT_ADDRESS(&ClassObjectEntry));
}

}  // namespace detail
}  // namespace v1
}  // namespace lyr

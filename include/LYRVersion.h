#pragma once

#include "LYRExport.h"

/// @file
/// The version twice: the macros say which headers a program is built with, the functions which
/// library it runs with.

#define LYR_VERSION_MAJOR 1
#define LYR_VERSION_MINOR 0
#define LYR_VERSION_PATCH 0

/// The three in one number, which grows with every version: 10203 for 1.2.3.
#define LYR_VERSION (LYR_VERSION_MAJOR * 10000 + LYR_VERSION_MINOR * 100 + LYR_VERSION_PATCH)

/// The three as text: "1.2.3".
#define LYR_VERSION_TEXT \
    LYR_VERSION_TEXT_OF(LYR_VERSION_MAJOR, LYR_VERSION_MINOR, LYR_VERSION_PATCH)
#define LYR_VERSION_TEXT_OF(major, minor, patch) LYR_VERSION_JOINED(major, minor, patch)
#define LYR_VERSION_JOINED(major, minor, patch) #major "." #minor "." #patch

/// LYR_VERSION of the library that is loaded. Less than the program's own: the library is older
/// than the headers that the program is built with, and may lack what they declare.
LYR_EXPORT int LYRVersion() noexcept;

/// LYR_VERSION_TEXT of the library that is loaded.
LYR_EXPORT const char* LYRVersionText() noexcept;

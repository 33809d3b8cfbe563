#pragma once

#include "LYRSysTSDictionary.h"

namespace lyr {

/// Reads the dictionary files of the directories that `path` lists between colons. False when
/// memory has run out on the way, or in another thread meanwhile: what is registered stays, and a
/// line may be missing.
bool ScanDictionaryFiles(const char* path) LYR_REQUIRES(GetGlobalDicoMutex());

/// Notes that the running scan has met a file of this name; false when it had before. A name that
/// is too long for the string store is never noted. Throws std::bad_alloc.
bool NoteReadFile(const char* name) LYR_REQUIRES(GetGlobalDicoMutex());

}  // namespace lyr

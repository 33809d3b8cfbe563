#pragma once

#include "LYRSysTSDictionary.h"

namespace lyr {

/// Reads the dictionary files of the directories that `path` lists between colons. False when
/// memory runs out on the way; what has been registered until then stays.
bool ScanDictionaryFiles(const char* path) LYR_REQUIRES(GetGlobalDicoMutex());

/// Notes that the running scan has met a file of this interned name; false when it had before.
/// Throws std::bad_alloc.
bool NoteReadFile(const char* internedName) LYR_REQUIRES(GetGlobalDicoMutex());

}  // namespace lyr

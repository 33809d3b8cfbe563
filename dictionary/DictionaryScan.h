#pragma once

#include "LYRSysTSDictionary.h"

#include <string>
#include <vector>

namespace lyr::internal {

/// Reads the dictionary files, once per process: what LYRSysTSDictionary::EnsureInitDictionary
/// documents. False when more of them may be read by the next call: memory or file descriptors were
/// short, or this very thread is reading them.
bool EnsureDictionaryFilesAreRead();

/// What EnsureDictionaryFilesAreRead would find; it reads nothing.
enum class FilesState { kRead, kBeingRead, kNotRead, kNoFolders };
FilesState StateOfDictionaryFiles();

/// The folders of dictionary files, in the order of reading: those that LYRDictionaryPath lists, as
/// they are written there, and those that code has named. Throws std::bad_alloc.
std::vector<std::string> DictionaryFolders();

/// Takes a folder to be read after all others, unless it is among them. The path is absolute.
enum class NamedFolder { kTaken, kTooLate, kNoMemory };
NamedFolder NameFolder(const char* path);

/// Notes a file name that the running scan meets; false when it has met the name before. One that
/// is too long for the string store is never noted. Throws std::bad_alloc.
bool IsFirstOfItsName(const char* name) LYR_REQUIRES(GetGlobalDicoMutex());

}  // namespace lyr::internal

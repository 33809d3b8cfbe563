#include "LYRSysTSDictionary.h"
#include "LYRSysTSDictionaryReader.h"
#include "dictionary/DictionaryScan.h"
#include "dictionary/DictionaryTables.h"
#include "dictionary/LineWords.h"
#include "support/MemoryShortage.h"
#include "support/MutexGuard.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <dirent.h>
#include <memory>
#include <new>
#include <stdio_ext.h>
#include <string>
#include <string_view>

namespace {

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

bool HasExtension(std::string_view name, std::string_view extension) {
    return name.size() > extension.size() && name.ends_with(extension);
}

/// The directories that the environment names; null when it names none or forbids them.
const char* DictionaryPath() {
    if (std::getenv("LYRDictionaryNoPathNoFallback") != nullptr) return nullptr;
    return std::getenv("LYRDictionaryPath");
}

/// Says that the call has failed on the file, and why.
HRESULT Fail(const char* call, const char* path) {
    const int reason = errno;
    if (reason == ENOMEM) ++lyr::memoryShortages;
    std::fprintf(stderr, "Error : %s on %s\n--> ", call, path);
    errno = reason;
    std::perror((std::string(call) + "()").c_str());
    return E_FAIL;
}

}  // namespace

void LYRSysTSDictionary::EnsureInitDictionary() {
    static std::atomic<bool> DictionaryInitialized = false;
    if (DictionaryInitialized) return;
    {
        const lyr::MutexGuard guard(*GetGlobalDicoMutex());
        // A set of read files means that this very thread is scanning: a reader asks for more.
        if (DictionaryInitialized || _readDicFiles != nullptr) return;
        lyr::DictionaryTables::EnsureCleared();
        if (const char* const path = DictionaryPath()) {
            if (lyr::ScanDictionaryFiles(path)) DictionaryInitialized.exchange(true);
            return;
        }
    }
    std::fputs("Error in reading dictionaries : LYRDictionaryPath is not defined.\n", stderr);
}

int LYRSysTSDictionary::_FileSelection(const dirent* entry) {
    return entry != nullptr && _SelectionByExt(entry->d_name) != 0 ? 1 : 0;
}

int LYRSysTSDictionary::_SelectionByExt(const char* name) {
    if (name == nullptr) return 0;
    if (HasExtension(name, ".dicts")) return 1;
    if (HasExtension(name, ".iidts")) return 2;
    if (HasExtension(name, ".clsidts")) return 3;
    return 0;
}

int LYRSysTSDictionary::_DicoIsAlreadyRead(const char* name) {
    if (name == nullptr) return 0;
    const lyr::MutexGuard guard(*GetGlobalDicoMutex());
    if (_readDicFiles == nullptr) return 0;
    try {
        return lyr::NoteReadFile(name) ? 0 : 1;
    } catch (const std::bad_alloc&) {
        ++lyr::memoryShortages;
        return 0;
    }
}

HRESULT LYRSysTSDictionary::_ReadDictionary(const char* path, LYRSysTSDictionaryReader* reader) {
    if (path == nullptr || reader == nullptr) return E_FAIL;
    const std::unique_ptr<std::FILE, CloseFile> file(std::fopen(path, "r"));
    if (file == nullptr) return Fail("fopen", path);

    // Nobody else has the stream: no lock and unlock around each piece.
    __fsetlocking(file.get(), FSETLOCKING_BYCALLER);
    char piece[2048];
    for (int lineNumber = 1; std::fgets(piece, sizeof piece, file.get()) != nullptr; ++lineNumber) {
        char* words[lyr::kMaxWords];
        const int count = lyr::CutWords(piece, words);
        if (count == 0) continue;
        if (reader->PutInfo(words, count, path, lineNumber) < 0) return E_FAIL;
    }
    // A directory with the name of a file, for one, can be opened and not read.
    return std::ferror(file.get()) != 0 ? Fail("fgets", path) : S_OK;
}

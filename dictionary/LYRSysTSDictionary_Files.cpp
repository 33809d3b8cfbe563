#include "LYRSysTSDictionary.h"
#include "LYRSysTSDictionaryReader.h"
#include "dictionary/LineWords.h"
#include "dictionary/Messages.h"
#include "support/Shortage.h"

#include <cerrno>
#include <cstdio>
#include <dirent.h>
#include <memory>
#include <string_view>

namespace {

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

bool HasExtension(std::string_view name, std::string_view extension) {
    return name.size() > extension.size() && name.ends_with(extension);
}

/// Says that the call has failed on the file, and why.
HRESULT Fail(const char* call, const char* path) {
    const int error = errno;
    lyr::internal::CountShortage(error);
    lyr::internal::SayFailure(call, path, error);
    return E_FAIL;
}

}  // namespace

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

HRESULT LYRSysTSDictionary::_ReadDictionary(const char* path, LYRSysTSDictionaryReader* reader) {
    if (path == nullptr || reader == nullptr) return E_FAIL;
    // "e": a program that another thread starts meanwhile does not inherit the file.
    const std::unique_ptr<std::FILE, CloseFile> file(std::fopen(path, "re"));
    if (file == nullptr) return Fail("fopen", path);

    // The pieces are cut from a buffer of their own.
    std::setvbuf(file.get(), nullptr, _IONBF, 0);
    lyr::internal::LinePieces pieces(file.get());
    lyr::internal::LinePiece piece = pieces.Next();
    for (int lineNumber = 1; piece.begin != nullptr; piece = pieces.Next(), ++lineNumber) {
        char* words[lyr::internal::kMaxWords];
        const int count = lyr::internal::CutWords(piece, words);
        if (count == 0) continue;
        if (reader->PutInfo(words, count, path, lineNumber) < 0) return E_FAIL;
    }
    // A directory with the name of a file, for one, can be opened and not read.
    return std::ferror(file.get()) != 0 ? Fail("fgets", path) : S_OK;
}

#include "dictionary/DictionaryScan.h"

#include "LYRSysTSClsidReader.h"
#include "LYRSysTSDicReader.h"
#include "LYRSysTSIidReader.h"
#include "LYRSysTSStrtok.h"
#include "dictionary/DictionaryTables.h"
#include "registries/Intern.h"
#include "support/MemoryShortage.h"

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <dirent.h>
#include <new>
#include <string>

namespace lyr {

namespace {

constexpr std::size_t kReadFileBuckets = 2048;

/// The set of the file names that the scan has met, in its place while the scan runs.
class ReadFiles {
public:
    ReadFiles() LYR_REQUIRES(GetGlobalDicoMutex()) {
        DictionaryTables::ReadFiles() = new ReadFileLink* [kReadFileBuckets] {};
    }
    ~ReadFiles() LYR_REQUIRES(GetGlobalDicoMutex()) {
        ReadFileLink**& heads = DictionaryTables::ReadFiles();
        FreeChains(std::span(heads, kReadFileBuckets), [](ReadFileLink* link) { delete link; });
        delete[] heads;
        heads = nullptr;
    }
    ReadFiles(const ReadFiles&) = delete;
    ReadFiles& operator=(const ReadFiles&) = delete;
};

/// The dictionary files of a directory in sorted order; none when it cannot be listed.
class Listing {
public:
    explicit Listing(const char* directory)
        : _count(scandir(directory, &_entries, LYRSysTSDictionary::_FileSelection, alphasort)) {
        if (_count < 0 && errno == ENOMEM) ++memoryShortages;
    }
    ~Listing() {
        for (dirent* const entry : *this) std::free(entry);
        std::free(_entries);
    }
    Listing(const Listing&) = delete;
    Listing& operator=(const Listing&) = delete;

    dirent** begin() const { return _entries; }
    dirent** end() const { return _count > 0 ? _entries + _count : _entries; }

private:
    dirent** _entries = nullptr;
    int _count;
};

void ReadFile(const std::string& path) {
    LYRSysTSDicReader dicReader;
    LYRSysTSIidReader iidReader;
    LYRSysTSClsidReader clsidReader;
    LYRSysTSDictionaryReader* const readers[] = {nullptr, &dicReader, &iidReader, &clsidReader};
    const int kind = LYRSysTSDictionary::_SelectionByExt(path.c_str());
    // A file that cannot be opened and a bad line have said why; the scan goes on with the next
    // file.
    static_cast<void>(LYRSysTSDictionary::_ReadDictionary(path.c_str(), readers[kind]));
}

void ScanDirectory(const std::string& directory) LYR_REQUIRES(GetGlobalDicoMutex()) {
    const Listing listing(directory.c_str());
    for (const dirent* entry : listing) {
        // Noted before it is opened: a file that cannot be read hides those of later directories.
        if (!NoteReadFile(entry->d_name)) continue;
        ReadFile(directory + "/" + entry->d_name);
    }
}

}  // namespace

bool NoteReadFile(const char* name) {
    const char* const internedName = InternText(name);
    if (internedName == nullptr) return true;
    ReadFileLink*& head =
        DictionaryTables::ReadFiles()[reinterpret_cast<std::uintptr_t>(internedName) &
                                      (kReadFileBuckets - 1)];
    const auto slot =
        FindSlot(head, [=](const ReadFileLink& link) { return link.name == internedName; });
    if (slot.link != nullptr) return false;
    head = new ReadFileLink{internedName, head};
    return true;
}

bool ScanDictionaryFiles(const char* path) {
    const unsigned shortages = memoryShortages;
    try {
        const ReadFiles readFiles;
        std::string directories(path);
        char* save = nullptr;
        for (const char* directory = LYRSysTSStrtok(directories.data(), ":", &save);
             directory != nullptr; directory = LYRSysTSStrtok(nullptr, ":", &save)) {
            ScanDirectory(directory);
        }
    } catch (const std::bad_alloc&) {
        ++memoryShortages;
    }
    return memoryShortages == shortages;
}

}  // namespace lyr

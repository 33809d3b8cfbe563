#include "dictionary/DictionaryScan.h"

#include "LYRSysTSClsidReader.h"
#include "LYRSysTSDicReader.h"
#include "LYRSysTSIidReader.h"
#include "LYRSysTSStrtok.h"
#include "dictionary/DictionaryTables.h"
#include "dictionary/Messages.h"
#include "registries/Intern.h"
#include "support/Listener.h"
#include "support/Shortage.h"
#include "support/Text.h"

#include <cerrno>
#include <chrono>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <dirent.h>
#include <string>

namespace lyr::internal {

namespace {

constexpr std::size_t kNameBuckets = 2048;

/// The set of the file names that the scan has met, in its place while the scan runs.
class MetNames {
public:
    MetNames() LYR_REQUIRES(GetGlobalDicoMutex()) {
        DictionaryTables::MetNames() = new ReadFileLink* [kNameBuckets] {};
    }
    ~MetNames() LYR_REQUIRES(GetGlobalDicoMutex()) {
        ReadFileLink**& heads = DictionaryTables::MetNames();
        FreeChains(std::span(heads, kNameBuckets), [](ReadFileLink* link) { delete link; });
        delete[] heads;
        heads = nullptr;
    }
    MetNames(const MetNames&) = delete;
    MetNames& operator=(const MetNames&) = delete;
};

/// The dictionary files of a directory in sorted order; none when it cannot be listed, which is
/// said only where it may be the next time.
class Listing {
public:
    explicit Listing(const char* directory)
        : _count(scandir(directory, &_entries, LYRSysTSDictionary::_FileSelection, alphasort)) {
        if (_count < 0 && CountShortage(errno)) SayFailure("scandir", directory, errno);
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

/// Tells the listener of each line, before its reader has it, and notes how far it comes.
class HeardReader final : public LYRSysTSDictionaryReader {
public:
    HeardReader(LYRSysTSDictionaryReader& reader, Listener& listener, FileReading& reading)
        : _reader(reader), _listener(listener), _reading(reading) {}

    HRESULT PutInfo(char** words, int count, const char* path, int lineNumber) override {
        _listener.BeforeLine(path, lineNumber, words, count);
        const HRESULT result = _reader.PutInfo(words, count, path, lineNumber);
        _listener.AfterLine();
        ++_reading.lines;
        if (result < 0) _reading.badLine = lineNumber;
        return result;
    }

private:
    LYRSysTSDictionaryReader& _reader;
    Listener& _listener;
    FileReading& _reading;
};

void ScanFile(const std::string& path, Listener* listener) {
    LYRSysTSDicReader dicReader;
    LYRSysTSIidReader iidReader;
    LYRSysTSClsidReader clsidReader;
    LYRSysTSDictionaryReader* const readers[] = {nullptr, &dicReader, &iidReader, &clsidReader};
    const int kind = LYRSysTSDictionary::_SelectionByExt(path.c_str());
    // A file that cannot be opened and a bad line have said why; the scan goes on with the next
    // file.
    if (listener == nullptr) {
        static_cast<void>(LYRSysTSDictionary::_ReadDictionary(path.c_str(), readers[kind]));
        return;
    }
    FileReading reading{path.c_str(), std::chrono::steady_clock::now()};
    HeardReader heard(*readers[kind], *listener, reading);
    reading.isWhole = LYRSysTSDictionary::_ReadDictionary(path.c_str(), &heard) == S_OK;
    listener->AfterFile(reading);
}

void ScanDirectory(const std::string& directory, Listener* listener)
    LYR_REQUIRES(GetGlobalDicoMutex()) {
    const Listing listing(directory.c_str());
    for (const dirent* entry : listing) {
        // Noted before it is opened: a file that cannot be read hides those of later directories.
        if (!IsFirstOfItsName(entry->d_name)) continue;
        ScanFile(directory + "/" + entry->d_name, listener);
    }
}

/// A folder that code has named.
struct Folder {
    std::string path;
    Folder* next;
};

constinit Folder* folders LYR_GUARDED_BY(GetGlobalDicoMutex()) = nullptr;
constinit std::atomic<bool> DictionaryInitialized = false;  // the files have been read

/// The variable that lists directories between colons; null when it is not set.
const char* ListedDirectories() {
    return std::getenv("LYRDictionaryPath");
}

/// Whether there is nothing to read, by the environment's word or because nobody has named a place.
bool MayReadNothing() LYR_REQUIRES(GetGlobalDicoMutex()) {
    if (std::getenv("LYRDictionaryNoPathNoFallback") != nullptr) return true;
    return ListedDirectories() == nullptr && folders == nullptr;
}

/// Calls `action` with each directory that the variable lists, until it returns false.
template <typename Action>
void ForEachListedDirectory(Action action) LYR_REQUIRES(GetGlobalDicoMutex()) {
    const char* const path = ListedDirectories();
    if (path == nullptr) return;
    std::string directories(path);
    char* save = nullptr;
    const char* directory = LYRSysTSStrtok(directories.data(), ":", &save);
    while (directory != nullptr && action(directory)) {
        directory = LYRSysTSStrtok(nullptr, ":", &save);
    }
}

/// Whether the user lists the folder, too; `path` has no links in it.
bool IsListed(const char* path) LYR_REQUIRES(GetGlobalDicoMutex()) {
    bool isListed = false;
    ForEachListedDirectory([&](const char* directory) {
        char real[PATH_MAX];
        isListed = ::realpath(directory, real) != nullptr && SameText(real, path);
        return !isListed;
    });
    return isListed;
}

/// Reads all dictionary files. False when something was short on the way: what is registered stays,
/// and a line may be missing.
bool Scan(Listener* listener) LYR_REQUIRES(GetGlobalDicoMutex()) {
    const auto begin = std::chrono::steady_clock::now();
    const unsigned before = shortages;
    RefuseOnShortage(false, [=]() LYR_REQUIRES(GetGlobalDicoMutex()) {
        const MetNames metNames;
        for (const std::string& folder : DictionaryFolders()) ScanDirectory(folder, listener);
        return true;
    });
    if (listener != nullptr) listener->AfterScan(begin);
    return shortages == before;
}

/// EnsureDictionaryFilesAreRead, with what it has to say in `messages`.
bool EnsureInSilence(std::vector<Message>& messages) {
    if (DictionaryInitialized) return true;
    // Asked for here, as the first who asks may have words said.
    Listener* const listener = CurrentListener();
    const MutexGuard guard(*GetGlobalDicoMutex());
    if (DictionaryInitialized) return true;
    // A set of names means that this very thread is scanning: a reader asks for more.
    if (DictionaryTables::MetNames() != nullptr) return false;
    DictionaryTables::EnsureCleared();
    const KeepMessages keep(messages);
    if (MayReadNothing()) {
        Say("Error in reading dictionaries : LYRDictionaryPath is not defined.\n");
        return true;
    }
    if (!Scan(listener)) return false;
    DictionaryInitialized.exchange(true);
    return true;
}

}  // namespace

bool IsFirstOfItsName(const char* name) {
    const char* const internedName = InternText(name);
    if (internedName == nullptr) return true;
    ReadFileLink*& head =
        DictionaryTables::MetNames()[reinterpret_cast<std::uintptr_t>(internedName) &
                                     (kNameBuckets - 1)];
    const auto slot =
        FindSlot(head, [=](const ReadFileLink& link) { return link.name == internedName; });
    if (slot.link != nullptr) return false;
    head = new ReadFileLink{internedName, head};
    return true;
}

FilesState StateOfDictionaryFiles() {
    if (DictionaryInitialized) return FilesState::kRead;
    const MutexGuard guard(*GetGlobalDicoMutex());
    if (DictionaryTables::MetNames() != nullptr) return FilesState::kBeingRead;
    if (DictionaryInitialized) return FilesState::kRead;
    return MayReadNothing() ? FilesState::kNoFolders : FilesState::kNotRead;
}

std::vector<std::string> DictionaryFolders() {
    const MutexGuard guard(*GetGlobalDicoMutex());
    std::vector<std::string> all;
    ForEachListedDirectory([&](const char* directory) {
        all.emplace_back(directory);
        return true;
    });
    for (const Folder* folder = folders; folder != nullptr; folder = folder->next) {
        all.push_back(folder->path);
    }
    return all;
}

NamedFolder NameFolder(const char* path) {
    const MutexGuard guard(*GetGlobalDicoMutex());
    const bool isTooLate = DictionaryInitialized || DictionaryTables::MetNames() != nullptr;
    const auto hang = [=]() LYR_REQUIRES(GetGlobalDicoMutex()) {
        const auto slot =
            FindSlot(folders, [=](const Folder& known) { return known.path == path; });
        if (slot.link != nullptr) return NamedFolder::kTaken;
        if (isTooLate) return IsListed(path) ? NamedFolder::kTaken : NamedFolder::kTooLate;
        *slot.place = new Folder{path, nullptr};
        return NamedFolder::kTaken;
    };
    return RefuseOnShortage(NamedFolder::kNoMemory, hang);
}

bool EnsureDictionaryFilesAreRead() {
    std::vector<Message> messages;
    const bool areRead = EnsureInSilence(messages);
    for (const Message& message : messages) message.Write();
    return areRead;
}

}  // namespace lyr::internal

#include "LYRThrLibraryManager.h"

#include "Folders.h"
#include "LYRThrLoadListener.h"
#include "LYRThrTimeListener.h"
#include "LibraryFiles.h"
#include "LoadedLibraries.h"
#include "Loads.h"

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <dlfcn.h>
#include <link.h>
#include <mutex>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <sys/statvfs.h>
#include <unistd.h>

namespace {

constexpr std::size_t kFailureSize = 2048;

// Constant-initialised, never destroyed and of fixed size: a failure can be recorded at any moment
// of the process, also when memory has run out.
std::mutex lastFailureMutex;
char lastFailure[kFailureSize];  // guarded by lastFailureMutex, which is never held while loading

/// Records the failure of an operation, whose result it returns.
void* Fail(const char* words) {
    const std::lock_guard<std::mutex> guard(lastFailureMutex);
    std::snprintf(lastFailure, sizeof lastFailure, "%s", words);
    return nullptr;
}

/// Whether the loader found no file at all under this name. Its words begin with what they are
/// about: the name as it was asked for as long as no file is found, then the path of the file, or
/// the name of a missing dependency. The rest depends on the user's language.
bool TellsOnlyThatItIsMissing(const char* words, const char* file) {
    const std::size_t length = std::strlen(file);
    const bool aboutTheName = std::strncmp(words, file, length) == 0 && words[length] == ':';
    const bool isPath = std::strchr(file, '/') != nullptr;
    return aboutTheName && !(isPath && ::access(file, F_OK) == 0);
}

const char* LoaderWords() {
    const char* words = ::dlerror();
    return words != nullptr ? words : "the dynamic loader gives no reason";
}

/// Whether the words end in those of the system for the error, in whichever language.
bool EndsInError(std::string_view words, int error) {
    return words.ends_with(std::strerror(error));
}

/// Whether the words tell that the system has refused to map a file that might be mapped at another
/// time. They tell nothing but the path, and are the same for a file system on which nothing may be
/// executed.
bool MayBeMappedLater(std::string_view words) {
    const std::size_t end = words.find(": failed to map segment");
    if (end == std::string_view::npos) return false;
    char path[kFailureSize];
    std::snprintf(path, sizeof path, "%.*s", static_cast<int>(end), words.data());
    struct statvfs system {};
    return ::statvfs(path, &system) != 0 || (system.f_flag & ST_NOEXEC) == 0;
}

/// Whether the loader, called with errno 0, has failed for want of something that may be there the
/// next time. Its allocations set errno; for all else there are only the words.
bool IsShortage(int error, std::string_view words) {
    if (error == ENOMEM || MayBeMappedLater(words)) return true;
    return EndsInError(words, ENOMEM) || EndsInError(words, EMFILE) || EndsInError(words, ENFILE);
}

/// The most telling failure of several attempts: the first that is more than a missing file, else
/// the first.
class Failure {
public:
    Failure() { _text[0] = '\0'; }
    /// Whether the words tell no more than that the file is missing.
    bool Note(int error, const char* words, const char* file) {
        _mayPass = _mayPass || IsShortage(error, words);
        const bool missing = TellsOnlyThatItIsMissing(words, file);
        if (_text[0] != '\0' && (missing || !_onlyMissing)) return missing;
        _onlyMissing = missing;
        std::snprintf(_text, sizeof _text, "%s", words);
        return missing;
    }
    const char* Text() const { return _text; }
    bool MayPass() const { return _mayPass; }
    bool IsOnlyMissing() const { return _onlyMissing; }

private:
    char _text[kFailureSize];
    bool _onlyMissing = true;
    bool _mayPass = false;
};

/// The handle of a file, loaded unless it is already; null when it does not load.
///
/// An exception that leaves an initialiser ends the process here. It must not get any further: on
/// its way it would pass the loader, which would never give its lock back. dlopen is declared not
/// to throw, so it is called as a function that may, and that the compiler cannot see through.
[[gnu::noinline]] void* Open(const char* file, int which) noexcept {
    void* (*volatile const open)(const char*, int) = &::dlopen;
    return open(file, RTLD_NOW | RTLD_LOCAL | which);
}

/// The handle of the first of the files that loads; null, with each failure noted, when none does.
void* OpenFirst(lyr::internal::LibraryFiles&& files, Failure& failure,
                LYRThrLoadListener* listener) {
    const int which = listener == nullptr || listener->MayLoad() ? 0 : RTLD_NOLOAD;
    while (const char* const file = files.Next()) {
        if (listener != nullptr) listener->OnFile(file);
        errno = 0;
        if (void* handle = Open(file, which)) {
            if (listener != nullptr) listener->OnLoaded();
            return handle;
        }
        const int error = errno;
        const char* const words = LoaderWords();
        const bool isMissing = failure.Note(error, words, file);
        if (listener != nullptr) listener->OnNotLoaded(words, isMissing);
    }
    return nullptr;
}

/// Whether `address` lies in the library that `handle` stands for, and not in a dependency of it.
bool IsDefinedBy(void* handle, const void* address) {
    link_map* library = nullptr;
    void* owner = nullptr;
    Dl_info info{};
    return ::dlinfo(handle, RTLD_DI_LINKMAP, &library) == 0 &&
           ::dladdr1(address, &info, &owner, RTLD_DL_LINKMAP) != 0 && owner == library;
}

/// The file that is loaded under a handle, with its path, cut off where that is too long.
struct LoadedFile {
    char path[PATH_MAX];

    explicit LoadedFile(void* handle) {
        link_map* library = nullptr;
        const bool isKnown = ::dlinfo(handle, RTLD_DI_LINKMAP, &library) == 0;
        Copy(isKnown ? library : nullptr);
    }

private:
    /// By hand: whoever has a handle comes after what the loader has written here, by its lock, of
    /// which the thread sanitizer does not know.
    [[gnu::noinline]] __attribute__((no_sanitize("thread"))) void Copy(const link_map* library) {
        std::size_t length = 0;
        if (library != nullptr) {
            const char* const name = library->l_name;
            for (; name[length] != '\0' && length + 1 < sizeof path; ++length) {
                path[length] = name[length];
            }
        }
        path[length] = '\0';
    }
};

/// Tells whoever listens of a load that is over.
void TellOfLoad(const char* name, void* handle, const Failure& failure,
                LYRThrLoadListener* listener, LYRThrTimeListener::Clock::time_point begin) {
    LYRThrTimeListener* const timed = LYRThrTimeListener::Current();
    if (timed == nullptr || (listener != nullptr && !listener->MayLoad())) return;
    if (handle != nullptr) {
        timed->AfterLoad(name, LoadedFile(handle).path, nullptr, listener, begin);
    } else {
        timed->AfterLoad(name, nullptr, failure.Text(), listener, begin);
    }
}

}  // namespace

void* LYRThrLibraryManager::LoadLibrary(const char* name) {
    bool mayPass = false;
    return TryLoadLibrary(name, mayPass);
}

void* LYRThrLibraryManager::TryLoadLibrary(const char* name, bool& mayPass,
                                           LYRThrLoadListener* listener) {
    mayPass = false;
    if (name == nullptr || *name == '\0') return Fail("no library is named");
    if (const lyr::internal::LoadedLibrary* const known =
            lyr::internal::LoadedLibraries::Find(name)) {
        return known->handle;
    }
    std::optional<lyr::internal::Loads::Running> running;
    if (listener == nullptr || listener->MayLoad()) running.emplace();
    const auto begin = LYRThrTimeListener::Clock::now();
    Failure failure;
    void* handle = OpenFirst(lyr::internal::LibraryFiles(name), failure, listener);
    const lyr::internal::Folders::Folder* folder = lyr::internal::Folders::First();
    for (; handle == nullptr && failure.IsOnlyMissing() && folder != nullptr;
         folder = folder->next.load(std::memory_order_acquire)) {
        handle = OpenFirst(lyr::internal::LibraryFiles(name, folder->path), failure, listener);
    }
    TellOfLoad(name, handle, failure, listener, begin);
    if (handle != nullptr) {
        lyr::internal::LoadedLibraries::Keep(name, handle);
        return handle;
    }
    if (*failure.Text() == '\0') return Fail("the library's name is too long");
    mayPass = failure.MayPass();
    return Fail(failure.Text());
}

void* LYRThrLibraryManager::GetFunctionAddress(const char* library, const char* symbol) {
    bool mayPass = false;
    return TryGetFunctionAddress(library, symbol, mayPass);
}

void* LYRThrLibraryManager::TryGetFunctionAddress(const char* library, const char* symbol,
                                                  bool& mayPass, LYRThrLoadListener* listener) {
    mayPass = false;
    if (symbol == nullptr) return Fail("no symbol is named");
    void* handle = TryLoadLibrary(library, mayPass, listener);
    if (handle == nullptr) return nullptr;
    if (const lyr::internal::LoadedLibrary* const known =
            lyr::internal::LoadedLibraries::Find(library)) {
        if (void* address = known->symbols.Find(symbol)) return address;
    }
    ::dlerror();
    errno = 0;
    void* address = ::dlsym(handle, symbol);
    if (address == nullptr) {
        const int error = errno;
        const char* const words = LoaderWords();
        mayPass = IsShortage(error, words);
        if (listener != nullptr) listener->OnMissingFunction(symbol, false);
        return Fail(words);
    }
    if (!IsDefinedBy(handle, address)) {
        if (listener != nullptr) listener->OnMissingFunction(symbol, true);
        char words[kFailureSize];
        std::snprintf(words, sizeof words, "%s: symbol %s is only in a dependency", library,
                      symbol);
        return Fail(words);
    }
    return address;
}

std::uint64_t LYRThrLibraryManager::MarkLoads() {
    return lyr::internal::Loads::Mark();
}

bool LYRThrLibraryManager::MayHaveBeenLoadingSince(std::uint64_t mark) {
    return lyr::internal::Loads::MayHaveBeenRunningSince(mark);
}

bool LYRThrLibraryManager::MayAwaitLoads() {
    return lyr::internal::Loads::MayAwait();
}

void LYRThrLibraryManager::GiveUpOnLoads() {
    lyr::internal::Loads::GiveUp();
}

std::string LYRThrLibraryManager::LastFailure() {
    const std::lock_guard<std::mutex> guard(lastFailureMutex);
    try {
        return lastFailure;
    } catch (const std::bad_alloc&) {
        return {};
    }
}

#include "LYRThrLibraryManager.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <dlfcn.h>
#include <link.h>
#include <mutex>
#include <new>
#include <string>
#include <unistd.h>

namespace {

constexpr std::size_t kFailureSize = 2048;

// Constant-initialised, never destroyed and of fixed size: a failure can be recorded at any moment
// of the process, also when memory has run out.
std::mutex lastFailureMutex;
char lastFailure[kFailureSize];  // guarded by lastFailureMutex, which is never held while loading

/// Records the failure of an operation, whose result it returns.
void* Fail(const char* words, bool forMemory = false) {
    {
        const std::lock_guard<std::mutex> guard(lastFailureMutex);
        std::snprintf(lastFailure, sizeof lastFailure, "%s", words);
    }
    errno = forMemory ? ENOMEM : ENOENT;
    return nullptr;
}

/// The files that a library name may mean, in the order of trying. Without memory of the heap, so
/// that a shortage here is not taken for an absent library.
class Candidates {
public:
    explicit Candidates(const char* name)
        : _name(name),
          _slash(std::strrchr(name, '/')),
          _hasPrefix(std::strncmp(name, "lib", 3) == 0),
          _hasSuffix(std::strstr(name, ".so") != nullptr) {}

    /// The next file; null after the last one. Valid until the next call.
    const char* Next() {
        while (_next < kForms) {
            if (Write(_next++)) return _file;
        }
        return nullptr;
    }

private:
    static constexpr int kForms = 4;

    bool Write(int form) {
        if (_slash != nullptr) return WritePath(form);
        if (form == 0) return Write("lib", _name, ".so");
        if (form == 1) return _hasPrefix && Write("", _name, ".so");
        if (form == 2) return _hasSuffix && Write("", _name, "");
        // The whole name of a file that a dictionary has taken the leading "lib" of.
        return _hasSuffix && !_hasPrefix && Write("lib", _name, "");
    }

    bool WritePath(int form) {
        if (form == 0) return Write("", _name, "");
        if (form != 1) return false;
        const auto directory = static_cast<int>(_slash + 1 - _name);
        return Fits(
            std::snprintf(_file, sizeof _file, "%.*slib%s.so", directory, _name, _slash + 1));
    }

    bool Write(const char* prefix, const char* name, const char* suffix) {
        return Fits(std::snprintf(_file, sizeof _file, "%s%s%s", prefix, name, suffix));
    }

    static bool Fits(int length) { return length >= 0 && length < kFileSize; }

    static constexpr int kFileSize = 8192;  // longer than any path that the system opens

    const char* const _name;
    const char* const _slash;
    const bool _hasPrefix;
    const bool _hasSuffix;
    int _next = 0;
    char _file[kFileSize];
};

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

/// Whether the loader, called with errno 0, has failed for lack of memory. Its allocations set
/// errno then. That the system has refused to map the file shows in the words alone, and only in
/// English.
bool RanOutOfMemory(int error, const char* words) {
    return error == ENOMEM || std::strstr(words, "failed to map segment") != nullptr;
}

/// The most telling failure of several attempts: the first that is more than a missing file, else
/// the first.
class Failure {
public:
    Failure() { text_[0] = '\0'; }
    void Note(int error, const char* words, const char* file) {
        forMemory_ = forMemory_ || RanOutOfMemory(error, words);
        const bool missing = TellsOnlyThatItIsMissing(words, file);
        if (text_[0] != '\0' && (missing || !onlyMissing_)) return;
        onlyMissing_ = missing;
        std::snprintf(text_, sizeof text_, "%s", words);
    }
    const char* Text() const { return text_; }
    bool ForMemory() const { return forMemory_; }

private:
    char text_[kFailureSize];
    bool onlyMissing_ = true;
    bool forMemory_ = false;
};

/// Whether `address` lies in the library that `handle` stands for, and not in a dependency of it.
bool IsDefinedBy(void* handle, const void* address) {
    link_map* library = nullptr;
    void* owner = nullptr;
    Dl_info info{};
    return ::dlinfo(handle, RTLD_DI_LINKMAP, &library) == 0 &&
           ::dladdr1(address, &info, &owner, RTLD_DL_LINKMAP) != 0 && owner == library;
}

}  // namespace

void* LYRThrLibraryManager::LoadLibrary(const char* name) {
    if (name == nullptr || *name == '\0') return Fail("no library is named");
    Candidates candidates(name);
    Failure failure;
    while (const char* const file = candidates.Next()) {
        errno = 0;
        if (void* handle = ::dlopen(file, RTLD_NOW | RTLD_LOCAL)) return handle;
        const int error = errno;
        failure.Note(error, LoaderWords(), file);
    }
    if (*failure.Text() == '\0') return Fail("the library's name is too long");
    return Fail(failure.Text(), failure.ForMemory());
}

void LYRThrLibraryManager::AwaitLoads() {
    // The loader makes one load at a time, initialisers included, and this call, which asks for the
    // program itself, takes its turn.
    ::dlopen(nullptr, RTLD_NOW | RTLD_LOCAL | RTLD_NOLOAD);
}

void* LYRThrLibraryManager::GetFunctionAddress(const char* library, const char* symbol) {
    if (symbol == nullptr) return Fail("no symbol is named");
    void* handle = LoadLibrary(library);
    if (handle == nullptr) return nullptr;
    ::dlerror();
    errno = 0;
    void* address = ::dlsym(handle, symbol);
    if (address == nullptr) {
        const int error = errno;
        const char* const words = LoaderWords();
        return Fail(words, RanOutOfMemory(error, words));
    }
    if (!IsDefinedBy(handle, address)) {
        char words[kFailureSize];
        std::snprintf(words, sizeof words, "%s: symbol %s is only in a dependency", library,
                      symbol);
        return Fail(words);
    }
    return address;
}

std::string LYRThrLibraryManager::LastFailure() {
    const std::lock_guard<std::mutex> guard(lastFailureMutex);
    try {
        return lastFailure;
    } catch (const std::bad_alloc&) {
        return {};
    }
}

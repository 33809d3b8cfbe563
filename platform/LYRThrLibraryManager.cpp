#include "LYRThrLibraryManager.h"

#include <array>
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
void* Fail(const char* words) {
    const std::lock_guard<std::mutex> guard(lastFailureMutex);
    std::snprintf(lastFailure, sizeof lastFailure, "%s", words);
    return nullptr;
}

/// The files that a name may mean, in the order of trying; empty ones are not tried.
using Candidates = std::array<std::string, 4>;

Candidates CandidatesOf(const std::string& name) {
    const std::size_t slash = name.rfind('/');
    if (slash != std::string::npos) {
        return {name, name.substr(0, slash + 1) + "lib" + name.substr(slash + 1) + ".so", "", ""};
    }
    const bool hasPrefix = name.compare(0, 3, "lib") == 0;
    const bool hasSuffix = name.find(".so") != std::string::npos;
    // The last one is for a file's whole name that a dictionary has taken the leading "lib" of.
    return {"lib" + name + ".so", hasPrefix ? name + ".so" : "", hasSuffix ? name : "",
            hasSuffix && !hasPrefix ? "lib" + name : ""};
}

bool MakeCandidates(const char* name, Candidates& candidates) noexcept {
    try {
        candidates = CandidatesOf(name);
        return true;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

/// Whether the loader found no file at all under this name. Its words begin with what they are
/// about: the name as it was asked for as long as no file is found, then the path of the file, or
/// the name of a missing dependency. The rest depends on the user's language.
bool TellsOnlyThatItIsMissing(const char* words, const std::string& file) {
    const bool aboutTheName =
        std::strncmp(words, file.c_str(), file.size()) == 0 && words[file.size()] == ':';
    const bool isPath = file.find('/') != std::string::npos;
    return aboutTheName && !(isPath && ::access(file.c_str(), F_OK) == 0);
}

const char* LoaderWords() {
    const char* words = ::dlerror();
    return words != nullptr ? words : "the dynamic loader gives no reason";
}

/// The most telling failure of several attempts: the first that is more than a missing file, else
/// the first.
class Failure {
public:
    void Note(const char* words, const std::string& file) {
        const bool missing = TellsOnlyThatItIsMissing(words, file);
        if (text_[0] != '\0' && (missing || !onlyMissing_)) return;
        onlyMissing_ = missing;
        std::snprintf(text_, sizeof text_, "%s", words);
    }
    const char* Text() const { return text_; }

private:
    char text_[kFailureSize] = "";
    bool onlyMissing_ = true;
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
    Candidates candidates;
    if (!MakeCandidates(name, candidates)) return Fail("out of memory");
    Failure failure;
    for (const std::string& file : candidates) {
        if (file.empty()) continue;
        if (void* handle = ::dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL)) return handle;
        failure.Note(LoaderWords(), file);
    }
    return Fail(failure.Text());
}

void* LYRThrLibraryManager::GetFunctionAddress(const char* library, const char* symbol) {
    if (symbol == nullptr) return Fail("no symbol is named");
    void* handle = LoadLibrary(library);
    if (handle == nullptr) return nullptr;
    ::dlerror();
    void* address = ::dlsym(handle, symbol);
    if (address == nullptr) return Fail(LoaderWords());
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

#include "support/Notes.h"

#include <new>
#include <utility>

namespace lyr::internal {

namespace {

const char* TextOf(const char* text) {
    return text != nullptr ? text : "";
}

}  // namespace

void Notes::Add(Cause cause, const char* className, const char* interfaceName, const char* library,
                const char* other, const char* symbol) noexcept {
    try {
        Step step;
        step.cause = cause;
        step.className = TextOf(className);
        step.interfaceName = TextOf(interfaceName);
        step.library = TextOf(library);
        step.other = TextOf(other);
        step.symbol = TextOf(symbol);
        _steps.push_back(std::move(step));
    } catch (const std::bad_alloc&) {
        _isShort = true;
    }
}

void Notes::AddLoad(const void* found, const char* className, const char* interfaceName,
                    const char* library, const char* symbol) noexcept {
    Load load;
    std::swap(load, _load);
    const Cause cause = CauseOf(load);
    if (!load.time.empty()) {
        if (load.files.size() > 1) load.files.erase(load.files.begin(), load.files.end() - 1);
        AddStep(Cause::kLoaded, std::move(load.time), std::move(load.files), className,
                interfaceName, library);
        load.files.clear();
    }
    if (found != nullptr) return;
    if (cause == Cause::kLibraryNotLoaded) load.files.clear();
    AddStep(cause, std::move(load.words), std::move(load.files), className, interfaceName, library,
            symbol);
}

void Notes::AddStep(Cause cause, std::string&& words, std::vector<std::string>&& files,
                    const char* className, const char* interfaceName, const char* library,
                    const char* symbol) noexcept {
    const std::size_t before = _steps.size();
    Add(cause, className, interfaceName, library, nullptr, symbol);
    if (_steps.size() == before) return;
    _steps.back().words = std::move(words);
    _steps.back().files = std::move(files);
}

Cause Notes::CauseOf(const Load& load) const {
    if (load.lacksFunction) {
        return load.isInDependency ? Cause::kFunctionElsewhere : Cause::kNoFunction;
    }
    if (_mode == Mode::kExplain) return Cause::kLibraryNotLoaded;
    return load.isOnlyMissing ? Cause::kLibraryNotFound : Cause::kLibraryNotLoading;
}

void Notes::OnFile(const char* file) noexcept {
    try {
        _load.files.emplace_back(file);
        _load.start = Clock::now();
    } catch (const std::bad_alloc&) {
        _isShort = true;
    }
}

void Notes::OnLoaded() noexcept {
    const auto time =
        std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - _load.start);
    try {
        _load.time = "in " + std::to_string(time.count()) + " us";
    } catch (const std::bad_alloc&) {
        _isShort = true;
    }
}

// The most telling words are the first that say more than that a file is missing.
void Notes::OnNotLoaded(const char* words, bool isMissing) noexcept {
    if (!_load.words.empty() && (isMissing || !_load.isOnlyMissing)) return;
    _load.isOnlyMissing = isMissing;
    try {
        _load.words = words;
    } catch (const std::bad_alloc&) {
        _isShort = true;
    }
}

void Notes::OnMissingFunction(const char*, bool isInDependency) noexcept {
    _load.lacksFunction = true;
    _load.isInDependency = isInDependency;
}

}  // namespace lyr::internal

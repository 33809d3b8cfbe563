#pragma once

#include "GUID.h"
#include "LYRThrLoadListener.h"
#include "lyr/explain.h"

#include <chrono>
#include <cstdint>
#include <vector>

namespace lyr::internal {

/// What a search is for: an interface of a class, or an object of a class by its name or its id.
/// Null for what is not given.
struct Asked {
    const char* className = nullptr;
    const GUID* iid = nullptr;
    const GUID* clsid = nullptr;

    bool IsSomething() const { return className != nullptr || clsid != nullptr; }
};

/// What one search tells of its road, for somebody who wants to know. The search has a pointer to
/// it, null as a rule. Used by one thread.
class Notes final : public LYRThrLoadListener {
public:
    enum class Mode : std::uint8_t {
        kRequest,     ///< of a request, which does what it does anyway
        kExplain,     ///< of a search that nobody notices: it loads, reads and remembers nothing
        kExplainLoad  ///< the same, but it loads and reads
    };
    /// `asked` names what lives as long as the notes, or nothing.
    explicit Notes(Mode mode, const Asked& asked = {}) : _asked(asked), _mode(mode) {}

    using Clock = std::chrono::steady_clock;
    Clock::time_point Start() const { return _start; }
    std::chrono::nanoseconds Age() const { return Clock::now() - _start; }

    const Asked& WhatIsAsked() const { return _asked; }

    /// Whether the search may change what a later one sees.
    bool MayRemember() const { return _mode == Mode::kRequest; }
    bool MayRead() const { return _mode != Mode::kExplain; }
    bool MayLoad() override { return _mode != Mode::kExplain; }

    /// Adds a step, or counts a loss when memory is out; the texts may be null.
    void Add(Cause cause, const char* className, const char* interfaceName,
             const char* library = nullptr, const char* other = nullptr,
             const char* symbol = nullptr) noexcept;

    /// Adds what the library manager has met since the last call, if it has found nothing.
    void AddLoad(const void* found, const char* className, const char* interfaceName,
                 const char* library, const char* symbol) noexcept;

    void OnFile(const char* file) noexcept override;
    void OnLoaded() noexcept override;
    void OnNotLoaded(const char* words, bool isMissing) noexcept override;
    void OnMissingFunction(const char* symbol, bool isInDependency) noexcept override;

    std::vector<Step>& Steps() { return _steps; }
    const std::vector<Step>& Steps() const { return _steps; }
    /// Whether steps are missing.
    bool IsShort() const { return _isShort; }

private:
    /// What the library manager meets on its way to one library.
    struct Load {
        std::vector<std::string> files;
        Clock::time_point start;  ///< of the latest of them
        std::string time;         ///< that its loading took; empty while none is loaded
        std::string words;
        bool isOnlyMissing = true;
        bool lacksFunction = false;
        bool isInDependency = false;
    };
    Cause CauseOf(const Load& load) const;
    void AddStep(Cause cause, std::string&& words, std::vector<std::string>&& files,
                 const char* className, const char* interfaceName, const char* library,
                 const char* symbol = nullptr) noexcept;

    std::vector<Step> _steps;
    Load _load;
    const Clock::time_point _start = Clock::now();
    const Asked _asked;
    const Mode _mode;
    bool _isShort = false;
};

}  // namespace lyr::internal

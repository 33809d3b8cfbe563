#pragma once

#include <atomic>
#include <stdexcept>

/// How many objects of a library there have been.
namespace lives {

inline std::atomic<int> begun{0};
inline std::atomic<int> ended{0};

inline void Begin() {
    ++begun;
}
inline void End() {
    ++ended;
}

struct Life {
    Life() { Begin(); }
    ~Life() { End(); }
    Life(const Life&) = delete;
    Life& operator=(const Life&) = delete;
};

/// Throws where that is possible.
inline void FailOnPurpose() {
#if defined(__cpp_exceptions)
    throw std::runtime_error("no luck today");
#endif
}

}  // namespace lives

#pragma once

#include <cstdint>

namespace lyr {

/// How far the dynamic loader is with what it loads for the process, told without its lock: whoever
/// waits for that lock waits for an initialiser, which may itself wait for the one who asks.
///
/// The loader counts the libraries as it maps them, before it runs their initialisers, and makes
/// one load at a time. So whoever comes through it later than that comes after their initialisers,
/// and may note that these loads have ended. Both numbers only grow, and no more loads have ended
/// than have begun.
class Loads {
public:
    Loads() = delete;

    /// How many are known to have ended.
    static std::uint64_t Ended();

    /// Whether any may have been running since so many had ended.
    static bool MayHaveBeenRunningSince(std::uint64_t ended);

    /// A load of ours, while it lives. The last of several ends those that have begun by then: not
    /// an earlier one, which may be that of an initialiser and come through the loader before it
    /// has ended.
    class Running {
    public:
        Running();
        ~Running();
        Running(const Running&) = delete;
        Running& operator=(const Running&) = delete;
    };
};

}  // namespace lyr

#pragma once

#include <cstdint>

namespace lyr::internal {

/// Whether the dynamic loader may be running initialisers, told without its lock: whoever waits for
/// that lock waits for an initialiser, which may itself wait for the one who asks.
///
/// The loader counts the libraries as it maps them, before it runs their initialisers. Of our own
/// loads we know the end. One that the program makes by itself shows only in the count, and is
/// taken to be running for three seconds from the moment that it is noticed; for none when the
/// process has one thread, which then has come back from it.
class Loads {
public:
    Loads() = delete;

    /// A mark of this moment, for the next.
    static std::uint64_t Mark();

    /// Whether a load may have been running at any moment since the mark was taken.
    static bool MayHaveBeenRunningSince(std::uint64_t mark);

    /// Whether it makes sense to wait for what may be running: not in the thread that runs it, and
    /// not once somebody has given up, until another library is mapped.
    static bool MayAwait();
    static void GiveUp();

    /// A load of ours, while it lives.
    class Running {
    public:
        Running();
        ~Running();
        Running(const Running&) = delete;
        Running& operator=(const Running&) = delete;

    private:
        const unsigned _process;
        const bool _isFirst;
    };
};

}  // namespace lyr::internal

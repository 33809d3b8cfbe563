#pragma once

#include "lyr/Trace.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace lyr::program {

/// Where the time of a start has gone. All times are in nanoseconds.
struct TraceSummary {
    /// What is of one kind. What lies inside of its own kind is not summed up twice.
    struct Total {
        const char* kind;  ///< in the plural, for people
        std::size_t count = 0;
        std::int64_t summed = 0;  ///< of all threads
        std::int64_t wall = 0;    ///< in which at least one thread was at it
    };

    /// The loads of one library in one process.
    struct Load {
        std::string library;
        std::string file;  ///< empty when it does not load, with the loader's words
        std::string words;
        std::size_t count = 0;
        std::int64_t self = 0;  ///< without the loads inside of it
        std::int64_t total = 0;
        // Of the first of them:
        std::string thread;
        std::int64_t after = 0;           ///< the first event of all
        std::vector<std::string> askers;  ///< who asked for it, who for that, and so on
    };

    struct Wait {
        std::string lock;
        std::string address;
        std::int64_t length = 0;
        std::string thread;
        std::int64_t after = 0;
        std::vector<std::string> askers;
    };

    std::string process;
    std::size_t threads = 0;
    std::int64_t wall = 0;  ///< from the first event to the end of the last
    bool isCut = false;
    std::vector<Total> totals;
    std::vector<Load> loads;  ///< those that take longest by themselves first
    std::vector<Wait> waits;  ///< the longest first

    static TraceSummary Of(const Trace& trace);
};

}  // namespace lyr::program

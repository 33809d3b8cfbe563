#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace lyr::program {

/// What a thread has done from one moment to another, as LYRDebug=timeline writes it.
struct Slice {
    enum class Kind { kScan, kFile, kLoad, kRequest, kCreation, kWait };
    using Thread = std::pair<std::int64_t, std::int64_t>;  ///< ids of the process and the thread

    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

    Kind kind;
    std::string name;
    Thread thread;
    std::int64_t begin;  ///< in nanoseconds, as the end
    std::int64_t end;
    int line;                                  ///< of the file, from 1
    std::size_t parent = kNone;                ///< the slice around it, as an index
    std::map<std::string, std::string> texts;  ///< the arguments that are texts, by name

    std::int64_t Length() const { return end - begin; }
    /// Its text, or "".
    const std::string& Text(const char* argument) const;
};

/// A file cannot be read or is not what it should be; the text is a whole message for people.
struct BrokenTrace : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// A file that LYRDebug=timeline has written.
struct Trace {
    std::string process;
    std::map<Slice::Thread, std::string> threads;  ///< their names, as far as they have one
    std::vector<Slice> slices;  ///< thread by thread, each before those inside it
    bool isCut = false;         ///< whether the file stops in the middle of an event

    /// Throws BrokenTrace.
    static Trace Read(const std::string& path);
};

}  // namespace lyr::program

#pragma once

#include <chrono>
#include <string>

namespace lyr::internal {

/// One event of a trace, in the JSON that trace viewers read. All texts may be in any encoding; of
/// those that may be null, null ones are left out. The operations throw std::bad_alloc.
class TraceEvent {
public:
    using Clock = std::chrono::steady_clock;

    /// What this thread has done from `begin` to `end`; readers tell events apart by `category`.
    static TraceEvent Slice(const std::string& name, const char* category, Clock::time_point begin,
                            Clock::time_point end);

    /// What viewers show for the process or for this thread: `what` is "process_name" or
    /// "thread_name".
    static TraceEvent Name(const char* what, const char* name);

    TraceEvent& Add(const char* key, const char* text);
    TraceEvent& Add(const char* key, const std::string& text) { return Add(key, text.c_str()); }
    TraceEvent& Add(const char* key, bool isSo);
    TraceEvent& Add(const char* key, int number);

    /// Without a line feed.
    std::string Text() const { return _text + "}}"; }

private:
    explicit TraceEvent(const std::string& name) : _text("{\"name\":" + name) {}

    void AddKey(const char* key);

    std::string _text;  // up to the last of the arguments
    bool _hasArguments = false;
};

}  // namespace lyr::internal

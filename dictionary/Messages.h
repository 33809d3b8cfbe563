#pragma once

#include "LYRSysTSDictionary.h"

#include <string>
#include <vector>

namespace lyr::internal {

/// Says something on standard error, in the manner of printf.
///
/// What a thread says while it scans the dictionary files is kept for later (KeepMessages), when it
/// has given the dictionary's lock back: whoever reads the stream may be slow or want the lock.
/// Without memory for that it is left out and counts as a shortage, after which the files are read
/// again.
[[gnu::format(printf, 1, 2)]] void Say(const char* format, ...);

/// Says that the call has failed on the file, and why. The system's words may take the dynamic
/// loader, for their translation, and the loader's lock comes before ours: another reason to wait.
void SayFailure(const char* call, const char* path, int error);

/// Something to be said later: the text, and the error of which the system's words follow, or 0.
struct Message {
    std::string text;
    int error;

    void Write() const;
};

/// While it lives, what its thread says goes to `messages`.
class KeepMessages {
public:
    explicit KeepMessages(std::vector<Message>& messages) LYR_REQUIRES(GetGlobalDicoMutex());
    ~KeepMessages() LYR_REQUIRES(GetGlobalDicoMutex());
    KeepMessages(const KeepMessages&) = delete;
    KeepMessages& operator=(const KeepMessages&) = delete;
};

}  // namespace lyr::internal

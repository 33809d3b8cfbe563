#include "dictionary/LinePieces.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace lyr::internal {

LinePiece LinePieces::Next() {
    if (_borrowed != nullptr) *std::exchange(_borrowed, nullptr) = _character;
    char* feed = FindFeed();
    if (feed == nullptr && Available() < kLongest) {
        Read();
        feed = FindFeed();
    }
    char* const piece = _next;
    if (feed != nullptr) {
        _next = feed + 1;
        return {piece, feed};
    }
    const std::size_t length = Available();
    if (length == 0 || (length < kLongest && std::ferror(_file) != 0)) return {};
    _next += length;
    _borrowed = _next;
    _character = std::exchange(*_next, '\0');
    return {piece, _next};
}

/// How many of the characters that have been read the next piece may have.
std::size_t LinePieces::Available() const {
    return std::min(static_cast<std::size_t>(_end - _next), kLongest);
}

char* LinePieces::FindFeed() const {
    return static_cast<char*>(std::memchr(_next, '\n', Available()));
}

/// Fills the buffer, with what is left at its front, unless the file ends.
void LinePieces::Read() {
    if (std::feof(_file) != 0 || std::ferror(_file) != 0) return;
    const auto left = static_cast<std::size_t>(_end - _next);
    std::memmove(_buffer, _next, left);
    _next = _buffer;
    _end = _buffer + left + std::fread(_buffer + left, 1, kBlock - left, _file);
}

}  // namespace lyr::internal

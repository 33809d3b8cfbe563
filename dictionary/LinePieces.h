#pragma once

#include <cstddef>
#include <cstdio>

namespace lyr::internal {

/// A piece of a file, up to `end`, where a NUL stands or the piece's line feed. Both may be
/// changed. Eight more characters behind `end` can be read, whatever they are.
struct LinePiece {
    char* begin;
    char* end;
};

/// Cuts a file into pieces as std::fgets with room for 2048 does: through the line feed, or 2047
/// characters if that comes first. It reads in large blocks and leaves each piece where it lies.
class LinePieces {
public:
    /// Reads from the stream, which nobody else may use meanwhile.
    explicit LinePieces(std::FILE* file) : _file(file) {}
    LinePieces(const LinePieces&) = delete;
    LinePieces& operator=(const LinePieces&) = delete;

    /// The next piece, valid until the next call. None, with null pointers, at the end of the file,
    /// and when the stream fails, which std::ferror tells; a piece that has no end then is dropped.
    LinePiece Next();

private:
    static constexpr std::size_t kLongest = 2047;
    static constexpr std::size_t kBlock = 8192;

    std::size_t Available() const;
    char* FindFeed() const;
    void Read();

    std::FILE* const _file;
    char* _next = _buffer;  // what has been read and not been handed out
    char* _end = _buffer;
    char* _borrowed = nullptr;  // where a piece's NUL stands in the place of a character
    char _character = '\0';     // of the piece behind it
    char _buffer[kBlock + 1 + 8] = {};
};

}  // namespace lyr::internal

#include "dictionary/LineWords.h"

#include "support/LoadNumber.h"

#include <bit>
#include <cstdint>

namespace lyr::internal {

namespace {

bool IsSeparator(char c) {
    return c == ' ' || c == '\t' || c == '\n';
}

bool IsComment(const char* piece) {
    return piece[0] == '#' || (piece[0] == '/' && piece[1] == '/');
}

/// The separator or the NUL that ends the word. Both are among the few characters below '!', for
/// which it looks at eight at a time.
char* EndOfWord(char* c) {
    constexpr std::uint64_t kEachByte = 0x0101'0101'0101'0101;
    for (;;) {
        const auto eight = LoadNumber<std::uint64_t>(c);
        const std::uint64_t low = (eight - '!' * kEachByte) & ~eight & 0x80 * kEachByte;
        if (low == 0) {
            c += sizeof eight;
            continue;
        }
        c += std::countr_zero(low) / 8;
        if (*c == '\0' || IsSeparator(*c)) return c;
        ++c;
    }
}

}  // namespace

int CutWords(LinePiece piece, char* (&words)[kMaxWords]) {
    for (char*& word : words) word = nullptr;
    if (IsComment(piece.begin)) return 0;

    int count = 0;
    for (char* c = piece.begin;;) {
        while (c < piece.end && IsSeparator(*c)) ++c;
        if (c >= piece.end || *c == '\0' || count == kMaxWords) return count;
        words[count++] = c;
        c = EndOfWord(c);
        if (*c == '\0') return count;
        *c++ = '\0';
    }
}

}  // namespace lyr::internal

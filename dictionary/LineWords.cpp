#include "dictionary/LineWords.h"

namespace lyr::internal {

namespace {

bool IsSeparator(char c) {
    return c == ' ' || c == '\t' || c == '\n';
}

/// Most characters of a file lie inside words, and are told from separators by one comparison.
bool IsInWord(char c) {
    return static_cast<unsigned char>(c) > ' ' || (c != '\0' && !IsSeparator(c));
}

bool IsComment(const char* piece) {
    return piece[0] == '#' || (piece[0] == '/' && piece[1] == '/');
}

}  // namespace

int CutWords(char* piece, char* (&words)[kMaxWords]) {
    for (char*& word : words) word = nullptr;
    if (IsComment(piece)) return 0;

    int count = 0;
    for (char* c = piece;;) {
        for (; IsSeparator(*c); ++c) *c = '\0';
        if (*c == '\0' || count == kMaxWords) return count;
        words[count++] = c;
        while (IsInWord(*c)) ++c;
    }
}

}  // namespace lyr::internal

#include "dictionary/LineWords.h"

namespace lyr {

namespace {

bool IsSeparator(char c) {
    return c == ' ' || c == '\t' || c == '\n';
}

bool IsComment(const char* piece) {
    return piece[0] == '#' || (piece[0] == '/' && piece[1] == '/');
}

}  // namespace

int CutWords(char* piece, char* (&words)[kMaxWords]) {
    for (char*& word : words) word = nullptr;
    if (IsComment(piece)) return 0;

    int count = 0;
    bool inWord = false;
    for (char* c = piece; *c != '\0'; ++c) {
        if (IsSeparator(*c)) {
            *c = '\0';
            inWord = false;
        } else if (!inWord) {
            if (count == kMaxWords) break;
            words[count++] = c;
            inWord = true;
        }
    }
    return count;
}

}  // namespace lyr

#include "inspection/DictionaryText.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string_view>
#include <vector>

namespace lyr::inspection {

namespace {

constexpr std::size_t kLongestLine = 2047;
constexpr std::size_t kWordsRead = 5;
// What stands further behind in a line is not looked at: a file may be one line without an end.
constexpr std::size_t kLooked = 65536;

struct Surprise {
    const char* kind;
    const char* text;
};

constexpr Surprise kSurprises[] = {
    {"byte-order-mark",
     "begins with a byte-order mark, which becomes part of the first word; save it without one"},
    {"carriage-return",
     "the line ends in a carriage return, which becomes part of the last word; end lines in line "
     "feeds alone"},
    {"zero-byte",
     "a zero byte ends the line, what stands behind it is dropped; save the file as plain text"},
    {"encoding", "the line is not UTF-8; names are compared byte by byte"},
    {"long-line", "the line has more than 2047 bytes and is read as several; break it"},
    {"dropped-words", "words behind the fifth are dropped; a comment stands on a line of its own"},
};
enum { kMark, kReturn, kZero, kEncoding, kLong, kDropped, kKinds };

/// How many bytes the character at the front has in UTF-8; 0 when it is none.
std::size_t CharacterSize(std::string_view text) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned first = byte(0);
    if (first < 0x80) return 1;
    const std::size_t size = first >= 0xf0 ? 4 : first >= 0xe0 ? 3 : 2;
    if (first < 0xc2 || first > 0xf4 || text.size() < size) return 0;
    for (std::size_t i = 1; i < size; ++i) {
        if ((byte(i) & 0xc0U) != 0x80) return 0;
    }
    const unsigned second = byte(1);
    const bool isTooLong = (first == 0xe0 && second < 0xa0) || (first == 0xf0 && second < 0x90);
    const bool isBeyond = (first == 0xed && second > 0x9f) || (first == 0xf4 && second > 0x8f);
    return isTooLong || isBeyond ? 0 : size;
}

bool IsUtf8(std::string_view text) {
    while (!text.empty()) {
        const std::size_t size = CharacterSize(text);
        if (size == 0) return false;
        text.remove_prefix(size);
    }
    return true;
}

std::size_t CountWords(std::string_view line) {
    constexpr std::string_view kSeparators = " \t";
    std::size_t count = 0;
    for (auto at = line.find_first_not_of(kSeparators); at != std::string_view::npos; ++count) {
        at = line.find_first_of(kSeparators, at);
        if (at != std::string_view::npos) at = line.find_first_not_of(kSeparators, at);
    }
    return count;
}

bool HasMark(std::string_view text) {
    return text.starts_with("\xef\xbb\xbf") || text.starts_with("\xff\xfe") ||
           text.starts_with("\xfe\xff");
}

/// Goes through a file's lines, numbered as their reader numbers them, and notes where each
/// surprise is.
class Lines {
public:
    /// `size` is that of the whole line, which `line` may be the front of.
    void Take(std::string_view line, std::size_t size) {
        const int number = _number;
        _number += static_cast<int>(size / kLongestLine) + 1;
        if (number == 1 && HasMark(line)) Note(kMark, number);
        if (size > kLongestLine) Note(kLong, number);
        if (line.find('\0') != std::string_view::npos) Note(kZero, number);
        if (line.starts_with("#") || line.starts_with("//")) return;
        line = line.substr(0, line.find('\0'));
        if (line.ends_with('\r')) Note(kReturn, number);
        if (!IsUtf8(line)) Note(kEncoding, number);
        if (CountWords(line) > kWordsRead) Note(kDropped, number);
    }

    void Tell(const std::string& path, Findings& findings) const {
        for (std::size_t kind = 0; kind < kKinds; ++kind) {
            const std::vector<int>& numbers = _places[kind];
            if (numbers.empty()) continue;
            std::vector<inspection::Note> notes;
            for (std::size_t i = 1; i < numbers.size(); ++i) {
                notes.push_back({{path, numbers[i]}, "so here"});
            }
            findings.AddWarning({path, numbers[0]}, kSurprises[kind].text, kSurprises[kind].kind,
                                notes);
        }
    }

private:
    void Note(std::size_t kind, int number) { _places[kind].push_back(number); }

    int _number = 1;
    std::array<std::vector<int>, kKinds> _places;
};

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

}  // namespace

void CheckDictionaryText(const std::string& path, Findings& findings) {
    const std::unique_ptr<std::FILE, CloseFile> file(std::fopen(path.c_str(), "re"));
    if (file == nullptr) return;
    Lines lines;
    std::string line;
    std::size_t size = 0;
    for (int c = ::getc_unlocked(file.get()); c != EOF; c = ::getc_unlocked(file.get())) {
        if (c == '\n') {
            lines.Take(line, size);
            line.clear();
            size = 0;
        } else if (++size <= kLooked) {
            line.push_back(static_cast<char>(c));
        }
    }
    if (size != 0) lines.Take(line, size);
    lines.Tell(path, findings);
}

}  // namespace lyr::inspection

#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace lyr::program {

/// What a process that tries libraries is told to do, and what it answers: records of words, which
/// may hold anything but zero bytes.
///
/// It is told, and done in this order:
///     library PATH          loads it; answered by "loaded", or by "refused" and the loader's words
///     function SYMBOL       of the last library; answered by "missing SYMBOL" if it has none
///     extension NAME CLASS  answered by the same and "absent", "class", "other" or "extends"
///     leaf NAME IID         answered by the same and "absent", "other" or "derived"
///     explain CLASS INTERFACE  answered by "answer", "no", "yes" or "unknown", and the paragraph
/// and at the end it answers "end".
using TrialRecord = std::vector<std::string>;

inline std::string TextOf(std::initializer_list<std::string_view> record) {
    std::string text;
    for (const std::string_view word : record) text.append(word).push_back('\0');
    text.push_back('\0');
    return text;
}

/// The records of the text that are whole.
inline std::vector<TrialRecord> RecordsOf(std::string_view text) {
    std::vector<TrialRecord> records;
    TrialRecord record;
    for (;;) {
        const std::size_t end = text.find('\0');
        if (end == std::string_view::npos) return records;
        if (end != 0) {
            record.emplace_back(text.substr(0, end));
        } else {
            records.push_back(std::move(record));
            record.clear();
        }
        text.remove_prefix(end + 1);
    }
}

/// The command, which users are not told of, by which the program does so.
inline constexpr const char* kTrialCommand = "try-libraries";

}  // namespace lyr::program

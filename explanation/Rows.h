#pragma once

#include "explanation/FilesNow.h"

#include <string>

namespace lyr::internal {

/// A line of a paragraph: what it is about, and the text behind it.
inline std::string Row(const std::string& head, const std::string& text) {
    constexpr std::size_t kIndent = 14;
    std::string row = "  " + head;
    if (row.size() < kIndent) row.resize(kIndent, ' ');
    return row + text + "\n";
}

/// The same for a line of a file, with what there is to say of it.
inline std::string Row(const std::string& head, const FileLine& line, const std::string& remark) {
    return Row(head, line.file + ":" + std::to_string(line.line) + "  " + line.Text() + "  (" +
                         remark + ")");
}

}  // namespace lyr::internal

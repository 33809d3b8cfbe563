#include "inspection/NearNames.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <utility>

namespace lyr::inspection {

namespace {

// A letter that is put in, left out or exchanged.
constexpr std::size_t kLetter = 4;
constexpr std::size_t kCase = 1;

int Lower(char c) {
    return std::tolower(static_cast<unsigned char>(c));
}

std::size_t Exchange(char a, char b) {
    if (a == b) return 0;
    return Lower(a) == Lower(b) ? kCase : kLetter;
}

/// What it costs to make `b` of `a`: the last row of the usual table, built row by row.
std::size_t Distance(std::string_view a, std::string_view b) {
    std::vector<std::size_t> row(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j) row[j] = j * kLetter;
    for (std::size_t i = 0; i < a.size(); ++i) {
        std::size_t diagonal = std::exchange(row[0], (i + 1) * kLetter);
        for (std::size_t j = 0; j < b.size(); ++j) {
            const std::size_t exchanged = diagonal + Exchange(a[i], b[j]);
            diagonal = row[j + 1];
            row[j + 1] = std::min({exchanged, diagonal + kLetter, row[j] + kLetter});
        }
    }
    return row.back();
}

}  // namespace

std::vector<std::string> NearNames(std::string_view name, const std::vector<std::string>& names) {
    const std::size_t most = name.size() * kLetter / 3;
    std::vector<std::pair<std::size_t, std::string>> found;
    for (const std::string& other : names) {
        const std::size_t distance = Distance(name, other);
        if (distance <= most) found.emplace_back(distance, other);
    }
    std::sort(found.begin(), found.end());
    if (found.size() > 3) found.resize(3);
    std::vector<std::string> nearest;
    nearest.reserve(found.size());
    for (auto& [distance, other] : found) nearest.push_back(std::move(other));
    return nearest;
}

}  // namespace lyr::inspection

#include "lyr/explain.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <string_view>
#include <utility>

namespace lyr {

namespace {

// A letter that is put in, left out or exchanged; and what is easily overlooked, of which any
// number comes before a letter.
constexpr std::size_t kLetter = 64;
constexpr std::size_t kTrifle = 1;

int Lower(char c) {
    return std::tolower(static_cast<unsigned char>(c));
}

std::size_t CostOf(char c) {
    return c == '_' ? kTrifle : kLetter;
}

std::size_t Exchange(char a, char b) {
    if (a == b) return 0;
    return Lower(a) == Lower(b) ? kTrifle : kLetter;
}

/// What it costs to make `b` of `a`: the last row of the usual table, built row by row.
std::size_t Distance(std::string_view a, std::string_view b) {
    std::vector<std::size_t> row(b.size() + 1);
    for (std::size_t j = 0; j < b.size(); ++j) row[j + 1] = row[j] + CostOf(b[j]);
    for (const char letter : a) {
        std::size_t diagonal = std::exchange(row[0], row[0] + CostOf(letter));
        for (std::size_t j = 0; j < b.size(); ++j) {
            const std::size_t exchanged = diagonal + Exchange(letter, b[j]);
            diagonal = row[j + 1];
            row[j + 1] = std::min({exchanged, diagonal + CostOf(letter), row[j] + CostOf(b[j])});
        }
    }
    return row.back();
}

bool CanBeNear(std::size_t a, std::size_t b, std::size_t most) {
    return (a > b ? a - b : b - a) * kTrifle <= most;
}

}  // namespace

inline namespace v1 {

std::vector<std::string> NearNames(const std::string& name, const std::vector<std::string>& names) {
    constexpr std::size_t kCount = 3;
    const std::size_t most = name.size() * kLetter / 3;
    std::vector<std::pair<std::size_t, std::string>> found;
    for (const std::string& other : names) {
        if (other == name || !CanBeNear(name.size(), other.size(), most)) continue;
        const std::size_t distance = Distance(name, other);
        if (distance <= most) found.emplace_back(distance, other);
    }
    std::sort(found.begin(), found.end());
    found.erase(std::unique(found.begin(), found.end()), found.end());
    if (found.size() > kCount) found.resize(kCount);
    std::vector<std::string> nearest;
    nearest.reserve(found.size());
    for (auto& [distance, other] : found) nearest.push_back(std::move(other));
    return nearest;
}

}  // namespace v1

}  // namespace lyr

#include "inspection/LoaderCache.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <iterator>

namespace lyr::inspection {

namespace {

constexpr std::string_view kMagic = "glibc-ld.so.cache1.1";
constexpr std::size_t kHeaderSize = 48;
constexpr std::size_t kEntrySize = 24;

std::uint32_t WordAt(std::string_view bytes, std::size_t at) {
    std::uint32_t word = 0;
    if (at + sizeof word <= bytes.size()) std::memcpy(&word, bytes.data() + at, sizeof word);
    return word;
}

std::string TextAt(std::string_view bytes, std::size_t at) {
    if (at >= bytes.size()) return {};
    const std::string_view text = bytes.substr(at, 4096);
    return std::string(text.substr(0, text.find('\0')));
}

}  // namespace

LoaderCache::LoaderCache(const Image& image) {
    constexpr std::size_t kMostRead = 64U << 20U;
    std::ifstream file(image.PathHere("/etc/ld.so.cache"), std::ios::binary);
    std::string bytes(std::istreambuf_iterator<char>(file), {});
    if (bytes.size() <= kMostRead) Parse(bytes);
}

void LoaderCache::Parse(std::string_view bytes) {
    // Behind the older form, if both are there.
    const std::size_t begin = bytes.find(kMagic);
    if (begin == std::string_view::npos) return;
    bytes.remove_prefix(begin);
    const std::size_t count = WordAt(bytes, kMagic.size());
    if (count > bytes.size() / kEntrySize) return;
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t entry = kHeaderSize + i * kEntrySize;
        _paths.emplace(TextAt(bytes, WordAt(bytes, entry + 4)),
                       TextAt(bytes, WordAt(bytes, entry + 8)));
    }
}

std::vector<std::string> LoaderCache::PathsOf(std::string_view name) const {
    const auto [begin, end] = _paths.equal_range(std::string(name));
    std::vector<std::string> paths;
    for (auto entry = begin; entry != end; ++entry) paths.push_back(entry->second);
    std::sort(paths.begin(), paths.end());
    return paths;
}

}  // namespace lyr::inspection

#include "inspection/Image.h"

#include <deque>
#include <filesystem>
#include <system_error>

namespace lyr::inspection {

namespace fs = std::filesystem;

namespace {

/// Puts the parts of the path before those that are still to be walked.
void PutFirst(const fs::path& path, std::deque<fs::path>& parts) {
    const fs::path relative = path.relative_path();
    parts.insert(parts.begin(), relative.begin(), relative.end());
}

}  // namespace

std::string Image::PathHere(std::string_view path) const {
    if (IsThisMachine() || !path.starts_with('/')) return std::string(path);
    constexpr int kMostLinks = 40;
    std::deque<fs::path> parts;
    PutFirst(path, parts);
    fs::path walked;
    int links = 0;
    while (!parts.empty()) {
        const fs::path part = parts.front();
        parts.pop_front();
        if (part.empty() || part == ".") continue;
        if (part == "..") {
            walked = walked.parent_path();
            continue;
        }
        std::error_code none;
        const fs::path link = fs::read_symlink(fs::path(_root) / walked / part, none);
        if (none || ++links > kMostLinks) {
            walked /= part;
            continue;
        }
        if (link.is_absolute()) walked.clear();
        PutFirst(link, parts);
    }
    return (fs::path(_root) / walked).string();
}

}  // namespace lyr::inspection

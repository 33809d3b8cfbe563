#include "lyr/DictionaryFiles.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <set>
#include <string_view>
#include <system_error>

namespace lyr::program {

namespace {

constexpr const char* kPairs = ".dicts";
constexpr const char* kInterfaces = ".iidts";
constexpr const char* kClasses = ".clsidts";

template <typename Line>
std::string TextOf(const std::vector<Line>& lines, const std::string& libraryName) {
    std::set<std::string> texts;
    for (const Line& line : lines) texts.insert(line.Text());
    std::string text = "# Made from " + libraryName + " by lyr: changes here are lost.\n";
    for (const std::string& line : texts) text.append(line).append("\n");
    return text;
}

bool WriteWhole(const std::string& path, const std::string& text) {
    std::FILE* const file = std::fopen(path.c_str(), "we");
    if (file == nullptr) return false;
    const bool isWritten = std::fwrite(text.data(), 1, text.size(), file) == text.size();
    return std::fclose(file) == 0 && isWritten;
}

/// Puts the text in the place of the file at once: nobody reads half of it. Tells why not.
std::string Replace(const std::string& path, const std::string& text) {
    const std::string unfinished = path + ".unfinished";
    if (WriteWhole(unfinished, text) && std::rename(unfinished.c_str(), path.c_str()) == 0) {
        return {};
    }
    std::string reason = std::strerror(errno);
    std::remove(unfinished.c_str());
    return reason;
}

}  // namespace

std::string DictionaryFiles::PathOf(const char* extension) const {
    return (std::filesystem::path(_folder) / (_name + extension)).string();
}

void DictionaryFiles::Write(const inspection::DictionaryLines& lines,
                            const std::string& libraryName, inspection::Findings& findings) const {
    std::error_code ignored;  // what it means shows when the files are written
    std::filesystem::create_directories(_folder, ignored);
    const std::pair<const char*, std::string> files[] = {
        {kPairs, TextOf(lines.pairs, libraryName)},
        {kInterfaces, TextOf(lines.interfaces, libraryName)},
        {kClasses, TextOf(lines.classes, libraryName)}};
    for (const auto& [extension, text] : files) {
        const std::string reason = Replace(PathOf(extension), text);
        if (reason.empty()) continue;
        Remove();
        findings.AddError({PathOf(extension)}, "cannot be written: " + reason, "unwritable");
        return;
    }
}

void DictionaryFiles::Remove() const {
    for (const char* extension : {kPairs, kInterfaces, kClasses}) {
        std::remove(PathOf(extension).c_str());
    }
}

}  // namespace lyr::program

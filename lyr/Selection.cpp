#include "lyr/Selection.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fnmatch.h>
#include <fstream>
#include <map>
#include <set>
#include <stdexcept>

namespace lyr::program {

namespace {

using inspection::Finding;
using inspection::Findings;
using inspection::Severity;

/// The lines of files, each file read once.
class FileLines {
public:
    /// Empty for a line that is not there.
    std::string Line(const inspection::Place& place) {
        const auto [found, isNew] = _files.try_emplace(place.file);
        if (isNew) {
            std::ifstream file(place.file, std::ios::binary);
            for (std::string line; std::getline(file, line);) found->second.push_back(line);
        }
        const auto index = static_cast<std::size_t>(place.line) - 1;
        return index < found->second.size() ? found->second[index] : "";
    }

private:
    std::map<std::string, std::vector<std::string>> _files;
};

/// How a baseline names the finding. What concerns no line is told by its own text.
std::string KeyOf(const Finding& finding, FileLines& lines) {
    const bool hasLine = finding.place.line != 0;
    std::string key = finding.kind + "\t" + finding.place.file + "\t" +
                      (hasLine ? lines.Line(finding.place) : finding.text);
    std::replace_if(
        key.begin(), key.end(), [](char c) { return c == '\n' || c == '\r'; }, ' ');
    return key;
}

bool IsIgnored(const Finding& finding, const std::string& rule) {
    const std::size_t colon = rule.find(':');
    if (rule.substr(0, colon) != finding.kind) return false;
    if (colon == std::string::npos) return true;
    return ::fnmatch(rule.c_str() + colon + 1, finding.place.file.c_str(), 0) == 0;
}

std::multiset<std::string> ReadBaseline(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        throw CLI::ValidationError("--baseline", path + " cannot be read: " + std::strerror(errno));
    }
    std::multiset<std::string> keys;
    for (std::string line; std::getline(file, line);) keys.insert(line);
    return keys;
}

}  // namespace

void Selection::Apply(Findings& findings) const {
    std::multiset<std::string> known;
    if (!baseline.empty()) known = ReadBaseline(baseline);
    FileLines lines;
    const auto isUnwanted = [&](const Finding& finding) {
        const auto ignores = [&](const std::string& rule) { return IsIgnored(finding, rule); };
        if (std::any_of(ignored.begin(), ignored.end(), ignores)) return true;
        if (known.empty()) return false;
        const auto place = known.find(KeyOf(finding, lines));
        if (place == known.end()) return false;
        known.erase(place);
        return true;
    };
    std::erase_if(findings.All(), isUnwanted);
    for (Finding& finding : findings.All()) {
        const bool isError = std::find(errors.begin(), errors.end(), finding.kind) != errors.end();
        if (isError) finding.severity = Severity::Error;
    }
}

void WriteBaseline(const std::string& path, const Findings& findings) {
    FileLines lines;
    std::ofstream file(path, std::ios::binary);
    for (const Finding& finding : findings.All()) file << KeyOf(finding, lines) << "\n";
    file.close();
    if (!file) throw std::runtime_error(path + ": cannot be written: " + std::strerror(errno));
}

}  // namespace lyr::program

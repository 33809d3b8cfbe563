#include "explanation/NearLines.h"

#include "lyr/explain.h"

#include <algorithm>
#include <cctype>

namespace lyr::internal {

namespace {

constexpr std::size_t kMost = 3;
constexpr FileKind kPairs = FileKind::kPairs;

std::string WithoutTrifles(const std::string& name) {
    std::string plain;
    for (const char c : name) {
        if (c == '_') continue;
        plain += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    return plain;
}

/// "the class is written Cirlce", and where it is so, that no letter differs.
std::string Difference(const char* what, const std::string& name, const std::string& other) {
    const bool isTrifle = WithoutTrifles(name) == WithoutTrifles(other);
    return std::string("the ") + what + " is written " + other +
           (isTrifle ? ": capitals and underscores count" : "");
}

/// The lines of which the name at `asked` is near to `name`, and the other one is `same`.
void AddNear(const std::string& name, std::size_t asked, const std::string& same, const char* what,
             const FilesNow& files, std::vector<NearLine>& near) {
    std::vector<const FileLine*> candidates;
    std::vector<std::string> names;
    for (const FileLine& line : files.lines) {
        if (line.kind != kPairs || line.words.size() < 2 || line.words[1 - asked] != same) continue;
        candidates.push_back(&line);
        names.push_back(line.words[asked]);
    }
    for (const std::string& other : NearNames(name, names)) {
        for (const FileLine* const line : candidates) {
            if (near.size() == kMost) return;
            if (line->words[asked] == other) near.push_back({line, Difference(what, name, other)});
        }
    }
}

bool IsAmong(const std::vector<NearLine>& near, const FileLine& line) {
    return std::any_of(near.begin(), near.end(),
                       [&](const NearLine& known) { return known.line == &line; });
}

}  // namespace

std::vector<NearLine> NearLines(const std::string& className, const std::string& interfaceName,
                                const FilesNow& files) {
    std::vector<NearLine> near;
    AddNear(className, 0, interfaceName, "class", files, near);
    AddNear(interfaceName, 1, className, "interface", files, near);
    if (interfaceName == "CreateInterface") return near;  // each class has it
    for (const FileLine& line : files.lines) {
        if (near.size() == kMost) break;
        if (line.kind != kPairs || line.words.size() < 2) continue;
        if (line.words[1] != interfaceName || line.words[0] == className) continue;
        if (!IsAmong(near, line)) near.push_back({&line, "another class"});
    }
    return near;
}

}  // namespace lyr::internal

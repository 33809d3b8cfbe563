#include "inspection/NearPairs.h"

#include "lyr/explain.h"

#include <algorithm>

namespace lyr::inspection {

namespace {

constexpr std::size_t kMost = 3;

using Name = std::string PairLine::*;

/// The lines of which one name is near to `name`, and the other one is `same`.
void AddNear(Name nearField, const std::string& name, Name sameField, const std::string& same,
             const std::vector<PairLine>& lines, std::vector<NearPair>& near) {
    std::vector<std::string> names;
    for (const PairLine& line : lines) {
        if (line.*sameField == same) names.push_back(line.*nearField);
    }
    const std::string isWritten =
        nearField == &PairLine::className ? "the class is written " : "the interface is written ";
    for (const std::string& other : NearNames(name, names)) {
        const auto line = std::find_if(lines.begin(), lines.end(), [&](const PairLine& one) {
            return one.*nearField == other && one.*sameField == same;
        });
        near.push_back({&*line, isWritten + other});
    }
}

}  // namespace

std::vector<NearPair> NearPairs(const std::vector<std::string>& asked,
                                const std::string& interfaceName,
                                const std::vector<PairLine>& lines) {
    constexpr Name kClass = &PairLine::className;
    constexpr Name kInterface = &PairLine::interfaceName;
    std::vector<NearPair> near;
    AddNear(kClass, asked.front(), kInterface, interfaceName, lines, near);
    AddNear(kInterface, interfaceName, kClass, asked.front(), lines, near);
    const bool isOfInterface = interfaceName != "CreateInterface";  // which each class has
    for (const PairLine& line : lines) {
        if (near.size() >= kMost || !isOfInterface) break;
        if (line.interfaceName != interfaceName) continue;
        const bool isAsked = std::find(asked.begin(), asked.end(), line.className) != asked.end();
        const bool isKnown = std::any_of(near.begin(), near.end(),
                                         [&](const NearPair& one) { return one.line == &line; });
        if (!isAsked && !isKnown) near.push_back({&line, "another class"});
    }
    if (near.size() > kMost) near.resize(kMost);
    return near;
}

}  // namespace lyr::inspection

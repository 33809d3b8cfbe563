#include "inspection/Declarations.h"

namespace lyr::inspection {

Declarations::Declarations(const std::vector<Manifest>& manifests) {
    for (const Manifest& manifest : manifests) {
        for (const DeclaredClass& one : manifest.classes) _classes.try_emplace(one.name, &one);
        for (const PairLine& line : manifest.lines.pairs) {
            if (!line.extension.empty()) _extends.emplace(line.extension, line.className);
        }
    }
}

const DeclaredClass* Declarations::Find(const std::string& name) const {
    const auto found = _classes.find(name);
    return found == _classes.end() ? nullptr : found->second;
}

std::string Declarations::WhyNotExtended(const PairLine& line) const {
    const DeclaredClass* const declared = Find(line.extension);
    if (declared == nullptr) return {};
    if (!declared->isExtension) {
        return line.extension + " is a class and no extension, so it never answers for " +
               line.className + "; take EXTENDED_BY out, or make it an extension";
    }
    if (_extends.contains({line.extension, line.className})) return {};
    return "the extension " + line.extension + " does not extend " + line.className +
           ", so it never answers for it; name the class in its source, or take the line out";
}

}  // namespace lyr::inspection

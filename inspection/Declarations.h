#pragma once

#include "inspection/Manifest.h"

#include <set>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace lyr::inspection {

/// What the records of libraries say of classes and extensions.
class Declarations {
public:
    /// The manifests outlive the object.
    explicit Declarations(const std::vector<Manifest>& manifests);

    /// The first that declares the name; null for a name that no record declares.
    const DeclaredClass* Find(const std::string& name) const;

    /// Why the line's extension never answers for its class, as far as records tell; empty when it
    /// does, or when none declares it.
    std::string WhyNotExtended(const PairLine& line) const;

private:
    std::unordered_map<std::string, const DeclaredClass*> _classes;
    /// An extension and a class that it lists.
    std::set<std::pair<std::string, std::string>> _extends;
};

}  // namespace lyr::inspection

#pragma once

#include "inspection/LibraryFile.h"
#include "inspection/LibrarySearch.h"

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

namespace lyr::inspection {

/// What is wanted of a library and not exported by it.
class MissingFunctions {
public:
    /// Whether a library that is needed has a function of that name; null for none.
    using InDependency = std::function<const LoaderFile*(const std::string& symbol)>;

    /// The library outlives this object. What it needs is not looked into without `inDependency`.
    explicit MissingFunctions(const LibraryFile& library, InDependency inDependency = nullptr)
        : _library(library), _inDependency(std::move(inDependency)) {}

    /// Whether a dictionary's library of that name is this one.
    bool AreOf(std::string_view libraryName) const;

    /// Notes that the function is missing, if it is: `what` tells the use of it, like "IShape of
    /// Circle", `place` who wants it. `namesake` is an interface whose name ends the function's,
    /// behind "LYRSysTSCreate", or empty.
    void Require(const std::string& symbol, const std::string& what, const Place& place,
                 const std::string& namesake = {});

    /// Adds one error for each way to be missing, however many functions: mostly they have one
    /// cause.
    void Tell(Findings& findings) const;

private:
    /// A function that is missing, and what for.
    struct Lack {
        std::string what;
        std::string symbol;
        Place place;
        std::string namesake;
    };
    enum class Way { HiddenByNamesake, Hidden, Mangled, Elsewhere, Missing };

    Way WayOf(const Lack& lack) const;
    std::string TextOf(Way way, const Lack& lack) const;

    const LoaderFile* DependencyWith(const std::string& symbol) const;

    const LibraryFile& _library;
    const InDependency _inDependency;
    std::map<Way, std::vector<Lack>> _lacks;
    std::unordered_set<std::string> _met;
};

}  // namespace lyr::inspection

#pragma once

#include "GUID.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <random>
#include <string>
#include <vector>

namespace bench {

/// A name of `words` words; all numbers below 32^words give different ones.
inline std::string Name(std::size_t number, int words) {
    static constexpr const char* kWords[32] = {
        "Product", "Part",    "Assembly",  "Feature",    "Sketch",  "Surface",  "Mesh",     "Drawing",
        "View",    "Layer",   "Material",  "Tolerance",  "Kine",    "Joint",    "Geometry", "Curve",
        "Solver",  "Editor",  "Command",   "Manager",    "Factory", "Provider", "Node",     "Link",
        "Context", "Session", "Document",  "Attribute",  "Catalog", "Filter",   "Visitor",  "Service",
    };
    // A multiplication by an odd number scatters neighbours over all the names of that length.
    number *= 0x9E3779B1;
    std::string name;
    for (int word = 0; word < words; ++word) name += kWords[number >> 5 * word & 31];
    return name;
}

/// What dictionary files say: a class implements ten interfaces, and forty classes share a
/// set of interfaces and a library. Good for a million entries.
struct Entry {
    explicit Entry(std::size_t number)
        : className(Name(number / 10, 4)),
          interfaceName(InterfaceName(number, 0)),
          library("lib" + Name(number / 400, 3)) {}

    /// The name of an interface of the same class, or of one that is so many sets further on.
    static std::string InterfaceName(std::size_t number, std::size_t setsFurther) {
        return "I" + Name((number / 400 + setsFurther) * 10 + number % 10, 3);
    }

    std::string className;
    std::string interfaceName;
    std::string library;
};

/// Ids that are scattered as real ones are; the same in every run.
inline std::vector<GUID> RandomIds(std::size_t count) {
    std::mt19937 random(1);
    std::vector<GUID> ids(count);
    for (GUID& id : ids) {
        for (auto* word = reinterpret_cast<unsigned char*>(&id);
             word != reinterpret_cast<unsigned char*>(&id + 1); ++word) {
            *word = static_cast<unsigned char>(random());
        }
    }
    return ids;
}

/// The numbers below `count` in an order that no cache and no branch predictor knows.
inline std::vector<std::size_t> RandomOrder(std::size_t count) {
    std::vector<std::size_t> order(count);
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::shuffle(order.begin(), order.end(), std::mt19937(2));
    return order;
}

}  // namespace bench

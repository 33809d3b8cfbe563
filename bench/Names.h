#pragma once

#include "GUID.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <numeric>
#include <random>
#include <string>
#include <vector>

namespace bench {

/// `prefix` and a name of `words` words; all numbers below 32^words give different ones.
inline std::string Name(std::size_t number, int words, const std::string& prefix = "") {
    static constexpr const char* kWords[32] = {
        "Product", "Part",    "Assembly", "Feature",   "Sketch",  "Surface",  "Mesh",     "Drawing",
        "View",    "Layer",   "Material", "Tolerance", "Kine",    "Joint",    "Geometry", "Curve",
        "Solver",  "Editor",  "Command",  "Manager",   "Factory", "Provider", "Node",     "Link",
        "Context", "Session", "Document", "Attribute", "Catalog", "Filter",   "Visitor",  "Service",
    };
    // Multiplied by an odd number, neighbours are scattered over all names of that length.
    number *= 0x9E3779B1;
    std::string name = prefix;
    for (int word = 0; word < words; ++word) name += kWords[number >> 5 * word & 31];
    return name;
}

/// A line of a dictionary file, of a million different ones: a class implements ten interfaces;
/// forty classes share a set of interfaces and a library.
struct Entry {
    explicit Entry(std::size_t number, std::size_t setsFurther = 0)
        : className(Name(number / 10, 4)),
          interfaceName(Name((number / 400 + setsFurther) * 10 + number % 10, 3, "I")),
          library(Name(number / 400, 3, "lib")) {}

    std::string className;
    std::string interfaceName;
    std::string library;
};

/// Texts one behind the other, as a reader of files has them at hand.
class Texts {
public:
    void Add(const std::string& text) {
        _starts.push_back(_chars.size());
        _chars.append(text.c_str(), text.size() + 1);
    }
    const char* operator[](std::size_t i) const { return _chars.data() + _starts[i]; }

private:
    std::string _chars;
    std::vector<std::size_t> _starts;
};

/// Ids as scattered as real ones; the same in every run.
inline std::vector<GUID> RandomIds(std::size_t count, std::mt19937 random = std::mt19937(1)) {
    std::vector<GUID> ids(count);
    for (GUID& id : ids) {
        std::array<std::uint32_t, 4> words{};
        for (auto& word : words) word = static_cast<std::uint32_t>(random());
        id = std::bit_cast<GUID>(words);
    }
    return ids;
}

/// An id as dictionary files have it.
inline std::string Text(const GUID& id) {
    char text[39];
    std::snprintf(text, sizeof text, "{%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}", id.Data1,
                  id.Data2, id.Data3, id.Data4[0], id.Data4[1], id.Data4[2], id.Data4[3],
                  id.Data4[4], id.Data4[5], id.Data4[6], id.Data4[7]);
    return text;
}

/// The numbers below `count`, each once, in an order that nothing can guess.
inline std::vector<std::size_t> RandomOrder(std::size_t count) {
    std::vector<std::size_t> order(count);
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::shuffle(order.begin(), order.end(), std::mt19937(2));
    return order;
}

}  // namespace bench

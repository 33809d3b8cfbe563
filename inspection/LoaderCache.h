#pragma once

#include "inspection/Image.h"

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace lyr::inspection {

/// Which files the system's loader has been told of, by ldconfig.
class LoaderCache {
public:
    /// Empty where the image has none, or one of a form that is not known.
    explicit LoaderCache(const Image& image);

    /// The paths under the name of a library, in the order of the alphabet.
    std::vector<std::string> PathsOf(std::string_view name) const;

private:
    void Parse(std::string_view bytes);

    std::unordered_multimap<std::string, std::string> _paths;
};

}  // namespace lyr::inspection

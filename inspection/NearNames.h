#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace lyr::inspection {

/// At most three of the names, the nearest first: those that a few letters make of `name`, a third
/// of them at most. Letters that differ in case alone count little.
std::vector<std::string> NearNames(std::string_view name, const std::vector<std::string>& names);

}  // namespace lyr::inspection

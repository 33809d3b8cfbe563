#include "inspection/LibraryNames.h"

namespace lyr::inspection {

namespace {

constexpr std::string_view kLib = "lib";
constexpr std::string_view kSo = ".so";

std::string_view BaseOf(std::string_view path) {
    return path.substr(path.rfind('/') + 1);
}

bool IsOneWord(std::string_view name) {
    return name.find_first_of(" \t\n") == std::string_view::npos;
}

}  // namespace

std::string NameOfLibraryFile(std::string_view path) {
    std::string_view file = BaseOf(path);
    if (file.find(kSo) == std::string_view::npos || !IsOneWord(file)) return {};
    if (file.starts_with(kLib) && file.ends_with(kSo)) file.remove_suffix(kSo.size());
    return std::string(file);
}

bool LeadsToLibraryFile(std::string_view name, std::string_view path) {
    const std::string base(BaseOf(name));
    const std::string_view file = BaseOf(path);
    if (file == "lib" + base + ".so") return true;
    if (base.starts_with(kLib) && file == base + ".so") return true;
    return base.find(kSo) != std::string::npos && (file == base || file == "lib" + base);
}

std::string_view WithoutLib(std::string_view name) {
    if (name.starts_with(kLib)) name.remove_prefix(kLib.size());
    return name;
}

}  // namespace lyr::inspection

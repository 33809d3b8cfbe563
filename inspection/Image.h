#pragma once

#include <string>
#include <string_view>

namespace lyr::inspection {

/// The tree of files in which a program runs: this machine's, or one that lies in a folder of it.
class Image {
public:
    /// Without a folder, this machine's.
    explicit Image(std::string root = {}) : _root(std::move(root)) {}

    bool IsThisMachine() const { return _root.empty(); }

    /// Where the file lies for us that the image's programs know by the path; links lead to what
    /// they lead to there. A relative path is the same for both.
    std::string PathHere(std::string_view path) const;

private:
    std::string _root;
};

}  // namespace lyr::inspection

#pragma once

#include <string>
#include <vector>

namespace lyr::internal {

/// What the variable LYRDebug asks for.
struct DebugWords {
    /// Of pairs of a class and an interface, "Circle/I*"; one with a "-" before it leaves them out.
    struct Pattern {
        std::string className;
        std::string interfaceName;
        bool leavesOut;
    };

    bool explain = false;
    bool all = false;
    bool help = false;
    std::vector<Pattern> patterns;
    std::string file;      ///< where to write; empty for standard error
    std::string timeline;  ///< where to write what happens when; empty for nowhere
    std::vector<std::string> unknown;

    /// Reads words that stand between commas or semicolons. Throws std::bad_alloc.
    static DebugWords Of(const std::string& text);

    /// Whether the patterns let the pair through.
    bool Match(const std::string& className, const std::string& interfaceName) const;

    /// All words, for people.
    static const char* Help();
};

}  // namespace lyr::internal

#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace lyr::inspection {

/// Where something stands: a file, and a line of it; line 0 for what concerns no line of text.
struct Place {
    std::string file;
    int line = 0;
};

/// What belongs to a finding: the other party of a contradiction, or what else is of its kind.
struct Note {
    Place place;
    std::string text;
};

/// What is wrong in what was looked at, for people and editors.
class Findings {
public:
    /// `text` says what is wrong, why and what to do, in one line; `kind` is its short name.
    void AddError(const Place& place, std::string_view text, std::string_view kind,
                  const std::vector<Note>& notes = {});

    bool HasErrors() const { return _errors != 0; }

    /// The findings in the order in which they were met, as compilers write them, and then how
    /// many.
    std::string Text() const;

private:
    std::string _lines;
    int _errors = 0;
};

}  // namespace lyr::inspection

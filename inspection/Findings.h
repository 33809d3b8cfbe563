#pragma once

#include <cstddef>
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

/// The notes of a finding that has one other party, a file.
std::vector<Note> OneNote(const std::string& file, const std::string& text);

/// An error cannot work, a warning surprises, a remark cannot be known without loading.
enum class Severity { Error, Warning, Remark };

/// "error", "warning" or "note", as compilers say it.
const char* WordFor(Severity severity);

struct Finding {
    Place place;
    Severity severity = Severity::Error;
    std::string text;
    /// A short name, by which users choose.
    std::string kind;
    std::vector<Note> notes;
};

/// What is wrong in what was looked at, for people and editors. `text` says what is wrong, why and
/// what to do, in one line.
class Findings {
public:
    void AddError(const Place& place, std::string_view text, std::string_view kind,
                  const std::vector<Note>& notes = {});
    void AddWarning(const Place& place, std::string_view text, std::string_view kind,
                    const std::vector<Note>& notes = {});
    void AddRemark(const Place& place, std::string_view text, std::string_view kind,
                   const std::vector<Note>& notes = {});

    std::size_t Count(Severity severity) const;
    bool HasErrors() const { return Count(Severity::Error) != 0; }

    std::vector<Finding>& All() { return _findings; }
    const std::vector<Finding>& All() const { return _findings; }

    /// By file and line, those of one place in the order in which they were met.
    void Sort();

    /// The findings as compilers write them, each with so many of its notes at most.
    std::string Lines(std::size_t notes) const;

    /// The findings, and then how many errors; empty without an error.
    std::string Text() const;

private:
    std::vector<Finding> _findings;
};

/// The text in one line, whatever it holds: names of files may hold anything.
std::string Printable(std::string_view text);

/// As many notes as are shown of one finding unless all are wanted.
inline constexpr std::size_t kNotesShown = 3;

/// "1 error", "2 errors".
std::string Counted(std::size_t count, std::string_view what);

}  // namespace lyr::inspection

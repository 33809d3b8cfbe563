#include "inspection/Findings.h"

#include <algorithm>
#include <tuple>

namespace lyr::inspection {

namespace {

std::string Head(const Place& place) {
    return place.line == 0 ? place.file : place.file + ":" + std::to_string(place.line);
}

void AppendLine(std::string& lines, const std::string& line) {
    lines.append(Printable(line)).append("\n");
}

void AppendFinding(std::string& lines, const Finding& finding, std::size_t notes) {
    AppendLine(lines, Head(finding.place) + ": " + WordFor(finding.severity) + ": " + finding.text +
                          " [" + finding.kind + "]");
    const std::size_t shown = std::min(notes, finding.notes.size());
    for (std::size_t i = 0; i < shown; ++i) {
        AppendLine(lines, Head(finding.notes[i].place) + ": note: " + finding.notes[i].text);
    }
    if (shown == finding.notes.size()) return;
    AppendLine(lines, finding.place.file + ": note: and " +
                          std::to_string(finding.notes.size() - shown) + " more");
}

}  // namespace

std::vector<Note> OneNote(const std::string& file, const std::string& text) {
    Note note;
    note.place.file = file;
    note.text = text;
    return {note};
}

const char* WordFor(Severity severity) {
    constexpr const char* kWords[] = {"error", "warning", "note"};
    return kWords[static_cast<std::size_t>(severity)];
}

void Findings::AddError(const Place& place, std::string_view text, std::string_view kind,
                        const std::vector<Note>& notes) {
    _findings.push_back({place, Severity::Error, std::string(text), std::string(kind), notes});
}

void Findings::AddWarning(const Place& place, std::string_view text, std::string_view kind,
                          const std::vector<Note>& notes) {
    _findings.push_back({place, Severity::Warning, std::string(text), std::string(kind), notes});
}

void Findings::AddRemark(const Place& place, std::string_view text, std::string_view kind,
                         const std::vector<Note>& notes) {
    _findings.push_back({place, Severity::Remark, std::string(text), std::string(kind), notes});
}

std::size_t Findings::Count(Severity severity) const {
    return static_cast<std::size_t>(
        std::count_if(_findings.begin(), _findings.end(),
                      [=](const Finding& finding) { return finding.severity == severity; }));
}

void Findings::Sort() {
    std::stable_sort(_findings.begin(), _findings.end(), [](const Finding& a, const Finding& b) {
        return std::tie(a.place.file, a.place.line) < std::tie(b.place.file, b.place.line);
    });
}

std::string Findings::Lines(std::size_t notes) const {
    std::string lines;
    for (const Finding& finding : _findings) AppendFinding(lines, finding, notes);
    return lines;
}

std::string Findings::Text() const {
    if (!HasErrors()) return {};
    return Lines(kNotesShown) + Counted(Count(Severity::Error), "error") + "\n";
}

std::string Printable(std::string_view text) {
    std::string line(text);
    std::replace_if(
        line.begin(), line.end(), [](unsigned char c) { return c < ' ' || c == '\x7f'; }, '?');
    return line;
}

std::string Counted(std::size_t count, std::string_view what) {
    return std::to_string(count) + " " + std::string(what) + (count == 1 ? "" : "s");
}

}  // namespace lyr::inspection

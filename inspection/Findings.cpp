#include "inspection/Findings.h"

namespace lyr::inspection {

namespace {

std::string Head(const Place& place) {
    return place.line == 0 ? place.file : place.file + ":" + std::to_string(place.line);
}

}  // namespace

void Findings::AddError(const Place& place, std::string_view text, std::string_view kind,
                        const std::vector<Note>& notes) {
    ++_errors;
    _lines.append(Head(place)).append(": error: ").append(text);
    _lines.append(" [").append(kind).append("]\n");
    for (const Note& note : notes) {
        _lines.append(Head(note.place)).append(": note: ").append(note.text).append("\n");
    }
}

std::string Findings::Text() const {
    if (_errors == 0) return {};
    return _lines + std::to_string(_errors) + (_errors == 1 ? " error\n" : " errors\n");
}

}  // namespace lyr::inspection

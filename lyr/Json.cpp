#include "lyr/Json.h"

#include <nlohmann/json.hpp>

namespace lyr::program {

namespace {

using Json = nlohmann::ordered_json;

/// Without a line for what concerns none.
Json JsonOf(const inspection::Place& place) {
    Json json = {{"file", place.file}};
    if (place.line != 0) json["line"] = place.line;
    return json;
}

Json JsonOf(const inspection::Finding& finding) {
    Json json = JsonOf(finding.place);
    json["severity"] = inspection::WordFor(finding.severity);
    json["kind"] = finding.kind;
    json["text"] = finding.text;
    json["notes"] = Json::array();
    for (const inspection::Note& note : finding.notes) {
        Json one = JsonOf(note.place);
        one["text"] = note.text;
        json["notes"].push_back(std::move(one));
    }
    return json;
}

}  // namespace

std::string JsonOf(const inspection::Findings& findings, std::size_t files, std::size_t libraries) {
    Json json = {{"format", 1},
                 {"errors", findings.Count(inspection::Severity::Error)},
                 {"warnings", findings.Count(inspection::Severity::Warning)},
                 {"files", files},
                 {"libraries", libraries},
                 {"findings", Json::array()}};
    for (const inspection::Finding& finding : findings.All()) {
        json["findings"].push_back(JsonOf(finding));
    }
    // Names may be in any encoding, and JSON is UTF-8.
    return json.dump(2, ' ', false, Json::error_handler_t::replace);
}

}  // namespace lyr::program

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

Json JsonOf(const std::vector<inspection::Note>& notes) {
    Json json = Json::array();
    for (const inspection::Note& note : notes) {
        Json one = JsonOf(note.place);
        one["text"] = note.text;
        json.push_back(std::move(one));
    }
    return json;
}

Json JsonOf(const inspection::Finding& finding) {
    Json json = JsonOf(finding.place);
    json["severity"] = inspection::WordFor(finding.severity);
    json["kind"] = finding.kind;
    json["text"] = finding.text;
    json["notes"] = JsonOf(finding.notes);
    return json;
}

// Names may be in any encoding, and JSON is UTF-8.
std::string TextOf(const Json& json) {
    return json.dump(2, ' ', false, Json::error_handler_t::replace);
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
    return TextOf(json);
}

std::string JsonOf(const std::vector<const Entry*>& entries) {
    Json json = {{"format", 1}, {"entries", Json::array()}};
    for (const Entry* const entry : entries) {
        json["entries"].push_back({{"kind", entry->kind},
                                   {"name", entry->name},
                                   {"facts", entry->facts},
                                   {"lines", JsonOf(entry->lines)}});
    }
    return TextOf(json);
}

std::string JsonOf(const inspection::RequestRoad& road, const std::string& loaded) {
    Json json = {{"format", 1},
                 {"class", road.className},
                 {"interface", road.interfaceName},
                 {"id", road.iid},
                 {"answer", WordFor(road.verdict)},
                 {"cause", road.cause},
                 {"remedy", road.remedy},
                 {"steps", Json::array()}};
    for (const inspection::RoadStep& step : road.steps) {
        Json one = {{"about", step.about}, {"text", step.text}};
        if (!step.place.file.empty()) one.update(JsonOf(step.place));
        json["steps"].push_back(std::move(one));
    }
    if (!loaded.empty()) json["loaded"] = loaded;
    return TextOf(json);
}

const char* WordFor(inspection::Verdict verdict) {
    switch (verdict) {
        case inspection::Verdict::Yes:
            return "yes";
        case inspection::Verdict::No:
            return "no";
        case inspection::Verdict::Unknown:
            break;
    }
    return "unknown";
}

}  // namespace lyr::program

#include "lyr/TrialResults.h"

#include "inspection/LibraryCheck.h"
#include "inspection/LoadCheck.h"

#include <algorithm>
#include <cstring>

namespace lyr::program {

using inspection::Note;
using inspection::PairLine;

namespace {

std::string SecondsText(double seconds) {
    std::string text = std::to_string(seconds);
    text.erase(text.find_last_not_of('0') + 1);
    if (text.ends_with('.')) text.pop_back();
    return text + (text == "1" ? " second" : " seconds");
}

const char* KindOf(const ChildEnd& end) {
    switch (end.way) {
        case ChildEnd::Way::TimeLimit:
            return "load-timeout";
        case ChildEnd::Way::Signal:
            return "load-crash";
        case ChildEnd::Way::Exit:
            break;
    }
    return "load-exit";
}

bool Holds(const std::vector<TrialRecord>& replies, const std::string& word) {
    return std::any_of(replies.begin(), replies.end(),
                       [&](const TrialRecord& reply) { return reply.front() == word; });
}

std::string NameOf(const Trial& trial) {
    return inspection::Shown(*trial.library->file);
}

/// What is wrong with an extension that does not extend the class of its line.
std::string TextOf(const Trial& trial, const PairLine& line, const std::string& state) {
    if (state == "absent") {
        return NameOf(trial) + " brings no meta-object of the extension " + line.extension +
               "; make it while the library loads, or correct the name behind EXTENDED_BY";
    }
    if (state == "class") {
        return line.extension +
               " is a class and no extension; take EXTENDED_BY out, or make it an extension";
    }
    return "the extension " + line.extension + " does not extend " + line.className +
           "; name the class in its source, or take the line out";
}

}  // namespace

std::string WordsOf(const ChildEnd& end, double limitInSeconds) {
    switch (end.way) {
        case ChildEnd::Way::TimeLimit:
            return "is not done after " + SecondsText(limitInSeconds);
        case ChildEnd::Way::Signal:
            return "ends the process by signal " + std::to_string(end.code) + ", " +
                   ::strsignal(end.code);
        case ChildEnd::Way::Exit:
            break;
    }
    return "ends the process with status " + std::to_string(end.code);
}

TrialResults::TrialResults(double limitInSeconds, inspection::Survey& survey)
    : _limitInSeconds(limitInSeconds), _survey(survey), _declared(survey.Manifests()) {}

void TrialResults::Add(const Trial& trial, const ChildEnd& end) {
    std::vector<TrialRecord> replies = RecordsOf(end.reply);
    std::erase_if(replies, [](const TrialRecord& reply) { return reply.empty(); });
    for (const TrialRecord& reply : replies) {
        if (reply[0] == "refused" && reply.size() > 1) AddRefusal(trial, reply[1]);
        if (reply[0] == "missing" && reply.size() > 1) AddMissing(trial, reply[1]);
        if (reply.size() > 3) AddUnknown(trial, reply);
    }
    if (!Holds(replies, "end")) AddEnd(trial, end, Holds(replies, "loaded"));
}

/// What a library lacks that the program brings is no fault of its own.
void TrialResults::AddRefusal(const Trial& trial, const std::string& words) {
    const bool isSymbol = words.find("undefined symbol") != std::string::npos;
    const inspection::Place& place = trial.library->lines.front().place;
    if (!isSymbol) {
        Found().AddError(place, NameOf(trial) + " does not load: " + words, "load-refused",
                         inspection::OtherLines(*trial.library));
    } else if (trial.library->problems.empty()) {
        Found().AddRemark(
            place,
            NameOf(trial) + " loads only in the program, which brings what it needs: " + words,
            "load-refused");
    }
}

/// What its file does not export either has been told.
void TrialResults::AddMissing(const Trial& trial, const std::string& symbol) {
    for (const inspection::Manifest& manifest : _survey.Manifests()) {
        const bool isIts = manifest.library.path == trial.library->file->pathHere;
        if (!isIts || !manifest.library.exports.contains(symbol)) continue;
        Found().AddError(trial.library->lines.front().place,
                         "the loader does not find " + symbol + " in " + NameOf(trial) +
                             ", though its file exports it; link it anew",
                         "no-entry-point");
    }
}

void TrialResults::AddUnknown(const Trial& trial, const TrialRecord& reply) {
    const std::string& name = reply[1];
    const std::string& state = reply[3];
    for (const PairLine* const line : trial.pairs) {
        if (reply[0] == "extension" && line->extension == name && line->className == reply[2]) {
            AddExtension(trial, *line, state);
        }
        const bool isOther = reply[0] == "leaf" && line->leaf == name && state == "other";
        if (isOther && _told.insert(line).second) {
            std::string text = "the leaf interface ";
            text.append(name).append(" is not derived from ").append(line->interfaceName);
            text.append("; correct the name behind ITFLEAF, or the base of ").append(name);
            Found().AddError(line->place, text, "leaf");
        }
    }
}

void TrialResults::AddExtension(const Trial& trial, const PairLine& line,
                                const std::string& state) {
    // What records say of an extension has been compared.
    if (state == "extends" || _declared.Find(line.extension) != nullptr) return;
    if (!_told.insert(&line).second) return;
    Found().AddError(line.place, TextOf(trial, line, state), "extension");
}

void TrialResults::AddEnd(const Trial& trial, const ChildEnd& end, bool hasLoaded) {
    std::vector<Note> notes;
    if (!end.lastLine.empty()) {
        notes =
            inspection::OneNote(trial.library->file->path, "its last line was: " + end.lastLine);
    }
    for (const Note& other : inspection::OtherLines(*trial.library)) notes.push_back(other);
    Found().AddError(trial.library->lines.front().place,
                     NameOf(trial) + " " + WordsOf(end, _limitInSeconds) +
                         (hasLoaded ? " when it has been loaded" : " while it is loaded") +
                         "; look at what it does when it is initialised",
                     KindOf(end), notes);
}

}  // namespace lyr::program

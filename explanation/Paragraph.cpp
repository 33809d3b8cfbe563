#include "explanation/Paragraph.h"

#include "explanation/Absence.h"
#include "explanation/CauseTable.h"
#include "explanation/FilesNow.h"
#include "explanation/Rows.h"

#include <algorithm>
#include <initializer_list>

namespace lyr::internal {

namespace {

bool Holds(const std::vector<Step>& steps, std::initializer_list<Cause> causes) {
    return std::any_of(steps.begin(), steps.end(), [&](const Step& step) {
        return std::find(causes.begin(), causes.end(), step.cause) != causes.end();
    });
}

bool NeedsFiles(const std::vector<Step>& steps) {
    return std::any_of(steps.begin(), steps.end(), [](const Step& step) {
        return step.cause == Cause::kEntryFound || IsAbsence(step);
    });
}

/// Whether the line names the library, which the dictionary keeps without a leading "lib".
bool Names(const FileLine& line, const std::string& library) {
    if (line.words.size() < 3) return library.empty();
    const std::string& written = line.words[2];
    return written == library || written == "lib" + library;
}

/// Gives each step that rests on a line its place.
void FindPlaces(const Question& question, std::vector<Step>& steps, const FilesNow& files) {
    for (Step& step : steps) {
        if (step.cause != Cause::kEntryFound) continue;
        const FileLine* const line = step.interfaceName.empty()
                                         ? files.FindId(FileKind::kClasses, question.id)
                                         : files.FindPair(step.className, step.interfaceName);
        if (line == nullptr || !line->unread.empty() || !Names(*line, step.library)) continue;
        step.file = line->file;
        step.line = line->line;
        step.words = line->Text();
    }
}

std::string Found(const Step& step) {
    if (!step.file.empty()) {
        return step.file + ":" + std::to_string(step.line) + "  " + step.words;
    }
    std::string text = step.className;
    if (!step.interfaceName.empty()) text += " " + step.interfaceName;
    if (!step.library.empty()) text += " " + step.library;
    return text + "  (said by code, or by a file that has changed since)";
}

/// Whether a line of the paragraph is made of the step: not of one that the first line tells, nor
/// of what leads to nothing.
bool IsToldBesides(const Step& step, const Explanation& explanation) {
    if (IsAbsence(step) || step.cause == Cause::kEntryFound || step.cause == Cause::kBaseClass ||
        step.cause == Cause::kKnownAbsence) {
        return false;
    }
    const bool hasRoot = explanation.root < explanation.steps.size();
    return !hasRoot || explanation.steps[explanation.root].cause != step.cause;
}

/// The steps on the way, but for the one that the first line tells.
std::string Road(const Question& question, const Explanation& explanation, const FilesNow& files) {
    std::string text;
    for (std::size_t i = 0; i < explanation.steps.size(); ++i) {
        const Step& step = explanation.steps[i];
        if (step.cause == Cause::kEntryFound) text += Row("found", Found(step));
        if (i == explanation.root && IsAbsence(step)) {
            text += TellAbsence(question, explanation, files);
        }
        if (IsToldBesides(step, explanation)) {
            const std::string row = Row("also", FillIn(RowOf(step.cause)->text, step));
            if (text.find(row) == std::string::npos) text += row;
        }
        std::string head = step.cause == Cause::kLoaded ? "" : "tried";
        for (const std::string& file : step.files) {
            text += Row(head, file);
            head.clear();
        }
    }
    return text;
}

std::string FirstLine(const Question& question, const Explanation& explanation) {
    using Answer = Explanation::Answer;
    const bool isRootKnown = explanation.root < explanation.steps.size();
    std::string text = "lyr: ";
    if (explanation.answer == Answer::kYes) return text + question.what + ": yes\n";
    text += (explanation.answer == Answer::kUnknown ? "perhaps no " : "no ") + question.what;
    if (!isRootKnown) return text + "\n";
    const Step& root = explanation.steps[explanation.root];
    return text + ": " + FillIn(RowOf(root.cause)->text, root) + "\n";
}

std::string Remedy(const Explanation& explanation) {
    if (explanation.root >= explanation.steps.size()) return {};
    const Step& root = explanation.steps[explanation.root];
    const char* const remedy = RowOf(root.cause)->remedy;
    return remedy != nullptr ? Row("remedy", FillIn(remedy, root)) : std::string();
}

/// Whether the answer is kept for the life of the process.
bool IsRemembered(const Question& question, const std::vector<Step>& steps) {
    if (Holds(steps, {Cause::kKnownAbsence})) return true;
    const bool isSearch = question.isAnswered && !question.interfaceName.empty();
    return isSearch && !Holds(steps, {Cause::kLoading, Cause::kNoMemory, Cause::kFilesBeingRead,
                                      Cause::kFactoryGaveNull});
}

const char* WhenOf(const Question& question) {
    if (!question.isOfRequest) return "now, for this explanation";
    return question.interfaceName.empty() ? "when it was to be made" : "at the first request";
}

}  // namespace

std::size_t RootOf(const std::vector<Step>& steps) {
    const bool isRemembered = Holds(steps, {Cause::kKnownAbsence});
    std::size_t root = steps.size();
    int weight = 0;
    for (std::size_t i = 0; i < steps.size(); ++i) {
        const CauseRow* const row = RowOf(steps[i].cause);
        if (row == nullptr || row->weight <= weight) continue;
        // It would be loaded by a request that looks, and none does any more.
        if (isRemembered && steps[i].cause == Cause::kLibraryNotLoaded) continue;
        weight = row->weight;
        root = i;
    }
    return root;
}

void Tell(const Question& question, Explanation& explanation) {
    const bool isYes = explanation.answer == Explanation::Answer::kYes;
    const FilesNow files = NeedsFiles(explanation.steps) ? FilesNow::Read() : FilesNow();
    FindPlaces(question, explanation.steps, files);
    explanation.root = isYes ? explanation.steps.size() : RootOf(explanation.steps);
    explanation.text = FirstLine(question, explanation);
    explanation.text += Row("asked for", question.asked);
    explanation.text += Row("looked", WhenOf(question));
    explanation.text += Road(question, explanation, files);
    explanation.text += Remedy(explanation);
    if (!isYes && IsRemembered(question, explanation.steps)) {
        explanation.text += Row("", "then start again: in this process the answer stays \"none\"");
    }
}

}  // namespace lyr::internal

#include "explanation/Absence.h"

#include "explanation/NearLines.h"
#include "explanation/Rows.h"

#include <algorithm>

namespace lyr::internal {

namespace {

constexpr std::size_t kMost = 3;

std::string Count(std::size_t count, const char* what) {
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

/// The classes of the road, in which nothing was found: "Circle or its base Shape".
std::string Classes(const std::string& asked, const std::vector<Step>& steps) {
    std::string bases;
    int count = 0;
    for (const Step& step : steps) {
        if (step.cause != Cause::kNoEntry || step.className == asked) continue;
        bases += (bases.empty() ? "" : ", ") + step.className;
        ++count;
    }
    if (count == 0) return asked;
    return asked + (count == 1 ? " or its base " : " or its bases ") + bases;
}

/// What of the files the library does not see.
std::string Unseen(const FilesNow& files) {
    std::string text;
    for (std::size_t i = 0; i < files.problems.size(); ++i) {
        if (i == kMost) {
            return text + Row("", "and " + std::to_string(files.problems.size() - kMost) + " more");
        }
        text += Row(i == 0 ? "not read" : "", files.problems[i]);
    }
    return text;
}

/// The line that would do, if it is there; and why it does not.
std::string PassedOver(const FileLine* line) {
    if (line == nullptr) return {};
    const std::string why = line->unread.empty() ? "it was not there when the files were read, or "
                                                   "the dictionary has refused it"
                                                 : line->unread;
    return Row("passed over", *line, why);
}

/// Lines that would do for one of the classes of the road.
std::string PassedOver(const std::vector<Step>& steps, const FilesNow& files) {
    std::string text;
    for (const Step& step : steps) {
        if (step.cause != Cause::kNoEntry) continue;
        text += PassedOver(files.FindPair(step.className, step.interfaceName));
    }
    return text;
}

bool IsOnRoad(const std::string& className, const std::vector<Step>& steps) {
    return std::any_of(steps.begin(), steps.end(),
                       [&](const Step& step) { return step.className == className; });
}

std::string NearPairs(const std::string& className, const std::string& interfaceName,
                      const std::vector<Step>& steps, const FilesNow& files) {
    std::string text;
    for (const NearLine& near : NearLines(className, interfaceName, files)) {
        const bool isSame = near.line->words[1] == interfaceName;
        if (isSame && IsOnRoad(near.line->words[0], steps)) continue;
        text += Row(text.empty() ? "near" : "", *near.line, near.difference);
    }
    return text;
}

/// Lines of the kind whose second word is near to the name.
std::string NearSecondWords(const std::string& name, FileKind kind, const FilesNow& files) {
    std::vector<std::string> names;
    for (const FileLine& line : files.lines) {
        if (line.kind == kind && line.words.size() > 1) names.push_back(line.words[1]);
    }
    std::string text;
    for (const std::string& near : NearNames(name, names)) {
        const auto line =
            std::find_if(files.lines.begin(), files.lines.end(), [&](const FileLine& one) {
                return one.kind == kind && one.words.size() > 1 && one.words[1] == near;
            });
        text += Row(text.empty() ? "near" : "", *line, "the name is written " + near);
    }
    return text;
}

}  // namespace

bool IsAbsence(const Step& step) {
    switch (step.cause) {
        case Cause::kNoEntry:
        case Cause::kNoCreator:
        case Cause::kIdWithoutName:
        case Cause::kNameOfAnotherId:
        case Cause::kUnknownInterface:
        case Cause::kUnknownClassId:
            return true;
        default:
            return false;
    }
}

std::string TellAbsence(const Question& question, const Explanation& explanation,
                        const FilesNow& files) {
    const Step& root = explanation.steps[explanation.root];
    const std::string& className = question.className;
    const std::string& interfaceName = root.interfaceName;
    const std::string where =
        " in " + Count(files.folders, "folder") + ", " + Count(files.files, "file");
    const std::string unseen = Unseen(files);
    switch (root.cause) {
        case Cause::kNoEntry:
            return Row("found", "no line for " + Classes(className, explanation.steps) + where) +
                   unseen + PassedOver(explanation.steps, files) +
                   NearPairs(className, interfaceName, explanation.steps, files);
        case Cause::kNoCreator:
            return Row("found", "no line that makes a " + className + where) + unseen +
                   PassedOver(files.FindPair(className, "CreateInterface")) +
                   NearPairs(className, "CreateInterface", {}, files);
        case Cause::kUnknownInterface:
            return Row("found", "no line for " + interfaceName + where) + unseen +
                   PassedOver(files.FindName(FileKind::kInterfaces, interfaceName)) +
                   NearSecondWords(interfaceName, FileKind::kInterfaces, files);
        case Cause::kUnknownClassId:
            return Row("found", "no line for the id" + where) + unseen +
                   PassedOver(files.FindId(FileKind::kClasses, question.id));
        default:
            return Row("found", "no line for the id" + where) + unseen +
                   PassedOver(files.FindId(FileKind::kInterfaces, question.id));
    }
}

}  // namespace lyr::internal

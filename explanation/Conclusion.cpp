#include "explanation/Conclusion.h"

#include "dictionary/InterfaceName.h"
#include "explanation/ExplainedSearch.h"
#include "registries/ClassRecord.h"
#include "support/Notes.h"

#include <algorithm>

namespace lyr::internal {

namespace {

using Answer = Explanation::Answer;

std::string TextOr(const char* text, const char* otherwise) {
    return text != nullptr ? text : otherwise;
}

bool Holds(const std::vector<Step>& steps, Cause cause) {
    return std::any_of(steps.begin(), steps.end(),
                       [=](const Step& step) { return step.cause == cause; });
}

/// What a search that found nothing means for a request.
Answer AnswerOf(const std::vector<Step>& steps) {
    if (Holds(steps, Cause::kKnownAbsence)) return Answer::kNo;
    for (const Cause open :
         {Cause::kLibraryNotLoaded, Cause::kFilesNotRead, Cause::kUnknownClass, Cause::kOwnSearch,
          Cause::kPassedOn, Cause::kFactoryGaveNull, Cause::kLoading, Cause::kNoMemory}) {
        if (Holds(steps, open)) return Answer::kUnknown;
    }
    return Answer::kNo;
}

}  // namespace

Question QuestionOf(const char* className, const GUID* iid, const char* interfaceName) {
    Question question;
    if (interfaceName == nullptr && iid != nullptr) interfaceName = InterfaceName(*iid, 0);
    const std::string id = iid != nullptr ? InBraces(*iid) : std::string();
    question.className = TextOr(className, "object");
    question.interfaceName = interfaceName != nullptr ? interfaceName : id;
    question.what = question.interfaceName + " for " +
                    (className != nullptr ? "a " + question.className : "the object");
    question.id = id;
    question.asked = question.interfaceName;
    if (interfaceName != nullptr && !id.empty()) question.asked += " " + id;
    return question;
}

Question CreationOf(const char* className, const std::string& id) {
    Question question;
    question.className = TextOr(className, "object");
    question.what = question.className + " is made";
    question.id = id;
    question.asked = question.className + (id.empty() ? "" : " " + id);
    return question;
}

Question CreationOf(const GUID& clsid) {
    const CLSIDNameRecord* const record = KnownClass(clsid);
    return CreationOf(record != nullptr ? record->className : nullptr, InBraces(clsid));
}

Explanation Conclude(const Question& question, Notes& notes, bool isFound) {
    Explanation explanation;
    explanation.className = question.className;
    explanation.interfaceName = question.interfaceName;
    explanation.steps = std::move(notes.Steps());
    for (Step& step : explanation.steps) {
        if (step.interfaceName.empty()) step.interfaceName = question.interfaceName;
        if (step.className.empty()) step.className = question.className;
    }
    if (notes.IsShort()) {
        Step step;
        step.cause = Cause::kNoMemory;
        explanation.steps.push_back(std::move(step));
    }
    const Answer refusal = question.isAnswered ? Answer::kNo : AnswerOf(explanation.steps);
    explanation.answer = isFound ? Answer::kYes : refusal;
    Tell(question, explanation);
    return explanation;
}

Explanation ConcludeRequest(Question question, Notes& notes, bool isFound) {
    question.isOfRequest = true;
    question.isAnswered = true;
    return Conclude(question, notes, isFound);
}

}  // namespace lyr::internal

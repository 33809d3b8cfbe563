// lyr explain: the road of a request, without going it.

#include "inspection/RequestRoad.h"
#include "lyr/Json.h"
#include "lyr/LoadTrials.h"
#include "lyr/SurveyCommand.h"

#include <cstdio>
#include <string>

namespace lyr::program {

namespace {

using inspection::RequestRoad;
using inspection::Verdict;

struct Arguments {
    SurveyOptions places;
    LoadOptions load;
    std::string className;
    std::string interfaceName;
    bool isJson = false;
};

/// A line of the paragraph: what it is about, and the text behind it.
void AppendRow(std::string& text, const std::string& about, const std::string& row) {
    constexpr std::size_t kIndent = 14;
    std::string head = "  " + about;
    if (head.size() < kIndent) head.resize(kIndent, ' ');
    text += inspection::Printable(head + row) + "\n";
}

std::string PlaceText(const inspection::Place& place) {
    if (place.file.empty()) return {};
    return place.line == 0 ? place.file + "  "
                           : place.file + ":" + std::to_string(place.line) + "  ";
}

std::string FirstLine(const RequestRoad& road) {
    const std::string name = road.interfaceName.empty() ? road.iid : road.interfaceName;
    const bool isCreation = name == "CreateInterface";
    const std::string what =
        isCreation ? road.className + " is made" : name + " for a " + road.className;
    if (road.verdict == Verdict::Yes) return "lyr: " + what + ": yes";
    return std::string("lyr: ") + (road.verdict == Verdict::Unknown ? "perhaps no " : "no ") +
           what + ": " + road.cause;
}

std::string TextOf(const RequestRoad& road, std::size_t files) {
    std::string text = inspection::Printable(FirstLine(road)) + "\n";
    const bool isIdTold = road.iid.empty() || road.interfaceName.empty();
    AppendRow(text, "asked for",
              isIdTold ? road.interfaceName + road.iid : road.interfaceName + " " + road.iid);
    AppendRow(text, "looked",
              "now, in " + inspection::Counted(files, "file") + ", without loading any library");
    std::string last;
    for (const inspection::RoadStep& step : road.steps) {
        AppendRow(text, step.about == last ? "" : step.about, PlaceText(step.place) + step.text);
        last = step.about;
    }
    if (!road.remedy.empty()) AppendRow(text, "remedy", road.remedy);
    return text;
}

Status StatusOf(Verdict verdict) {
    if (verdict == Verdict::Yes) return kGood;
    return verdict == Verdict::No ? kErrors : kNotKnown;
}

/// Asks in a process that loads what it needs. Gives what that process says, if it knows the
/// answer; the road then has that answer.
std::string Ask(const Arguments& arguments, const inspection::Survey& survey, RequestRoad& road) {
    TriedRequest tried = TryRequest(arguments.places, arguments.load, survey, arguments.className,
                                    arguments.interfaceName);
    const std::string firstLine = tried.text.substr(0, tried.text.find('\n'));
    if (tried.verdict == Verdict::Unknown) {
        inspection::RoadStep& step = road.steps.emplace_back();
        step.about = "loading";
        step.text = firstLine;
        return {};
    }
    if (tried.verdict != road.verdict) {
        road.cause = tried.verdict == Verdict::Yes ? "" : firstLine;
        road.remedy.clear();
    }
    road.verdict = tried.verdict;
    return std::move(tried.text);
}

Status Run(const Arguments& arguments) {
    inspection::Survey survey = arguments.places.Look();
    RequestRoad road =
        inspection::RoadFinder(survey).Find(arguments.className, arguments.interfaceName);
    std::string text;
    if (arguments.load.isWanted) text = Ask(arguments, survey, road);
    if (arguments.isJson) {
        std::puts(JsonOf(road, text).c_str());
    } else {
        if (text.empty()) text = TextOf(road, survey.Files().size());
        std::fputs(text.c_str(), stdout);
    }
    return StatusOf(road.verdict);
}

}  // namespace

void AddExplain(CLI::App& program, Status& status) {
    const auto [command, arguments] = AddSurveyCommand(
        program,
        {"explain",
         "Explains how a request for an interface of a class would be answered: each step of its "
         "road through the dictionaries and the libraries, and the cause when it fails. The status "
         "is 0 when it would be answered, 1 when not, and 3 when only the libraries' code tells; "
         "--load has a process of its own ask.",
         "Examples:\n"
         "  lyr explain Circle IPrint -d app/dictionary -l build/lib\n"
         "  lyr explain Circle IPrint -d app/dictionary --load\n"
         "  lyr explain Circle 9ff2405a-cfea-461a-a560-f36c489875ab -d app/dictionary\n"
         "  lyr explain Circle CreateInterface -d app/dictionary --json"},
        status, Run);
    command->add_option("CLASS", arguments->className, "The class of the object that is asked")
        ->required();
    command
        ->add_option("INTERFACE", arguments->interfaceName,
                     "The interface by its name or its id; CreateInterface for the making of an "
                     "object by the name of its class")
        ->required();
    arguments->load.AddTo(*command);
    command->add_flag("--json", arguments->isJson, "Writes JSON");
}

}  // namespace lyr::program

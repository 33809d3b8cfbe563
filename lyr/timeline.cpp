// lyr timeline: where the time of a start has gone.

#include "inspection/Findings.h"
#include "lyr/Commands.h"
#include "lyr/TraceSummary.h"

#include <algorithm>
#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>

namespace lyr::program {

namespace {

using Json = nlohmann::ordered_json;

struct Arguments {
    std::string file;
    std::size_t count = 10;
    bool isJson = false;
};

double InMilliseconds(std::int64_t time) {
    return static_cast<double>(time) / 1e6;
}

/// Lines that say from where it was called, the nearest first.
std::string AskersText(const std::vector<std::string>& askers) {
    std::string text;
    for (const std::string& asker : askers) text += ", in " + asker;
    return text;
}

/// "The most expensive loads", and how many of how many.
void PrintHead(const char* what, std::size_t count, std::size_t all) {
    if (count < all) {
        std::printf("\n%s, %zu of %zu\n", what, count, all);
    } else {
        std::printf("\n%s\n", what);
    }
}

void PrintTotals(const TraceSummary& summary) {
    std::printf("%s: %.3f ms from the first event to the end of the last, in %s\n",
                summary.process.c_str(), InMilliseconds(summary.wall),
                inspection::Counted(summary.threads, "thread").c_str());
    if (summary.isCut) std::puts("The file stops in the middle: what was under way is not in it.");
    std::printf("\n%8s  %14s  %14s\n", "number", "all threads", "wall");
    for (const TraceSummary::Total& total : summary.totals) {
        if (total.count == 0) continue;
        std::printf("%8zu  %11.3f ms  %11.3f ms  %s\n", total.count, InMilliseconds(total.summed),
                    InMilliseconds(total.wall), total.kind);
    }
}

void Print(const TraceSummary::Load& load) {
    std::string what = load.library;
    if (load.count > 1) what += ", " + std::to_string(load.count) + " times";
    what += load.file.empty() ? ": not loaded: " + load.words : ": " + load.file;
    std::printf("%11.3f ms  %11.3f ms  %s\n", InMilliseconds(load.self), InMilliseconds(load.total),
                what.c_str());
    std::printf("%32sfirst asked for after %.3f ms by thread %s%s\n", "",
                InMilliseconds(load.after), load.thread.c_str(), AskersText(load.askers).c_str());
}

void Print(const TraceSummary::Wait& wait) {
    std::printf("%11.3f ms  %s %s\n", InMilliseconds(wait.length), wait.lock.c_str(),
                wait.address.c_str());
    std::printf("%16safter %.3f ms by thread %s%s\n", "", InMilliseconds(wait.after),
                wait.thread.c_str(), AskersText(wait.askers).c_str());
}

template <typename Row>
void PrintFirst(const std::vector<Row>& rows, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) Print(rows[i]);
}

void Print(const TraceSummary& summary, std::size_t count) {
    PrintTotals(summary);
    const std::size_t loads = std::min(count, summary.loads.size());
    if (loads > 0) {
        PrintHead("The most expensive loads", loads, summary.loads.size());
        std::printf("%14s  %14s\n", "alone", "with its own");
        PrintFirst(summary.loads, loads);
    }
    const std::size_t waits = std::min(count, summary.waits.size());
    if (waits > 0) {
        PrintHead("The longest waits for locks", waits, summary.waits.size());
        PrintFirst(summary.waits, waits);
    }
}

double InMicroseconds(std::int64_t time) {
    return static_cast<double>(time) / 1e3;
}

Json JsonOf(const TraceSummary::Load& load) {
    return {{"library", load.library},
            {"file", load.file},
            {"words", load.words},
            {"count", load.count},
            {"self_us", InMicroseconds(load.self)},
            {"total_us", InMicroseconds(load.total)},
            {"after_us", InMicroseconds(load.after)},
            {"thread", load.thread},
            {"askers", load.askers}};
}

Json JsonOf(const TraceSummary::Wait& wait) {
    return {{"lock", wait.lock},
            {"address", wait.address},
            {"length_us", InMicroseconds(wait.length)},
            {"after_us", InMicroseconds(wait.after)},
            {"thread", wait.thread},
            {"askers", wait.askers}};
}

std::string JsonOf(const TraceSummary& summary, std::size_t count) {
    Json json = {{"format", 1},
                 {"process", summary.process},
                 {"threads", summary.threads},
                 {"wall_us", InMicroseconds(summary.wall)},
                 {"cut", summary.isCut},
                 {"totals", Json::array()},
                 {"loads", Json::array()},
                 {"waits", Json::array()}};
    for (const TraceSummary::Total& total : summary.totals) {
        json["totals"].push_back({{"kind", total.kind},
                                  {"count", total.count},
                                  {"all_threads_us", InMicroseconds(total.summed)},
                                  {"wall_us", InMicroseconds(total.wall)}});
    }
    for (std::size_t i = 0; i < std::min(count, summary.loads.size()); ++i) {
        json["loads"].push_back(JsonOf(summary.loads[i]));
    }
    for (std::size_t i = 0; i < std::min(count, summary.waits.size()); ++i) {
        json["waits"].push_back(JsonOf(summary.waits[i]));
    }
    return json.dump(2);
}

Status Run(const Arguments& arguments) {
    try {
        const TraceSummary summary = TraceSummary::Of(Trace::Read(arguments.file));
        if (arguments.isJson) {
            std::puts(JsonOf(summary, arguments.count).c_str());
        } else {
            Print(summary, arguments.count);
        }
        return kGood;
    } catch (const BrokenTrace& broken) {
        std::fprintf(stderr, "%s\n", broken.what());
        return kErrors;
    }
}

}  // namespace

void AddTimeline(CLI::App& program, Status& status) {
    CLI::App* const command = program.add_subcommand(
        "timeline",
        "Says where the time of a start has gone, from a file that LYRDebug=timeline=FILE has had "
        "a program write: the libraries that take longest to load, by themselves and with those "
        "that they have loaded, who asked for them first, and the longest waits for locks. "
        "Trace viewers show the same file as a picture.");
    const auto arguments = std::make_shared<Arguments>();
    command->add_option("FILE", arguments->file, "What the program has written")->required();
    command->add_option("--count", arguments->count, "How many loads and waits are shown")
        ->capture_default_str();
    command->add_flag("--json", arguments->isJson, "Writes JSON");
    command->footer("Examples:\n  LYRDebug=timeline=start.json app && lyr timeline start.json");
    command->final_callback([=, &status] { status = Run(*arguments); });
}

}  // namespace lyr::program

#include "lyr/TraceSummary.h"

#include <algorithm>
#include <limits>
#include <map>
#include <set>
#include <utility>

namespace lyr::program {

namespace {

using Kind = Slice::Kind;

constexpr std::pair<Kind, const char*> kKinds[] = {
    {Kind::kScan, "readings of the dictionary files"},
    {Kind::kFile, "dictionary files"},
    {Kind::kLoad, "loads"},
    {Kind::kRequest, "first answers"},
    {Kind::kCreation, "creations"},
    {Kind::kWait, "waits for locks"}};

/// The nearest slice around it that is of the kind; kNone for none.
std::size_t FindAround(const Trace& trace, const Slice& slice, Kind kind) {
    std::size_t at = slice.parent;
    while (at != Slice::kNone && trace.slices[at].kind != kind) at = trace.slices[at].parent;
    return at;
}

/// How long at least one of them lasts.
std::int64_t WallOf(std::vector<std::pair<std::int64_t, std::int64_t>> spans) {
    std::sort(spans.begin(), spans.end());
    std::int64_t wall = 0;
    std::int64_t until = std::numeric_limits<std::int64_t>::min();
    for (const auto& [begin, end] : spans) {
        if (end > until) wall += end - std::max(begin, until);
        until = std::max(until, end);
    }
    return wall;
}

TraceSummary::Total TotalOf(const Trace& trace, Kind kind, const char* name) {
    TraceSummary::Total total{name};
    std::vector<std::pair<std::int64_t, std::int64_t>> spans;
    for (const Slice& slice : trace.slices) {
        if (slice.kind != kind) continue;
        ++total.count;
        if (FindAround(trace, slice, kind) != Slice::kNone) continue;
        total.summed += slice.Length();
        spans.emplace_back(slice.begin, slice.end);
    }
    total.wall = WallOf(std::move(spans));
    return total;
}

/// What the load was for, as it says itself: the slice of that may be missing, as its process was
/// killed before its end.
std::string RequestOf(const Slice& load) {
    const std::string& name = load.Text("class");
    if (name.empty()) return {};
    const std::string& interfaceName = load.Text("interface");
    return interfaceName.empty() ? "make " + name : interfaceName + " for a " + name;
}

std::vector<std::string> AskersOf(const Trace& trace, const Slice& slice) {
    std::vector<std::string> askers;
    const bool hasAsker =
        slice.parent != Slice::kNone && (trace.slices[slice.parent].kind == Kind::kRequest ||
                                         trace.slices[slice.parent].kind == Kind::kCreation);
    const std::string request = RequestOf(slice);
    if (!hasAsker && !request.empty()) askers.push_back(request);
    for (std::size_t at = slice.parent; at != Slice::kNone; at = trace.slices[at].parent) {
        askers.push_back(trace.slices[at].name);
    }
    return askers;
}

std::string ThreadOf(const Trace& trace, const Slice& slice) {
    const auto name = trace.threads.find(slice.thread);
    const std::string number = std::to_string(slice.thread.second);
    return name != trace.threads.end() ? name->second + " (" + number + ")" : number;
}

std::vector<TraceSummary::Load> LoadsOf(const Trace& trace, std::int64_t start) {
    std::vector<std::int64_t> selfs(trace.slices.size());
    std::vector<const Slice*> loads;
    for (std::size_t i = 0; i < trace.slices.size(); ++i) {
        const Slice& slice = trace.slices[i];
        if (slice.kind != Kind::kLoad) continue;
        loads.push_back(&slice);
        selfs[i] += slice.Length();
        const std::size_t around = FindAround(trace, slice, Kind::kLoad);
        if (around != Slice::kNone) selfs[around] -= slice.Length();
    }
    std::stable_sort(loads.begin(), loads.end(),
                     [](const Slice* a, const Slice* b) { return a->begin < b->begin; });

    std::map<std::pair<std::int64_t, std::string>, TraceSummary::Load> byLibrary;
    for (const Slice* const slice : loads) {
        // Dictionaries may name one file in several ways.
        const std::string& file = slice->Text("file");
        const std::string& key = file.empty() ? slice->Text("library") : file;
        TraceSummary::Load& load = byLibrary[{slice->thread.first, key}];
        if (++load.count == 1) {
            load.library = slice->Text("library");
            load.thread = ThreadOf(trace, *slice);
            load.after = slice->begin - start;
            load.askers = AskersOf(trace, *slice);
        }
        load.file = file;
        load.words = slice->Text("words");
        load.total += slice->Length();
        load.self += selfs[static_cast<std::size_t>(slice - trace.slices.data())];
    }
    std::vector<TraceSummary::Load> sorted;
    sorted.reserve(byLibrary.size());
    for (auto& [key, load] : byLibrary) sorted.push_back(std::move(load));
    std::stable_sort(sorted.begin(), sorted.end(),
                     [](const auto& a, const auto& b) { return a.self > b.self; });
    return sorted;
}

std::vector<TraceSummary::Wait> WaitsOf(const Trace& trace, std::int64_t start) {
    std::vector<TraceSummary::Wait> waits;
    for (const Slice& slice : trace.slices) {
        if (slice.kind != Kind::kWait) continue;
        waits.push_back({slice.Text("lock"), slice.Text("address"), slice.Length(),
                         ThreadOf(trace, slice), slice.begin - start, AskersOf(trace, slice)});
    }
    std::stable_sort(waits.begin(), waits.end(),
                     [](const auto& a, const auto& b) { return a.length > b.length; });
    return waits;
}

}  // namespace

TraceSummary TraceSummary::Of(const Trace& trace) {
    TraceSummary summary;
    summary.process = trace.process;
    summary.isCut = trace.isCut;
    std::set<Slice::Thread> threads;
    std::int64_t start = trace.slices.empty() ? 0 : trace.slices.front().begin;
    std::int64_t end = start;
    for (const Slice& slice : trace.slices) {
        threads.insert(slice.thread);
        start = std::min(start, slice.begin);
        end = std::max(end, slice.end);
    }
    summary.threads = threads.size();
    summary.wall = end - start;
    for (const auto& [kind, name] : kKinds) summary.totals.push_back(TotalOf(trace, kind, name));
    summary.loads = LoadsOf(trace, start);
    summary.waits = WaitsOf(trace, start);
    return summary;
}

}  // namespace lyr::program

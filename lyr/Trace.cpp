#include "lyr/Trace.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <fstream>
#include <nlohmann/json.hpp>
#include <optional>
#include <tuple>

namespace lyr::program {

namespace {

using Json = nlohmann::json;

constexpr std::pair<const char*, Slice::Kind> kCategories[] = {
    {"lyr.scan", Slice::Kind::kScan},         {"lyr.file", Slice::Kind::kFile},
    {"lyr.load", Slice::Kind::kLoad},         {"lyr.request", Slice::Kind::kRequest},
    {"lyr.creation", Slice::Kind::kCreation}, {"lyr.wait", Slice::Kind::kWait}};

std::optional<Slice::Kind> KindOf(const std::string& category) {
    for (const auto& [name, kind] : kCategories) {
        if (category == name) return kind;
    }
    return std::nullopt;
}

/// Reads the file line by line: each holds one event, with a comma behind all but the last.
class Reader {
public:
    explicit Reader(const std::string& path) : _path(path), _file(path) {
        if (!_file) {
            throw BrokenTrace("lyr: " + path + " cannot be read: " + std::strerror(errno));
        }
    }

    Trace Read() {
        if (!NextLine() || _text != "[") RefuseAsForeign();
        while (NextLine()) Take();
        if (!_isNamed || (_isForeign && _trace.slices.empty())) RefuseAsForeign();
        return std::move(_trace);
    }

private:
    [[noreturn]] void Refuse(const std::string& why) const {
        throw BrokenTrace(_path + ":" + std::to_string(_line) + ": error: " + why);
    }
    [[noreturn]] void RefuseAsForeign() const {
        throw BrokenTrace("lyr: " + _path +
                          " is no timeline; LYRDebug=timeline=PATH has a program write one");
    }

    bool NextLine() {
        if (!std::getline(_file, _text)) return false;
        ++_line;
        while (!_text.empty() && std::strchr(", \t\r", _text.back()) != nullptr) _text.pop_back();
        return true;
    }

    void Take() {
        if (_text.empty() || _text == "]") return;
        const Json event = Json::parse(_text, nullptr, false);
        if (event.is_discarded() && _file.peek() == std::ifstream::traits_type::eof()) {
            _trace.isCut = true;
            return;
        }
        if (!event.is_object()) Refuse("this is no event of a trace");
        try {
            const std::string phase = event.at("ph");
            if (phase == "M") TakeName(event);
            if (phase == "X") TakeSlice(event);
        } catch (const Json::exception& error) {
            Refuse(std::string("the event is not whole: ") + error.what());
        }
    }

    static Slice::Thread ThreadOf(const Json& event) { return {event.at("pid"), event.at("tid")}; }

    /// Times are in microseconds, with the nanoseconds behind the point.
    std::int64_t NanosecondsOf(const Json& microseconds) const {
        const double number = microseconds.get<double>();
        if (!(std::abs(number) < 4e15)) Refuse("no time is that long");
        return std::llround(number * 1000);
    }

    void TakeName(const Json& event) {
        const std::string what = event.at("name");
        if (what != "process_name" && what != "thread_name") return;
        const std::string name = event.at("args").at("name");
        if (what == "thread_name") {
            _trace.threads[ThreadOf(event)] = name;
            return;
        }
        _trace.process = name;
        _isNamed = true;
    }

    void TakeSlice(const Json& event) {
        const auto kind = KindOf(event.at("cat"));
        if (!kind) {
            _isForeign = true;
            return;
        }
        const std::int64_t begin = NanosecondsOf(event.at("ts"));
        const std::int64_t length = NanosecondsOf(event.at("dur"));
        if (length < 0) Refuse("the event ends before it begins");
        Slice slice{
            *kind, event.at("name"), ThreadOf(event), begin, begin + length, _line, Slice::kNone,
            {}};
        for (const auto& [key, value] : event.at("args").items()) {
            if (value.is_string()) slice.texts[key] = value;
        }
        _trace.slices.push_back(std::move(slice));
    }

    const std::string& _path;
    std::ifstream _file;
    std::string _text;
    int _line = 0;
    Trace _trace;
    bool _isNamed = false;    // as each of ours is, in its first event
    bool _isForeign = false;  // some events are not ours
};

/// Puts each slice before those inside it, and tells each which one it is in.
void Nest(std::vector<Slice>& slices, const std::string& path) {
    // Of two that are the same time, the outer one has been written later.
    std::sort(slices.begin(), slices.end(), [](const Slice& a, const Slice& b) {
        return std::tuple(a.thread, a.begin, -a.end, -a.line) <
               std::tuple(b.thread, b.begin, -b.end, -b.line);
    });
    std::vector<std::size_t> open;
    for (std::size_t i = 0; i < slices.size(); ++i) {
        Slice& slice = slices[i];
        const auto isOver = [&](const Slice& one) {
            return one.thread != slice.thread || one.end <= slice.begin;
        };
        // One without length belongs into what ends where it stands.
        const auto holds = [&](const Slice& one) {
            return one.thread == slice.thread && slice.end <= one.end;
        };
        while (!open.empty() && isOver(slices[open.back()]) && !holds(slices[open.back()])) {
            open.pop_back();
        }
        if (!open.empty()) {
            const Slice& parent = slices[open.back()];
            if (!holds(parent)) {
                throw BrokenTrace(path + ":" + std::to_string(slice.line) +
                                  ": error: the event goes on after the one around it");
            }
            slice.parent = open.back();
        }
        open.push_back(i);
    }
}

}  // namespace

const std::string& Slice::Text(const char* argument) const {
    static const std::string none;
    const auto found = texts.find(argument);
    return found != texts.end() ? found->second : none;
}

Trace Trace::Read(const std::string& path) {
    Trace trace = Reader(path).Read();
    Nest(trace.slices, path);
    return trace;
}

}  // namespace lyr::program

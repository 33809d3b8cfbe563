#include "explanation/DebugWords.h"

#include <fnmatch.h>

namespace lyr::internal {

namespace {

/// The part behind the prefix; false where the text does not begin with it.
bool TakePrefix(std::string& text, const std::string& prefix) {
    if (text.compare(0, prefix.size(), prefix) != 0) return false;
    text.erase(0, prefix.size());
    return true;
}

bool TakePattern(std::string word, std::vector<DebugWords::Pattern>& patterns) {
    const bool leavesOut = TakePrefix(word, "-");
    const std::size_t slash = word.find('/');
    // A word of another kind, misspelt, with a path behind it.
    if (slash == std::string::npos || word.find('=') < slash) return false;
    patterns.push_back({word.substr(0, slash), word.substr(slash + 1), leavesOut});
    return true;
}

void Take(std::string word, DebugWords& words) {
    if (word.empty()) return;
    if (word == "help") {
        words.help = true;
        return;
    }
    const std::string whole = word;
    if (TakePrefix(word, "explain-file=") && !word.empty()) {
        words.file = word;
        return;
    }
    if (TakePrefix(word, "timeline=") && !word.empty()) {
        words.timeline = word;
        return;
    }
    if (word == "explain") {
        words.explain = true;
        return;
    }
    // What stands behind the first pattern belongs to it: "explain=Circle/I*,-*/IDebug*".
    const bool begins = TakePrefix(word, "explain=");
    if (begins) words.explain = true;
    if (words.explain && word == "all") {
        words.all = true;
    } else if (!words.explain || !TakePattern(word, words.patterns)) {
        words.unknown.push_back(whole);
    }
}

bool Fits(const std::string& pattern, const std::string& name) {
    return ::fnmatch(pattern.c_str(), name.c_str(), 0) == 0;
}

}  // namespace

DebugWords DebugWords::Of(const std::string& text) {
    DebugWords words;
    std::size_t begin = 0;
    while (begin <= text.size()) {
        const std::size_t end = std::min(text.find_first_of(",;", begin), text.size());
        Take(text.substr(begin, end - begin), words);
        begin = end + 1;
    }
    return words;
}

bool DebugWords::Match(const std::string& className, const std::string& interfaceName) const {
    bool isLetIn = true;
    for (const Pattern& pattern : patterns) isLetIn = isLetIn && pattern.leavesOut;
    for (const Pattern& pattern : patterns) {
        if (!Fits(pattern.className, className) || !Fits(pattern.interfaceName, interfaceName)) {
            continue;
        }
        if (pattern.leavesOut) return false;
        isLetIn = true;
    }
    return isLetIn;
}

const char* DebugWords::Help() {
    return "lyr: LYRDebug takes these words, with commas between them\n"
           "  explain                    tell each required interface that is refused, each "
           "object\n"
           "                             that is not made, and what contradicts, once each\n"
           "  explain=all                also each question that may be answered no, each answer,\n"
           "                             and how long it took\n"
           "  explain=CLASS/INTERFACE    of these alone; * and ? stand for any letters, a - before "
           "it\n"
           "                             leaves them out, more patterns may follow\n"
           "  explain-file=PATH          write to that file, with the process id behind its name "
           "for\n"
           "                             each process after the first\n"
           "  timeline=PATH              write what happens when to that file, for trace viewers "
           "and\n"
           "                             \"lyr timeline\"; with the process id as above\n"
           "  help                       these lines\n";
}

}  // namespace lyr::internal

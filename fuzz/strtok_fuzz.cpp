// The tokenizer beside the C library's, call by call, on equal texts that end with their blocks of
// memory. The input: the delimiters of odd calls, those of even calls, the text, each on a line.
#include "DictionaryModel.h"
#include "LYRSysTSStrtok.h"

#include <cstring>
#include <sstream>

extern "C" int LLVMFuzzerTestOneInput(const char* data, std::size_t size) {
    std::istringstream input(std::string(data, size));
    std::string delimiters[2], text;
    std::getline(std::getline(std::getline(input, delimiters[0]), delimiters[1]), text, '\0');
    std::vector<char> ours(text.c_str(), text.c_str() + text.size() + 1), theirs = ours;
    char *ourSave = nullptr, *theirSave = nullptr;
    Require(LYRSysTSStrtok(nullptr, "", &ourSave) == nullptr);  // nothing from nothing
    // Goes on after the last token: the end must stay the end.
    for (std::size_t call = 0, misses = 0; misses < 3; ++call) {
        const char* const cut = delimiters[call % 2].c_str();
        char* const our = LYRSysTSStrtok(call == 0 ? ours.data() : nullptr, cut, &ourSave);
        char* const their = strtok_r(call == 0 ? theirs.data() : nullptr, cut, &theirSave);
        Require(their != nullptr ? our - ours.data() == their - theirs.data() : our == nullptr);
        Require(ourSave - ours.data() == theirSave - theirs.data() && ours == theirs);
        if (their == nullptr) ++misses;
    }
    return 0;
}

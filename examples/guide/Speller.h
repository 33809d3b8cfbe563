#pragma once
#include <cstring>

// A class that was there before, and knows nothing of components.
class Speller {
public:
    bool Check(const char* word) const { return std::strcmp(word, "recieve") != 0; }
};

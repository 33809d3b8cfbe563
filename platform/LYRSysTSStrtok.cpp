#include "LYRSysTSStrtok.h"

#include <cstring>

char* LYRSysTSStrtok(char* text, const char* delimiters, char** save) {
    if (delimiters == nullptr || save == nullptr) return nullptr;
    if (text == nullptr && *save == nullptr) return nullptr;
    return ::strtok_r(text, delimiters, save);
}

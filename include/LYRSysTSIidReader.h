#pragma once

#include "LYRSysTSDictionaryReader.h"

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"  // nobody deletes a reader through a base

/// Reads the lines of ".iidts" files: interface id in braces, interface name.
class LYR_EXPORT LYRSysTSIidReader : public LYRSysTSDictionaryReader {
public:
    HRESULT PutInfo(char** words, int count, const char* path, int lineNumber) override;
};

#pragma GCC diagnostic pop

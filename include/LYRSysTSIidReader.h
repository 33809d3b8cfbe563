#pragma once

#include "LYRSysTSDictionaryReader.h"

/// Reads the lines of ".iidts" files: interface id in braces, interface name.
class LYR_EXPORT LYRSysTSIidReader final : public LYRSysTSDictionaryReader {
public:
    HRESULT PutInfo(char** words, int count, const char* path, int lineNumber) override;
};

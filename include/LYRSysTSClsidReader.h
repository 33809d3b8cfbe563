#pragma once

#include "LYRSysTSDictionaryReader.h"

/// Reads the lines of ".clsidts" files: class id in braces, class name, and optionally the library.
class LYR_EXPORT LYRSysTSClsidReader final : public LYRSysTSDictionaryReader {
public:
    HRESULT PutInfo(char** words, int count, const char* path, int lineNumber) override;
};

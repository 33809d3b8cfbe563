#pragma once

#include "LYRSysTSDictionaryReader.h"

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"  // nobody deletes a reader through a base

/// Reads the lines of ".clsidts" files: class id in braces, class name, and optionally the library.
class LYR_EXPORT LYRSysTSClsidReader : public LYRSysTSDictionaryReader {
public:
    HRESULT PutInfo(char** words, int count, const char* path, int lineNumber) override;
};

#pragma GCC diagnostic pop

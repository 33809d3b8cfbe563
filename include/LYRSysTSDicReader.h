#pragma once

#include "LYRSysTSDictionaryReader.h"

/// Reads the lines of ".dicts" files: class name, interface name, library, and optionally ITFLEAF
/// and a name, EXTENDED_BY and a class name. A line that the dictionary refuses is still a good
/// one.
class LYR_EXPORT LYRSysTSDicReader final : public LYRSysTSDictionaryReader {
public:
    HRESULT PutInfo(char** words, int count, const char* path, int lineNumber) override;
};

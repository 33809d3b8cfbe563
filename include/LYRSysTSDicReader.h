#pragma once

#include "LYRSysTSDictionaryReader.h"

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"  // nobody deletes a reader through a base

/// Reads the lines of ".dicts" files: class name, interface name, library, and optionally ITFLEAF
/// and a name, EXTENDED_BY and a class name. A line that the dictionary refuses is still a good
/// one.
class LYR_EXPORT LYRSysTSDicReader : public LYRSysTSDictionaryReader {
public:
    HRESULT PutInfo(char** words, int count, const char* path, int lineNumber) override;
};

#pragma GCC diagnostic pop

#pragma once

#include "HRESULT.h"
#include "LYRExport.h"

/// Takes the lines of one kind of dictionary file, cut into words.
class LYR_EXPORT LYRSysTSDictionaryReader {
public:
    /// Registers one line. `words` holds `count` words, which the reader does not keep; `path` and
    /// `lineNumber` (from 1) are for messages. S_OK for a good line; E_FAIL, with its reason on
    /// standard error, for one that ends the reading of the file.
    virtual HRESULT PutInfo(char** words, int count, const char* path, int lineNumber) = 0;

protected:
    // Not virtual, as its place in the table would be a second operation; a reader is never deleted
    // through this class.
    ~LYRSysTSDictionaryReader() = default;
};

#pragma once

#include "LYRExport.h"

/// Cuts `text` into tokens at the characters of `delimiters`, one per call.
///
/// The first call passes the text, which is cut in place, later calls pass null; `*save` carries
/// the position between them and belongs to the caller. The next token, which points into the
/// text and is never empty, or null when none is left, also when there is no text, no delimiters or
/// no `save` to work with. Re-entrant: all its state is the caller's.
LYR_EXPORT char* LYRSysTSStrtok(char* text, const char* delimiters, char** save);

#pragma once

#include "dictionary/LinePieces.h"

namespace lyr::internal {

/// As many words of a line of a dictionary file count; later ones are dropped.
inline constexpr int kMaxWords = 5;

/// Cuts a piece of a line into words at blanks, tabs and line feeds, in place, and sets `words` to
/// them and null behind them. The number of words; 0 for a piece of separators alone, and for a
/// comment, which begins with "#" or "//". Nothing behind a NUL counts.
int CutWords(LinePiece piece, char* (&words)[kMaxWords]);

}  // namespace lyr::internal

#pragma once

#include "lyr/explain.h"

#include <string>

namespace lyr::internal {

/// How a cause is told. In the texts {class}, {interface}, {library}, {symbol}, {other}, {words}
/// and {result} stand for what the step says.
struct CauseRow {
    Cause cause;
    int weight;  ///< of the steps on one road the heaviest is the root; 0 for none
    const char* name;
    const char* text;    ///< what is so
    const char* remedy;  ///< what to do about it; null where nothing can be told
};

/// The row of a cause; null for a number that is none.
const CauseRow* RowOf(Cause cause) noexcept;

/// The text with the names of the step in their places.
std::string FillIn(const char* text, const Step& step);

}  // namespace lyr::internal

#pragma once

#include "explanation/FilesNow.h"
#include "explanation/Paragraph.h"

#include <string>

namespace lyr::internal {

/// Whether the step tells that a line is missing in the dictionary files.
bool IsAbsence(const Step& step);

/// The rows about a line that is missing, as the root of the explanation tells: where it was looked
/// for, what of the files is not read, and what is near. Throws std::bad_alloc.
std::string TellAbsence(const Question& question, const Explanation& explanation,
                        const FilesNow& files);

}  // namespace lyr::internal

#pragma once

#include "GUID.h"
#include "explanation/Paragraph.h"

namespace lyr::internal {

class Notes;

/// What is asked in a request, or in the making of an object. Texts may be null, the id too.
Question QuestionOf(const char* className, const GUID* iid, const char* interfaceName);
Question CreationOf(const char* className, const std::string& id);
Question CreationOf(const GUID& clsid);

/// The explanation that comes of what was noted for it, or at the request itself. Throws
/// std::bad_alloc.
Explanation Conclude(const Question& question, Notes& notes, bool isFound);
Explanation ConcludeRequest(Question question, Notes& notes, bool isFound);

}  // namespace lyr::internal

#pragma once

#include "GUID.h"

#include <string>

class LYRSysTSMetaClass;

namespace lyr::internal {

class Notes;

/// The search of requests, gone for its notes: nothing of it is remembered, no factory is called.
class ExplainedSearch {
public:
    ExplainedSearch() = delete;

    /// Whether an interface would be found for objects of the class. `notes` are no request's.
    static bool Run(LYRSysTSMetaClass& metaObject, const GUID& iid, Notes& notes);

    /// The same for a class that has no meta-object yet, of which no base is known.
    static bool Run(const char* className, const GUID& iid, Notes& notes);
};

/// The id in braces and capitals.
std::string InBraces(const GUID& id);

}  // namespace lyr::internal

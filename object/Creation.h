#pragma once

#include "GUID.h"
#include "HRESULT.h"

namespace lyr::internal {

class Notes;

using CreationFunction = void* (*)(void*);
using GetClassObject = HRESULT (*)(const GUID&, const GUID&, void**);

/// The function that creates objects of the class: the registered one, else that of the caller's
/// library, which may be null, else that of the dictionary's; null when there is none. `notes`,
/// null as a rule, are told of the road.
CreationFunction FindCreationFunction(const char* className, const char* library, Notes* notes);

/// The function that answers for the class objects of the library that the id names; null when
/// there is none. `notes` as above.
GetClassObject FindGetClassObject(const GUID& clsid, Notes* notes);

}  // namespace lyr::internal

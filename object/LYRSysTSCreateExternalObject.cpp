#include "LYRSysTSCreateExternalObject.h"

#include "LYRSysTSDictionary.h"
#include "LYRThrLibraryManager.h"
#include "support/AddressCast.h"
#include "support/SharedField.h"

#include <new>
#include <string>

namespace {

using CreationFunction = void* (*)(void*);

CreationFunction FindEntryPoint(const char* className, const char* library) {
    try {
        const std::string name = std::string("fctLYRSysTSCreate") + className;
        return lyr::ToFunction<CreationFunction>(
            LYRThrLibraryManager::GetFunctionAddress(library, name.c_str()));
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

/// The function that creates objects of the class: the registered one, else that of the caller's
/// library, else that of the dictionary's.
CreationFunction FindCreationFunction(const char* className, const char* library) {
    const auto* const entry = LYRSysTSDictionary::QueryDictionary(className, "CreateInterface", 1);
    if (entry != nullptr) {
        const LYRSysTSInterfaceFactory creator = entry->creator;
        if (creator != nullptr) {
            return lyr::ToFunction<CreationFunction>(reinterpret_cast<void*>(creator));
        }
        if (library == nullptr) library = lyr::LoadShared(entry->sharedLibrary);
    }
    return library != nullptr ? FindEntryPoint(className, library) : nullptr;
}

}  // namespace

void* LYRSysTSCreateExternalObject(const char* name, const char* library, void* argument) {
    if (name == nullptr) return nullptr;
    const CreationFunction create = FindCreationFunction(name, library);
    return create != nullptr ? create(argument) : nullptr;
}

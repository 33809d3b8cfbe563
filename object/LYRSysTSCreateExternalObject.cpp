#include "LYRSysTSCreateExternalObject.h"

#include "LYRThrLibraryManager.h"
#include "dictionary/EntryCopy.h"
#include "support/AddressCast.h"
#include "support/Shortage.h"

#include <optional>
#include <string>

namespace {

using CreationFunction = void* (*)(void*);

CreationFunction FindEntryPoint(const char* className, const char* library) {
    const auto symbol = lyr::internal::RefuseOnShortage(
        std::nullopt, [=] { return std::optional(std::string("fctLYRSysTSCreate") + className); });
    if (!symbol) return nullptr;
    return lyr::internal::ToFunction<CreationFunction>(
        LYRThrLibraryManager::GetFunctionAddress(library, symbol->c_str()));
}

/// The function that creates objects of the class: the registered one, else that of the caller's
/// library, else that of the dictionary's.
CreationFunction FindCreationFunction(const char* className, const char* library) {
    const auto entry = lyr::internal::EntryCopy::Of(className, "CreateInterface", 1);
    if (entry.creator != nullptr) {
        return lyr::internal::ToFunction<CreationFunction>(reinterpret_cast<void*>(entry.creator));
    }
    if (library == nullptr) library = entry.library;
    return library != nullptr ? FindEntryPoint(className, library) : nullptr;
}

}  // namespace

void* LYRSysTSCreateExternalObject(const char* name, const char* library, void* argument) {
    if (name == nullptr) return nullptr;
    const CreationFunction create = FindCreationFunction(name, library);
    return create != nullptr ? create(argument) : nullptr;
}

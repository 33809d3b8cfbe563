#include "LYRSysTSCreateExternalObject.h"

#include "object/Creation.h"
#include "support/Listener.h"
#include "support/Notes.h"

namespace {

void* Create(const char* name, const char* library, void* argument, lyr::internal::Notes* notes) {
    const lyr::internal::CreationFunction create =
        lyr::internal::FindCreationFunction(name, library, notes);
    void* const object = create != nullptr ? create(argument) : nullptr;
    if (create != nullptr && object == nullptr && notes != nullptr) {
        notes->Add(lyr::Cause::kNothingMade, name, "CreateInterface");
    }
    return object;
}

}  // namespace

void* LYRSysTSCreateExternalObject(const char* name, const char* library, void* argument) {
    if (name == nullptr) return nullptr;
    lyr::internal::Listener* const listener = lyr::internal::CurrentListener();
    if (listener == nullptr) return Create(name, library, argument, nullptr);
    lyr::internal::Notes notes(lyr::internal::Notes::Mode::kRequest, {name});
    void* const object = Create(name, library, argument, &notes);
    listener->AfterCreation(notes, object != nullptr);
    return object;
}

#include "LYRSysTSCreateInstance.h"

#include "object/Creation.h"
#include "support/Listener.h"
#include "support/Notes.h"

namespace {

HRESULT Create(const GUID& clsid, const GUID& iid, void** out, lyr::internal::Notes* notes) {
    const lyr::internal::GetClassObject get = lyr::internal::FindGetClassObject(clsid, notes);
    const HRESULT result = get != nullptr ? get(clsid, iid, out) : E_FAIL;
    if (get != nullptr && result != S_OK && notes != nullptr) {
        notes->Add(lyr::Cause::kClassObjectRefuses, nullptr, nullptr);
        if (!notes->Steps().empty()) notes->Steps().back().result = result;
    }
    return result;
}

}  // namespace

HRESULT LYRSysTSCreateInstance(const GUID& clsid, const GUID& iid, void** out) {
    lyr::internal::Listener* const listener = lyr::internal::CurrentListener();
    if (listener == nullptr) return Create(clsid, iid, out, nullptr);
    lyr::internal::Notes notes(lyr::internal::Notes::Mode::kRequest, {nullptr, nullptr, &clsid});
    const HRESULT result = Create(clsid, iid, out, &notes);
    listener->AfterCreation(notes, result == S_OK);
    return result;
}

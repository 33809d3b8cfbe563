#include "lyr/classobject.h"

#include "LYRSysTSCreateExternalObject.h"
#include "LYRSysTSDicoCLSIDName.h"
#include "lyr/ref.h"

namespace lyr {
inline namespace v1 {
namespace detail {

HRESULT GetClassObject(const GUID& clsid, const GUID& iid, void** out) {
    if (out == nullptr) return E_FAIL;
    *out = nullptr;
    const CLSIDNameRecord* const entry = LYRSysTSDicoCLSIDName::QueryDicoCLSIDNameByCLSID(clsid);
    if (entry == nullptr || entry->library == nullptr) return E_FAIL;
    const Ref<IUnknown> object = Take(FromVoid<IUnknown>(
        LYRSysTSCreateExternalObject(entry->className, entry->library, nullptr)));
    return object != nullptr ? object->QueryInterface(iid, out) : E_FAIL;
}

}  // namespace detail
}  // namespace v1
}  // namespace lyr

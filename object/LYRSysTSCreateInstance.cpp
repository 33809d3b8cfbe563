#include "LYRSysTSCreateInstance.h"

#include "LYRSysTSDicoCLSIDName.h"
#include "LYRThrLibraryManager.h"
#include "support/AddressCast.h"

HRESULT LYRSysTSCreateInstance(const GUID& clsid, const GUID& iid, void** out) {
    const CLSIDNameRecord* const record = LYRSysTSDicoCLSIDName::QueryDicoCLSIDNameByCLSID(clsid);
    if (record == nullptr || record->library == nullptr) return E_FAIL;

    using GetClassObject = HRESULT (*)(const GUID&, const GUID&, void**);
    const auto getClassObject = lyr::internal::ToFunction<GetClassObject>(
        LYRThrLibraryManager::GetFunctionAddress(record->library, "LYRSysTSDllGetClassObject"));
    return getClassObject != nullptr ? getClassObject(clsid, iid, out) : E_FAIL;
}

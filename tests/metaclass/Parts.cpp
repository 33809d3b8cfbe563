// A component library: factories, which nobody calls, entry points that create
// objects, and extensions, whose meta-objects exist once it is loaded.

#include "LYRComponentModel.h"

extern "C" LYR_EXPORT void LYRSysTSCreateI0GadgetExt() {}
extern "C" LYR_EXPORT void LYRSysTSCreateI1Gadget() {}
extern "C" LYR_EXPORT void LYRSysTSCreateILeafGadget() {}
extern "C" LYR_EXPORT void LYRSysTSCreateI5OtherExt() {}
extern "C" LYR_EXPORT void LYRSysTSCreateI6Plain() {}

extern "C" LYR_EXPORT void* fctLYRSysTSCreateThing(void* argument) {
    return argument;
}

extern "C" LYR_EXPORT HRESULT LYRSysTSDllGetClassObject(const GUID& c, const GUID& i, void** out) {
    *out = const_cast<GUID*>(&c);
    return static_cast<HRESULT>(i.Data1);
}

const LYRSysTSMetaClass* const kExtensions[] = {
    LYRSysTSFindOrCreateMetaObject("GadgetExt", KeptExtension, nullptr, nullptr, "Gadget"),
    LYRSysTSFindOrCreateMetaObject("OtherExt", TransientExtension, nullptr, nullptr, "Other")};

// One of several libraries, which differ in STORM_NUMBER: the entry points for its components, and
// a kept and a transient extension of the class Shape, made known while it loads.
#include "../examples/support/Tie.h"
#include "LYRComponentModel.h"

#include <string>
#include <thread>

struct Component : LYRSysTSBaseUnknown {
    Component() : LYRSysTSBaseUnknown(1) {}
    static void* Make(void*) { return static_cast<IUnknown*>(new Component); }
};

template <LYRSysTSTypeOfClass type>
struct Extension : Component {
    static LYRSysTSMetaClass* MetaObject() {
        static LYRSysTSMetaClass* const meta = [] {
            const std::string name = "Part" + std::to_string(type) + "Of" STORM_NUMBER;
            auto* made =
                LYRSysTSFindOrCreateMetaObject(name.c_str(), type, nullptr, nullptr, nullptr);
            std::this_thread::yield();  // requests that come in between must wait
            LYRSysTSMetaClassExt::AddExtendedComponent(made, "Shape");
            return made;
        }();
        return meta;
    }
    LYRSysTSMetaClass* GetMetaObject() const override { return MetaObject(); }

    static IUnknown* MakePart(LYRSysTSBaseUnknown* object) {
        return MakeTie<Tie<IUnknown, Extension>>(object);
    }
};

const LYRSysTSMetaClass* const described[] = {Extension<KeptExtension>::MetaObject(),
                                              Extension<TransientExtension>::MetaObject()};
const LYRSysTSFillDictionary registered(
    "Made" STORM_NUMBER, "CreateInterface",
    reinterpret_cast<LYRSysTSInterfaceFactory>(reinterpret_cast<void*>(&Component::Make)));

extern "C" LYR_EXPORT IUnknown* STORM_KEPT(LYRSysTSBaseUnknown* object, unsigned char) {
    return Extension<KeptExtension>::MakePart(object);
}
extern "C" LYR_EXPORT IUnknown* STORM_TRANSIENT(LYRSysTSBaseUnknown* object, unsigned char) {
    return Extension<TransientExtension>::MakePart(object);
}
extern "C" LYR_EXPORT void* STORM_MAKE(void* argument) {
    return Component::Make(argument);
}
extern "C" LYR_EXPORT HRESULT LYRSysTSDllGetClassObject(const GUID&, const GUID&, void** out) {
    *out = Component::Make(nullptr);
    return S_OK;
}

#pragma once

#include "LYRSysTSBaseUnknown.h"
#include "LYRSysTSTIEInternal.h"

#include <memory>

/// The part that all TIEs have in common. Derive from it, write the interface's own operations in
/// terms of Impl(), and return MakeTie<YourTie>(object) from the entry point.
///
/// `ImplementationClass` derives from LYRSysTSBaseUnknown, has a constructor without arguments and
/// a static MetaObject().
template <class InterfaceClass, class ImplementationClass>
class Tie : public InterfaceClass {
public:
    using Implementation = ImplementationClass;

    Tie() = default;
    Tie(const Tie&) = delete;
    Tie& operator=(const Tie&) = delete;
    virtual ~Tie() = default;

    HRESULT QueryInterface(const GUID& iid, void** out) override {
        return LYRSysTSTIEInternal::Tie_Query(_object, iid, out);
    }

    std::uint32_t AddRef() override {
        return static_cast<std::uint32_t>(LYRSysTSTIEInternal::Tie_AddRef(_count, _object));
    }

    std::uint32_t Release() override {
        unsigned char mustDelete = 0;
        const int count = LYRSysTSTIEInternal::Tie_Release(_count, _object, mustDelete);
        if (mustDelete != 0) delete this;
        return static_cast<std::uint32_t>(count);
    }

protected:
    Implementation& Impl() const { return *static_cast<Implementation*>(_object); }

private:
    template <class TieClass>
    friend IUnknown* MakeTie(LYRSysTSBaseUnknown* object);

    LYRSysTSBaseUnknown* _object = nullptr;
    int _count = 1;  // matches the one count that QueryInterface raises on the component
};

/// A new TIE for `object`, or null when its implementation can be neither found nor made.
template <class TieClass>
IUnknown* MakeTie(LYRSysTSBaseUnknown* object) {
    using Implementation = typename TieClass::Implementation;
    // The TIE comes first: if memory runs out, no new extension is left behind.
    auto tie = std::make_unique<TieClass>();
    const HRESULT result = LYRSysTSTIEInternal::Tie_Construct(
        object, Implementation::MetaObject(),
        []() -> LYRSysTSBaseUnknown* { return new Implementation; }, tie->_object);
    return result == S_OK ? tie.release() : nullptr;
}

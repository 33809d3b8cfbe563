#pragma once

#include <LYRComponentModel.h>

struct INamed : IUnknown {
    virtual const char* Name() = 0;
};

class NamedTie final : public INamed {
public:
    NamedTie(LYRSysTSBaseUnknown* object, const char* name) : _object(object), _name(name) {}
    HRESULT QueryInterface(const GUID& iid, void** out) override {
        return LYRSysTSTIEInternal::Tie_Query(_object, iid, out);
    }
    uint32_t AddRef() override {
        return static_cast<uint32_t>(LYRSysTSTIEInternal::Tie_AddRef(_count, _object));
    }
    uint32_t Release() override {
        unsigned char mustDelete = 0;
        const int count = LYRSysTSTIEInternal::Tie_Release(_count, _object, mustDelete);
        if (mustDelete != 0) delete this;
        return static_cast<uint32_t>(count);
    }
    const char* Name() override { return _name; }

private:
    LYRSysTSBaseUnknown* _object;
    const char* _name;
    int _count = 1;
};

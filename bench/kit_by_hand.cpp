// The objects of kit_bench as their author writes them without the kit.

#include "KitBench.h"
#include "LYRComponentModel.h"
#include "Tie.h"

namespace {

/// A class or extension with a meta-object and a lock.
template <class Class, LYRSysTSTypeOfClass type>
class Described : public LYRSysTSBaseUnknown {
public:
    Described() : LYRSysTSBaseUnknown(1) {}

    static LYRSysTSMetaClass* MetaObject() {
        static LYRSysTSMetaClass* const meta = LYRSysTSFindOrCreateMetaObject(
            Class::kName, type, nullptr, LYRSysTSBaseUnknown::MetaObject(), Class::kExtended);
        return meta;
    }
    LYRSysTSMetaClass* GetMetaObject() const override { return MetaObject(); }

    static constexpr const char* kExtended = nullptr;
};

/// One that inherits its interface.
template <class Class, LYRSysTSTypeOfClass type>
class Working : public Described<Class, type>, public IWork {
public:
    HRESULT QueryInterface(const GUID& iid, void** out) override {
        return LYRSysTSBaseUnknown::QueryInterface(iid, out);
    }
    std::uint32_t AddRef() override { return LYRSysTSBaseUnknown::AddRef(); }
    std::uint32_t Release() override { return LYRSysTSBaseUnknown::Release(); }
    int Work() override { return 1; }
};

struct HandItself final : Working<HandItself, ImplementationClass> {
    static constexpr const char* kName = "HandItself";
};

struct HandBoa final : Working<HandBoa, ImplementationClass> {
    static constexpr const char* kName = "HandBoa";
};

struct HandTied final : Described<HandTied, ImplementationClass> {
    static constexpr const char* kName = "HandTied";
};
struct HandTie final : Tie<IWork, HandTied> {
    int Work() override { return 1; }
};

struct HandKeeper final : Described<HandKeeper, ImplementationClass> {
    static constexpr const char* kName = "HandKeeper";
};
struct HandKept final : Working<HandKept, KeptExtension> {
    static constexpr const char* kName = "HandKept";
    static constexpr const char* kExtended = "HandKeeper";
};

struct HandRequester final : Described<HandRequester, ImplementationClass> {
    static constexpr const char* kName = "HandRequester";
};
struct HandTransient final : Working<HandTransient, TransientExtension> {
    static constexpr const char* kName = "HandTransient";
    static constexpr const char* kExtended = "HandRequester";
};

[[maybe_unused]] const LYRSysTSMetaClass* const describedAtLoad[] = {HandKept::MetaObject(),
                                                                     HandTransient::MetaObject()};

template <class Class>
IUnknown* AnswerByBoa(LYRSysTSBaseUnknown* object, LYRSysTSBaseUnknown* (*create)()) {
    LYRSysTSBaseUnknown* const answer =
        LYRSysTSBOAInternal::CreateBOA(object, Class::MetaObject(), create);
    return static_cast<IWork*>(static_cast<Class*>(answer));
}

template <class Class>
LYRSysTSBaseUnknown* New() {
    return new Class;
}

}  // namespace

extern "C" {
// The object is known to be one of the class: nobody derives from it.
LYR_EXPORT IUnknown* LYRSysTSCreateIWorkHandItself(LYRSysTSBaseUnknown* object, unsigned char) {
    return static_cast<IWork*>(static_cast<HandItself*>(object));
}
LYR_EXPORT IUnknown* LYRSysTSCreateIWorkHandBoa(LYRSysTSBaseUnknown* object, unsigned char) {
    return AnswerByBoa<HandBoa>(object, nullptr);
}
LYR_EXPORT IUnknown* LYRSysTSCreateIWorkHandTied(LYRSysTSBaseUnknown* object, unsigned char) {
    return MakeTie<HandTie>(object);
}
LYR_EXPORT IUnknown* LYRSysTSCreateIWorkHandKept(LYRSysTSBaseUnknown* object, unsigned char) {
    return AnswerByBoa<HandKept>(object, New<HandKept>);
}
LYR_EXPORT IUnknown* LYRSysTSCreateIWorkHandTransient(LYRSysTSBaseUnknown* object, unsigned char) {
    return AnswerByBoa<HandTransient>(object, New<HandTransient>);
}

LYR_EXPORT void* fctLYRSysTSCreateHandItself(void*) {
    return static_cast<IUnknown*>(New<HandItself>());
}
LYR_EXPORT void* fctLYRSysTSCreateHandBoa(void*) {
    return static_cast<IUnknown*>(New<HandBoa>());
}
LYR_EXPORT void* fctLYRSysTSCreateHandTied(void*) {
    return static_cast<IUnknown*>(New<HandTied>());
}
LYR_EXPORT void* fctLYRSysTSCreateHandKeeper(void*) {
    return static_cast<IUnknown*>(New<HandKeeper>());
}
LYR_EXPORT void* fctLYRSysTSCreateHandRequester(void*) {
    return static_cast<IUnknown*>(New<HandRequester>());
}
}

#include "IGreeter.h"
#include "LYRComponentModel.h"
#include "Tie.h"

#include <cstdio>

namespace {

class Greeter final : public LYRSysTSBaseUnknown {
public:
    Greeter() : LYRSysTSBaseUnknown(1) {}  // 1: with a lock, for use by any number of threads

    static LYRSysTSMetaClass* MetaObject() {
        static LYRSysTSMetaClass* const meta = LYRSysTSFindOrCreateMetaObject(
            "Greeter", ImplementationClass, nullptr, LYRSysTSBaseUnknown::MetaObject(), nullptr);
        return meta;
    }
    LYRSysTSMetaClass* GetMetaObject() const override { return MetaObject(); }

    void Greet(const char* name) const { std::printf("%s, %s!\n", _greeting, name); }

private:
    const char* const _greeting = "Hello";
};

class GreeterTie final : public Tie<IGreeter, Greeter> {
public:
    void Greet(const char* name) const override { Impl().Greet(name); }
};

}  // namespace

extern "C" LYR_EXPORT IUnknown* LYRSysTSCreateIGreeterGreeter(LYRSysTSBaseUnknown* object,
                                                              unsigned char) {
    return MakeTie<GreeterTie>(object);
}

extern "C" LYR_EXPORT void* fctLYRSysTSCreateGreeter(void*) {
    return static_cast<IUnknown*>(new Greeter);
}

#pragma once

#include "TestSupport.h"

#include <thread>
#include <vector>

using Object = LYRSysTSBaseUnknown;
using Factory = LYRSysTSInterfaceFactory;
using Tie = LYRSysTSTIEInternal;
using Numbers = std::vector<std::intptr_t>;

/// An id that no made-up class id equals. `number` has one digit.
inline GUID Id(int number) {
    return G(0xA0000000U + static_cast<unsigned>(number));
}

inline LYRSysTSMetaClass* Class(const std::string& name, int type = PlainClass,
                                LYRSysTSMetaClass* base = nullptr, int id = 0) {
    const GUID clsid = Id(id);
    return LYRSysTSFindOrCreateMetaObject(name.c_str(), static_cast<LYRSysTSTypeOfClass>(type),
                                          id != 0 ? &clsid : nullptr, base, nullptr);
}
inline LYRSysTSMetaClassImpl* Impl(const char* name, LYRSysTSMetaClass* base = nullptr) {
    return dynamic_cast<LYRSysTSMetaClassImpl*>(Class(name, ImplementationClass, base));
}

/// Dictionary files, in use: the library LyrTestParts creates "Thing" and objects of the class
/// Id(1), and implements I0 to I2 of the class Gadget. It does not implement I3, since the leaf is
/// of another interface, I4, I5, since the extension is of another class, I6 and I7.
struct PartsFiles : TempDirectory {
    PartsFiles() {
        const std::string id = "{A000000", rest = "-0000-0000-0000-000000000000} ", ids = ".iidts";
        for (char i = '0'; i < '8'; ++i) Write(i + ids, id + i + rest + "I" + i);
        Write("a.clsidts", id + "1" + rest + "A LyrTestParts\n" + id + "2" + rest + "B\n");
        Write("a.dicts",
              "Gadget I0 LyrTestParts EXTENDED_BY GadgetExt\n"
              "Gadget I1 libLyrTestParts\nThing CreateInterface LyrTestParts\n"
              "Gadget I2 LyrTestParts ITFLEAF ILeaf\nGadget I3 LyrTestParts ITFLEAF I1\n"
              "Gadget I4 LyrTestParts\nGadget I5 LyrTestParts EXTENDED_BY OtherExt\n"
              "Gadget I6 LyrTestParts EXTENDED_BY Plain\nGadget I7 LyrNone EXTENDED_BY LostExt\n");
        UseDictionaryPath(path);
    }
};

/// An object of any class.
struct PlainObject : Object {
    PlainObject(bool safe, LYRSysTSMetaClass* meta) : Object(safe), metaObject(meta) {}
    LYRSysTSMetaClass* GetMetaObject() const override { return metaObject; }
    LYRSysTSMetaClass* const metaObject;
};

/// One that writes its end down. It answers no interface any more by then.
struct TestObject : PlainObject {
    using PlainObject::PlainObject;
    ~TestObject() override {
        // Not "Kept": the request would take its lock, and so wait for threads that still hold it.
        EXPECT_TRUE(IsAKindOf("Kept") || QueryInterface(IID_IUnknown, &out) == E_UNEXPECTED);
        ends += IsA();
    }
    // Gives other threads a chance between the steps of an operation.
    static std::uint32_t Yield(std::uint32_t count) { return std::this_thread::yield(), count; }
    static Object* MakeKept() { return new TestObject(true, Class("Kept", KeptExtension)); }
    static inline std::string ends;
    static inline void* out;
};

/// Tie_Construct in the form of CreateBOA.
inline Object* MakeTie(Object* object, LYRSysTSMetaClass* meta, Object* (*create)()) {
    Object* result = object;
    const HRESULT answer = Tie::Tie_Construct(object, meta, create, result);
    EXPECT_EQ(answer, result != nullptr ? S_OK : E_FAIL);
    return result;
}

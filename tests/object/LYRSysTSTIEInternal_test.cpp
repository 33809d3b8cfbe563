#include "../metaclass/TestClasses.h"

static Object* object;  // the one that the test is about

static Object* MakeTransient() {
    return new TestObject(true, Class("Transient"));
}
/// Asks for extensions of the object that it is made for, for one of its own class too.
static Object* MakeOuter() {
    static bool asks = false;
    if ((asks = !asks)) MakeTie(object, Class("Outer"), &MakeOuter);
    MakeTie(object, Class("Kept"), &TestObject::MakeKept);
    return new TestObject(true, Class("Outer"));
}

TEST(Construction, FindsOrMakesTheObjectThatImplementsTheClass) {
    auto* kept = Class("Kept", KeptExtension);
    auto* outer = Class("Outer", KeptExtension);
    auto* transient = Class("Transient", TransientExtension);
    auto* strange = new LYRSysTSMetaClassExt(nullptr, "Strange", nullptr, ImplementationClass);
    for (const auto construct : {&MakeTie, &LYRSysTSBOAInternal::CreateBOA}) {
        object = new TestObject(true, Impl("Gadget", Class("Base")));
        EXPECT_EQ(construct(object, Class("Base"), &MakeTransient), object);
        EXPECT_FALSE(construct(object, Class("Other"), &MakeTransient) ||
                     construct(object, strange, &MakeTransient));
        EXPECT_FALSE(construct(object, nullptr, &MakeTransient) ||
                     construct(nullptr, transient, &MakeTransient));
        EXPECT_EQ(construct(object, outer, []() -> Object* { return nullptr; }), nullptr);
        EXPECT_THROW(construct(object, outer, []() -> Object* { throw 1; }), int);
        std::thread([] { object->AddRef(); }).join();  // the lock is free
        Object* own = construct(object, outer, &MakeOuter);
        EXPECT_EQ(construct(object, outer, &MakeOuter), own);
        own = construct(object, kept, nullptr);  // known already, so nothing is to be made
        EXPECT_EQ(construct(own, outer, &MakeOuter), nullptr);
        own->QueryInterface(IID_IUnknown, &TestObject::out);
        EXPECT_EQ((Numbers{own->AddRef(), own->Release(), object->Release()}), (Numbers{4, 3, 2}));
        Object* a = construct(object, transient, &MakeTransient);
        Object* b = construct(object, transient, &MakeTransient);
        EXPECT_EQ((Numbers{a->AddRef(), object->AddRef(), a->Release()}), (Numbers{2, 4, 1}));
        EXPECT_EQ((Numbers{a->Release(), object->Release(), b->Release()}), (Numbers{0, 1, 0}));
        EXPECT_EQ(std::exchange(TestObject::ends, ""), "OuterTransientTransientKeptOuterGadget");
    }
}

/// A kept extension that has another one made while the object dies.
struct LastWill : PlainObject {
    LastWill() : PlainObject(true, Class("LastWill")) {}
    ~LastWill() override { MakeTie(object, Class("Kept"), &TestObject::MakeKept); }
};

/// One whose author has forgotten to say that it is an extension.
struct Forgetful : PlainObject {
    Forgetful() : PlainObject(true, Impl("Forgetful")) {}
    ~Forgetful() override { TestObject::ends += IsA(); }
};

TEST(Construction, RefusesAnInstanceOfAnotherKindAndDeletesWhatIsMadeInTheEnd) {
    object = new TestObject(true, Impl("Gadget"));
    const auto forgetful = []() -> Object* { return new Forgetful; };
    for (auto* meta : {Class("Kept", KeptExtension), Class("Transient", TransientExtension)}) {
        EXPECT_EQ(MakeTie(object, meta, forgetful), nullptr);
        const bool isKept = meta == Class("Kept");
        EXPECT_EQ(MakeTie(object, meta, isKept ? &MakeTransient : &TestObject::MakeKept), nullptr);
    }
    EXPECT_EQ(std::exchange(TestObject::ends, ""), "ForgetfulTransientForgetfulKept");
    const auto make = []() -> Object* { return new LastWill; };
    EXPECT_NE(MakeTie(object, Class("LastWill", KeptExtension), make), nullptr);
    EXPECT_EQ(object->Release(), 0U);
    EXPECT_EQ(TestObject::ends, "KeptGadget");
}

TEST(Tie, CountsWithItsObjectUntilTheLastRelease) {
    for (int bits = 0; bits < 4; ++bits) {
        object = new TestObject(bits % 2 != 0, Impl("Gadget"));
        Object* kept = MakeTie(object, Class("Kept", KeptExtension), &TestObject::MakeKept);
        Object *target = bits > 1 ? kept : object, *last = target;
        int count = 0;
        unsigned char deletes = 7;
        const auto release = [&] { return Tie::Tie_Release(count, target, deletes); };
        const auto add = [&] { return Tie::Tie_AddRef(count, target); };
        EXPECT_EQ((Numbers{add(), add(), release(), deletes, release(), deletes}),
                  (Numbers{1, 2, 1, 0, 0, 1}));
        EXPECT_EQ((Numbers{add(), release(), deletes, count}), (Numbers{0, 0, 0, 0}));
        target = last;
        EXPECT_EQ((Numbers{add(), object->Release(), release()}), (Numbers{1, 1, 0}));
        EXPECT_EQ(std::exchange(TestObject::ends, ""), "KeptGadget");
    }
}

TEST(Tie, TakesTheLockOfTheExtendedObjectFirst) {  // seen by the thread sanitizer
    object = new TestObject(true, Impl("Gadget"));
    Object* transient = MakeTie(object, Class("Transient", TransientExtension), &MakeTransient);
    Object* kept = MakeTie(object, Class("Kept", KeptExtension), &TestObject::MakeKept);
    const auto makeAsking = [] { return object->AddRef(), object->Release(), MakeTransient(); };
    object->AddRef(), MakeTie(kept, Class("Transient"), makeAsking)->Release();
    int count = 1;
    unsigned char deletes = 0;
    const auto release = [&] { return Tie::Tie_Release(count, transient, deletes); };
    Tie::Tie_AddRef(count, transient);
    object->Lock();  // as around a factory, which may use extensions
    Tie::Tie_AddRef(count, transient);
    kept->Lock(), kept->Unlock();
    object->Unlock();
    EXPECT_EQ((Numbers{release(), release(), release()}), (Numbers{2, 1, 0}));
    EXPECT_TRUE(deletes == 1 && transient == nullptr &&
                TestObject::ends == "TransientTransientKeptGadget");
}

TEST(ChainLink, TakesOneNextLinkThatHasNone) {
    LYRSysTSChainExtension a(nullptr), b(nullptr), c(nullptr);
    const auto hang = [](auto& link, auto* next) { return link.SetNextChainExtension(next); };
    EXPECT_EQ((Numbers{hang(a, &a), hang(a, &b), hang(a, &c), hang(c, &a)}),
              (Numbers{E_FAIL, S_OK, E_FAIL, E_FAIL}));
    EXPECT_TRUE(a.GetNextChainExtension() == &b && c.GetNextChainExtension() == nullptr);
}

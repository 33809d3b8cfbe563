#include "../metaclass/TestClasses.h"

#include <future>

static std::future<std::uint32_t> otherThread;

/// The count, as another thread sees it: it needs the lock.
static auto CountElsewhere(Object* object) {
    return std::async(std::launch::async, [=] { return object->AddRef(), object->Release(); });
}

static IUnknown* ThrowUnderTheLock(Object* object, unsigned char) {
    otherThread = CountElsewhere(object);
    EXPECT_EQ(otherThread.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
    EXPECT_EQ((object->AddRef(), object->Release()), 1U);
    throw 1;
}

TEST(BaseUnknown, AnswersWithItsOwnCountAndLeavesTheLockFree) {
    UseDictionaryPath("");
    Impl("Gadget")->_AddInterfaceFactory(Id(1), [](Object*, unsigned char safe) {
        return reinterpret_cast<IUnknown*>(safe * 16UL);
    });
    Impl("Gadget")->_AddInterfaceFactory(Id(2), &ThrowUnderTheLock);
    const auto expect = [](Object* asked, const GUID& iid, HRESULT result, IUnknown* answer) {
        void* out = &out;
        EXPECT_EQ(asked->QueryInterface(iid, &out), result);
        EXPECT_EQ(out, answer);
        EXPECT_EQ(CountElsewhere(asked).get(), answer != nullptr ? 2U : 1U);
        if (answer != nullptr) asked->Release();
    };
    for (const bool safe : {false, true}) {
        Object* object = new TestObject(safe, Impl("Gadget"));
        expect(object, IID_IUnknown, S_OK, object);
        expect(object, CLSID_LYRSysTSBaseUnknown, S_OK, object);
        expect(object, Id(1), safe ? S_OK : E_NOINTERFACE,
               reinterpret_cast<IUnknown*>(safe * 16UL));
        expect(object, Id(3), E_NOINTERFACE, nullptr);
        EXPECT_EQ(object->QueryInterface(IID_IUnknown, nullptr), E_FAIL);
        if (safe) {
            EXPECT_THROW(object->QueryInterface(Id(2), &TestObject::out), int);
            EXPECT_EQ(otherThread.get(), 1U);
            object->Lock();  // the end gives the hold back
        }
        EXPECT_EQ(object->Release(), 0U);
        object = new TestObject(safe, Class("Kept", KeptExtension));
        expect(object, IID_IUnknown, E_UNEXPECTED, nullptr);
        EXPECT_EQ(object->Release(), 0U);
    }
    EXPECT_EQ(TestObject::ends, "GadgetKeptGadgetKept");
    const PlainObject classless(false, nullptr);
    EXPECT_FALSE(classless.IsA() || classless.IsAKindOf("Gadget"));
}

TEST(RefCounter, DeletesItselfAtZero) {
    static int ends = 0;
    struct Counted : LYRSysTSRefCounterUnknown {
        ~Counted() override { ++ends; }
    };
    auto* counted = new Counted;
    EXPECT_EQ((Numbers{counted->AddRef(), counted->Release(), ends, counted->Release(), ends}),
              (Numbers{2, 1, 0, 0, 1}));
}

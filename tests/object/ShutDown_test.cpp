#include "../metaclass/TestClasses.h"

static void Must(bool holds) {
    if (!holds) std::_Exit(3);
}

struct Plain : Object {
    explicit Plain(LYRSysTSMetaClass* its) : Object(true), meta(its) {}
    LYRSysTSMetaClass* GetMetaObject() const override { return meta; }
    LYRSysTSMetaClass* const meta;
};

static Object* MakeKept() {
    return new Plain(Class("PlainKept", KeptExtension));
}
static Object* MakeGadget() {
    auto* const gadget = new Plain(Impl("PlainGadget"));
    MakeTie(gadget, Class("PlainKept", KeptExtension), &MakeKept);
    return gadget;
}

static void WorkAsEver() {
    Must(Add("A", "I", "Lib") == Find("A") && Impl("PlainGadget") == Class("PlainGadget"));
    Must(LYRSysTSDicoString::AddStringInDico("A") == Find("A")->className);
    Object* const gadget = MakeGadget();
    Must(gadget->QueryInterface(Id(3), &TestObject::out) == E_NOINTERFACE);
    Must(gadget->AddRef() == 2 && gadget->Release() == 1 && gadget->Release() == 0);
}

static void AnswerNothing() {
    Must(!Add("A", "I") && !Find("A") && !Find(Id(1), Id(1)) &&
         !Dictionary::GetInterfaceName(Id(1)));
    Must(!LYRSysTSCreateExternalObject("A", nullptr, nullptr));
    Must(LYRSysTSCreateInstance(Id(1), Id(1), &TestObject::out) == E_FAIL);
}

constexpr void (*kCleanUps[])() = {
    Dictionary::_DeleteDictionary,        LYRSysTSMetaClassBase::Destruct,
    LYRSysTSDicoIIDName::_FreeDictionary, LYRSysTSDicoCLSIDName::_FreeDictionary,
    LYRSysTSDicoString::_FreeDictionary,  LYRSysTSDicoGUID::_FreeDictionary};

/// Runs after the destructors of all static objects: the process-wide locks are destroyed.
static void (*afterTheLocks)() = [] {};
[[gnu::destructor]] static void RunAfterTheLocks() {
    afterTheLocks();
}
static Object* late;

static void OutliveTheDictionary() {
    Object *gadget = MakeGadget(), *classless = new Plain(nullptr);
    kCleanUps[0]();
    Must(Class("PlainGadget") != Class("PlainGadget") && gadget->AddRef() == 2);
    Must(gadget->QueryInterface(Id(2), &TestObject::out) == E_NOINTERFACE);
    Must(gadget->Release() == 1 && gadget->Release() == 0);
    for (const auto cleanUp : kCleanUps) cleanUp(), cleanUp(), AnswerNothing();
    Must(classless->QueryInterface(IID_IUnknown, &TestObject::out) == E_NOINTERFACE);
    Must(classless->Release() == 0 && LYRSysTSDicoString::AddStringInDico("A"));
}

static void CleanUpTheWrongWayRound() {
    for (std::size_t i = 12; i-- > 0;) kCleanUps[i % 6]();
    AnswerNothing();
}

static void ReleaseAfterMain() {
    late = MakeGadget();
    late->AddRef();
    static const struct AtExit {
        ~AtExit() { Must(late->Release() == 1), WorkAsEver(); }
    } atExit;
    afterTheLocks = [] { Must(late->Release() == 0), WorkAsEver(); };
}

static void LeaveAThreadAtWork() {
    static std::atomic<int> turns = 0;
    std::thread([] {
        for (;; ++turns) WorkAsEver();
    }).detach();
    while (turns < 100) std::this_thread::yield();
}

TEST(ShutDown, EndsWellInAnyOrder) {
    UseDictionaryPath("");
    for (const auto end : {&OutliveTheDictionary, &CleanUpTheWrongWayRound, &ReleaseAfterMain,
                           &LeaveAThreadAtWork}) {
        EXPECT_EXIT((WorkAsEver(), end(), std::exit(0)), testing::ExitedWithCode(0), "");
    }
}

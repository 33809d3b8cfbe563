#include "../metaclass/TestClasses.h"

static void Must(bool holds) {
    if (!holds) std::_Exit(3);
}

static Object* MakeGadget() {
    auto* const gadget = new PlainObject(true, Impl("Gadget"));
    const auto make = []() -> Object* { return new PlainObject(true, Class("Kept")); };
    MakeTie(gadget, Class("Kept", KeptExtension), make);
    return gadget;
}

static void WorkAsEver() {
    Must(Add("A", "I", "Lib") == Find("A") && Impl("Gadget") == Class("Gadget"));
    Must(LYRSysTSDicoString::AddStringInDico("A") == Find("A")->className);
    Must(Dictionary::AddDictionaryTS(Id(1), Id(1), Creator(1), nullptr) == Find(Id(1), Id(1)));
    Object* const gadget = MakeGadget();
    Must(gadget->QueryInterface(Id(3), &TestObject::out) == E_NOINTERFACE);
    Must(gadget->AddRef() == 2 && gadget->Release() == 1 && gadget->Release() == 0);
}

constexpr void (*kCleanUps[])() = {
    Dictionary::_DeleteDictionary,        LYRSysTSMetaClassBase::Destruct,
    LYRSysTSDicoIIDName::_FreeDictionary, LYRSysTSDicoCLSIDName::_FreeDictionary,
    LYRSysTSDicoString::_FreeDictionary,  LYRSysTSDicoGUID::_FreeDictionary};

static void CleanUpAndAnswerNothing(void (*cleanUp)()) {
    const GUID id = Id(1);
    cleanUp();
    Must(!Add("A", "I") && !Find("A") && !Find(id, id) && !Dictionary::GetInterfaceName(id));
    Must(!Dictionary::AddDictionaryTS(id, id, Creator(1), nullptr));
    Must(!Dictionary::AddDictionaryTS(&id, &id, "A", "I", nullptr, Creator(1), 1));
    Must(!LYRSysTSCreateExternalObject("A", nullptr, nullptr));
    Must(LYRSysTSCreateInstance(id, id, &TestObject::out) == E_FAIL);
}

static void CleanUpAroundAnObject() {
    Object *gadget = MakeGadget(), *classless = new PlainObject(true, nullptr);
    kCleanUps[0]();
    Must(Class("Gadget") != Class("Gadget") && gadget->AddRef() == 2);
    Must(gadget->QueryInterface(Id(2), &TestObject::out) == E_NOINTERFACE);
    Must(gadget->Release() == 1 && gadget->Release() == 0);
    for (int i = 0; i < 12; ++i) CleanUpAndAnswerNothing(kCleanUps[i / 2]);
    Must(classless->QueryInterface(IID_IUnknown, &TestObject::out) == E_NOINTERFACE);
    Must(classless->Release() == 0 && LYRSysTSDicoString::AddStringInDico("A"));
}

static void CleanUpTheWrongWayRound() {
    for (int i = 6; i-- > 0;) kCleanUps[i]();
}

/// Released after the destructors of all static objects: the process-wide locks are destroyed.
static Object* late;
[[gnu::destructor]] static void ReleaseLate() {
    if (late != nullptr) Must(late->Release() == 0), WorkAsEver();
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
    Dictionary::_DeleteDictionary();  // closes nothing before the first use
    void (*const ends[])() = {CleanUpAroundAnObject, CleanUpTheWrongWayRound, LeaveAThreadAtWork,
                              [] { late = MakeGadget(); }};
    for (void (*const end)() : ends) {
        EXPECT_EXIT((WorkAsEver(), end(), std::exit(0)), testing::ExitedWithCode(0), "^$");
    }
}

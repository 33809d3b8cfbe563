// long_lives [count]: makes so many objects (ten million unless said otherwise) and some requests
// of each, in two threads, with all that an application repeats: memory must not grow.
#include "../examples/support/Ref.h"
#include "../examples/support/Tie.h"
#include "TestSupport.h"

#include <malloc.h>
#include <thread>

template <LYRSysTSTypeOfClass type>
struct Made : LYRSysTSBaseUnknown {
    explicit Made(bool safe = true) : LYRSysTSBaseUnknown(safe) {}
    static LYRSysTSMetaClass* MetaObject() {
        static LYRSysTSMetaClass* const meta = LYRSysTSFindOrCreateMetaObject(
            ("Made" + std::to_string(type)).c_str(), type, nullptr, nullptr, "Made1");
        return meta;
    }
    LYRSysTSMetaClass* GetMetaObject() const override { return MetaObject(); }
};
using Component = Made<ImplementationClass>;

template <LYRSysTSTypeOfClass type>
static IUnknown* MakeAnswer(LYRSysTSBaseUnknown* object, unsigned char) {
    return MakeTie<Tie<IUnknown, Made<type>>>(object);
}

/// One object and its requests, beside additions and queries that repeat themselves.
static bool Live(unsigned turn) {
    const std::string name = "Name" + std::to_string(turn % 1000);
    const GUID id = G(turn % 1000, 1);
    auto* const object = new Component(turn % 2 == 0);
    bool asDefined = !Query<IUnknown>(object, G(9));
    for (const unsigned type : {1U, 4U, 5U}) {
        asDefined &= Query<IUnknown>(object, G(type, 2)) != nullptr;
    }
    asDefined &= object->Release() == 0 && Add(name.c_str(), "I", "Lib") == Find(name.c_str()) &&
                 !Add(name.c_str(), "I", "Other") && !Find(id, id) &&
                 !Find((name + "No").c_str()) &&
                 !LYRSysTSCreateExternalObject(name.c_str(), nullptr, nullptr);
    return asDefined && LYRSysTSDicoString::AddStringInDico(name.c_str()) != nullptr &&
           LYRSysTSDicoGUID::AddGUIDInDico(&id) != nullptr;
}

static void Run(unsigned count) {
    const auto half = [=] {
        for (unsigned turn = 0; turn < count / 2; ++turn) {
            if (!Live(turn)) std::abort();
        }
    };
    std::thread other(half);
    half();
    other.join();
}

/// What the heap and the process hold, in bytes.
static std::array<std::size_t, 2> Held() {
    std::size_t pages = 0;
    std::ifstream("/proc/self/statm").ignore(99, ' ') >> pages;
    return {::mallinfo2().uordblks, pages * 4096};
}

int main(int argc, char** argv) {
    const unsigned count = argc > 1 ? static_cast<unsigned>(std::atol(argv[1])) : 10'000'000;
    UseDictionaryPath("");
    stderr = std::fopen("/dev/null", "w");  // the words of all the refusals
    auto* const meta = dynamic_cast<LYRSysTSMetaClassImpl*>(Component::MetaObject());
    meta->_AddInterfaceFactory(G(1, 2), &MakeAnswer<ImplementationClass>);
    meta->_AddInterfaceFactory(G(4, 2), &MakeAnswer<KeptExtension>);
    meta->_AddInterfaceFactory(G(5, 2), &MakeAnswer<TransientExtension>);
    Run(50'000);
    const auto before = Held();
    Run(count);
    const auto after = Held();
    std::printf("%u objects: heap %zu -> %zu bytes, resident %zu -> %zu bytes\n", count, before[0],
                after[0], before[1], after[1]);
    return after[0] > before[0] + 8192 || after[1] > before[1] + (1 << 20) ? 1 : 0;
}

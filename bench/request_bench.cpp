// A request that an object's class has answered before, found or refused, and the giving back of
// what was found, for classes with 4, 12 and 64 interfaces that are asked for in random order.
//
// Against what a program would do instead: a dynamic_cast from one interface of an object to
// another, which counts nothing; a hand-written QueryInterface that compares one id after the
// other; and GObject's check of an interface with a reference.

#include "Bench.h"
#include "Component.h"

#include <array>
#include <atomic>
#include <utility>

#if defined(LYR_BENCH_GLIB)
#include <glib-object.h>
#endif

/// An interface as headers declare them. It has external linkage: the names of such types are
/// compared, where those of local types are told apart by their addresses.
template <std::size_t number>
struct Itf {
    virtual ~Itf() = default;
};

namespace {

constexpr std::size_t kMostInterfaces = bench::kMostInterfaces;

/// Which of `interfaces` is asked for next.
class Order {
public:
    explicit Order(std::size_t interfaces) {
        std::mt19937 random(2);
        for (auto& number : _numbers) number = static_cast<unsigned char>(random() % interfaces);
    }
    std::size_t Next() { return _numbers[_next++ % _numbers.size()]; }

private:
    std::array<unsigned char, 65536> _numbers;
    std::size_t _next = 0;
};

/// Measures `ask`, which is given numbers from `first` on and tells whether it was answered.
template <typename Ask>
void Measure(benchmark::State& state, std::size_t interfaces, bool known, Ask ask) {
    const std::size_t first = known ? 0 : kMostInterfaces;
    for (std::size_t i = 0; i < interfaces; ++i) ask(first + i);
    Order order(interfaces);
    benchmark::IterationCount answered = 0;
    for (auto _ : state) {
        if (ask(first + order.Next())) ++answered;
    }
    bench::Expect(state, answered == (known ? state.iterations() : 0));
}

/// The interfaces of a bench::Component by hand.
template <std::size_t interfaces>
class IfChain final : public IUnknown {
public:
    HRESULT QueryInterface(const GUID& iid, void** out) override {
        *out = Answers(iid, std::make_index_sequence<interfaces>()) ? this : nullptr;
        if (*out == nullptr) return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    std::uint32_t AddRef() override { return _count.fetch_add(1, std::memory_order_relaxed) + 1; }
    std::uint32_t Release() override {
        const std::uint32_t count = _count.fetch_sub(1, std::memory_order_acq_rel) - 1;
        if (count == 0) delete this;
        return count;
    }

private:
    template <std::size_t... numbers>
    static bool Answers(const GUID& iid, std::index_sequence<numbers...>) {
        const GUID* const known = bench::ids.data();
        return ((iid == known[numbers]) || ...);
    }

    std::atomic<std::uint32_t> _count = 1;
};

void AskIUnknown(benchmark::State& state, std::size_t interfaces, bool known, IUnknown* object) {
    benchmark::DoNotOptimize(object);
    Measure(state, interfaces, known, [=](std::size_t number) {
        void* answer;
        object->QueryInterface(bench::ids[number], &answer);
        if (answer == nullptr) return false;
        static_cast<IUnknown*>(answer)->Release();
        return true;
    });
    object->Release();
}

template <typename Numbers>
struct Wide;
template <std::size_t... numbers>
struct Wide<std::index_sequence<numbers...>> final : Itf<numbers>... {};

template <std::size_t number>
bool Cast(Itf<0>* from) {
    auto* to = dynamic_cast<Itf<number>*>(from);
    benchmark::DoNotOptimize(to);
    return to != nullptr;
}

template <std::size_t... numbers>
constexpr auto MakeCasts(std::index_sequence<numbers...>) {
    return std::array{&Cast<numbers>...};
}

template <std::size_t interfaces>
void DynamicCast(benchmark::State& state, bool known) {
    static constexpr auto kCasts = MakeCasts(std::make_index_sequence<2 * kMostInterfaces>());
    const auto object = std::make_unique<Wide<std::make_index_sequence<interfaces>>>();
    Itf<0>* from = object.get();
    benchmark::DoNotOptimize(from);
    Measure(state, interfaces, known, [=](std::size_t number) { return kCasts[number](from); });
}

#if defined(LYR_BENCH_GLIB)
GType InterfaceType(std::size_t number) {
    static const auto types = [] {
        std::array<GType, 2 * kMostInterfaces> made{};
        for (std::size_t i = 0; i < made.size(); ++i) {
            made[i] = g_type_register_static_simple(
                G_TYPE_INTERFACE, bench::Name(i, 3, "I").c_str(), sizeof(GTypeInterface), nullptr,
                0, nullptr, G_TYPE_FLAG_NONE);
        }
        return made;
    }();
    return types[number];
}

template <std::size_t interfaces>
GType ClassType() {
    static const GType type = [] {
        const GType made = g_type_register_static_simple(
            G_TYPE_OBJECT, bench::Name(interfaces, 3).c_str(), sizeof(GObjectClass), nullptr,
            sizeof(GObject), nullptr, G_TYPE_FLAG_NONE);
        const GInterfaceInfo info{};
        for (std::size_t i = 0; i < interfaces; ++i) {
            g_type_add_interface_static(made, InterfaceType(i), &info);
        }
        return made;
    }();
    return type;
}

template <std::size_t interfaces>
void AskGObject(benchmark::State& state, bool known) {
    auto* object = static_cast<GObject*>(g_object_new(ClassType<interfaces>(), nullptr));
    benchmark::DoNotOptimize(object);
    Measure(state, interfaces, known, [=](std::size_t number) {
        if (!G_TYPE_CHECK_INSTANCE_TYPE(object, InterfaceType(number))) return false;
        g_object_ref(object);
        benchmark::ClobberMemory();
        g_object_unref(object);
        return true;
    });
    g_object_unref(object);
}
#endif

template <std::size_t interfaces>
void RegisterSize(bench::Company company, bool known) {
    const auto add = [=](const std::string& who, auto run) {
        const std::string what = known ? "Request/" : "Refusal/";
        bench::Register(company, what + who + "/" + std::to_string(interfaces), run, {1, 2, 4});
    };
    using benchmark::State;
    add("own thread-safe", [=](State& state) {
        AskIUnknown(state, interfaces, known, new bench::Component<interfaces>(1));
    });
    add("own without lock", [=](State& state) {
        AskIUnknown(state, interfaces, known, new bench::Component<interfaces>(0));
    });
#if defined(LYR_BENCH_GLIB)
    add("GObject", [=](State& state) { AskGObject<interfaces>(state, known); });
#endif
    add("if-chain",
        [=](State& state) { AskIUnknown(state, interfaces, known, new IfChain<interfaces>); });
    add("dynamic_cast", [=](State& state) { DynamicCast<interfaces>(state, known); });
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    ::setenv("LYRDictionaryPath", "", 1);  // there are no files to read
    for (const auto company : bench::kCompanies) {
        for (const bool known : {true, false}) {
            RegisterSize<4>(company, known);
            RegisterSize<12>(company, known);
            RegisterSize<64>(company, known);
        }
    }
    benchmark::RunSpecifiedBenchmarks();
}

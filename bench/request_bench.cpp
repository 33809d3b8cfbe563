// A request that an object has answered before, against asking the compiler's own type information:
// a dynamic_cast from one interface of an object to another.

#include "LYRComponentModel.h"

#include <algorithm>
#include <array>
#include <benchmark/benchmark.h>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr std::size_t kInterfaces = 12;

using Ids = std::array<GUID, kInterfaces>;

/// The ids of the interfaces, scattered as real ones are.
const Ids& InterfaceIds() {
    static const Ids ids = [] {
        std::mt19937 random(1);
        Ids made;
        for (GUID& id : made) {
            id = {static_cast<std::uint32_t>(random()),
                  static_cast<std::uint16_t>(random()),
                  static_cast<std::uint16_t>(random()),
                  {}};
            for (auto& byte : id.Data4) byte = static_cast<std::uint8_t>(random());
        }
        return made;
    }();
    return ids;
}

/// The order in which they are asked for.
std::vector<std::size_t> RandomOrder() {
    std::vector<std::size_t> order(4096);
    std::mt19937 random(2);
    std::generate(order.begin(), order.end(), [&] { return random() % kInterfaces; });
    return order;
}

class Component final : public LYRSysTSBaseUnknown {
public:
    using LYRSysTSBaseUnknown::LYRSysTSBaseUnknown;

    static LYRSysTSMetaClass* MetaObject() {
        static LYRSysTSMetaClass* const meta = [] {
            auto* made = LYRSysTSFindOrCreateMetaObject("Component", ImplementationClass, nullptr,
                                                        nullptr, nullptr);
            for (std::size_t i = 0; i < kInterfaces; ++i) {
                const std::string name = "IComponent" + std::to_string(i);
                LYRSysTSDictionary::AddDictionaryTS(made->GetClassId(), &InterfaceIds()[i],
                                                    "Component", name.c_str(), "Bench", Answer, 0);
            }
            return made;
        }();
        return meta;
    }
    LYRSysTSMetaClass* GetMetaObject() const override { return MetaObject(); }

private:
    // The object itself answers, so that the request alone is measured.
    static IUnknown* Answer(LYRSysTSBaseUnknown* object, unsigned char) { return object; }
};

void CachedRequest(benchmark::State& state, unsigned char threadSafe) {
    auto* const object = new Component(threadSafe);
    const auto order = RandomOrder();
    std::size_t next = 0;
    for (auto _ : state) {
        void* answer = nullptr;
        object->QueryInterface(InterfaceIds()[order[next++ % order.size()]], &answer);
        benchmark::DoNotOptimize(answer);
        object->Release();
    }
    object->Release();
}

struct IFirst {
    virtual ~IFirst() = default;
};
struct ISecond {
    virtual ~ISecond() = default;
};
struct Both final : IFirst, ISecond {};

void DynamicCast(benchmark::State& state) {
    const std::unique_ptr<IFirst> first = std::make_unique<Both>();
    IFirst* asked = first.get();
    for (auto _ : state) {
        benchmark::DoNotOptimize(asked);
        benchmark::DoNotOptimize(dynamic_cast<ISecond*>(asked));
    }
}

BENCHMARK(DynamicCast);
BENCHMARK_CAPTURE(CachedRequest, thread_safe, 1);
BENCHMARK_CAPTURE(CachedRequest, without_lock, 0);

}  // namespace

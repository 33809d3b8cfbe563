#pragma once

#include "Bench.h"
#include "Names.h"

#include <map>
#include <mutex>

namespace bench {

/// What a store of `size` entries is asked, in random order: for each of them, or for as much that
/// it does not have.
template <typename Questions>
const Questions& Asked(std::size_t size, bool known) {
    static std::mutex mutex;
    static std::map<std::pair<std::size_t, bool>, Questions> asked;
    const std::lock_guard<std::mutex> guard(mutex);
    return asked.try_emplace({size, known}, RandomOrder(size), known).first->second;
}

/// A store that grows in the course of the program, since the library's are process-wide. `Store`
/// has Add and Find, which answers with a pointer; `Questions` are made of numbers, and [i] is one
/// of them.
template <typename Store, typename Questions>
class Growth {
public:
    /// Registers the adding of entries up to `size`, which what is asked at that size has to
    /// follow.
    static void RegisterAdd(const std::string& name, std::size_t size) {
        const auto run = [=](benchmark::State& state) {
            std::vector<std::size_t> numbers(size - _size);
            std::iota(numbers.begin(), numbers.end(), _size);
            const Questions added(numbers, true);
            for (auto _ : state) {
                for (std::size_t i = 0; i < numbers.size(); ++i) _store.Add(added[i]);
            }
            _size = size;
            CountEach(state, numbers.size());
        };
        RegisterOnce(name + "/" + std::to_string(size), run);
    }

    /// Registers the finding of all that is known, or the looking for as much that is not.
    static void RegisterFind(const std::string& name, std::size_t size, bool known) {
        const auto run = [=](benchmark::State& state) {
            const Questions& questions = Asked<Questions>(size, known);
            const auto threads = static_cast<std::size_t>(state.threads());
            std::size_t next = size / threads * static_cast<std::size_t>(state.thread_index());
            benchmark::IterationCount found = 0;
            for (auto _ : state) {
                if (_store.Find(questions[next]) != nullptr) ++found;
                if (++next == size) next = 0;
            }
            Expect(state, _size == size && found == (known ? state.iterations() : 0));
        };
        Register(Company::kThreads, name + "/" + std::to_string(size), run, {1, 2, 4});
    }

private:
    static inline Store _store;
    static inline std::size_t _size = 0;
};

}  // namespace bench

// HashTable<unsigned, void*> against std::unordered_map, and the crit-bit trie against std::map,
// in one run: insert n keys, then find every one of them (the trie also iterates).
#include <benchmark/benchmark.h>

#include <cstdint>
#include <map>
#include <random>
#include <unordered_map>
#include <vector>

#include "cls/cls_PTrie.h"
#include "cow/cow_HashTable.h"
#include "zul_BenchMain.h"

namespace {

std::vector<unsigned int> Keys(int n)
{
    std::mt19937 rng(42);
    std::vector<unsigned int> keys(static_cast<size_t>(n));
    for (unsigned int& k : keys)
        k = static_cast<unsigned int>(rng());
    return keys;
}

void* AsAddress(unsigned int k)
{
    return reinterpret_cast<void*>(static_cast<uintptr_t>(k));
}

// The table is given one bucket per key, as a caller that knows its size would do; the
// unordered_map anchor reserves the same.
void hash_Insert(benchmark::State& state)
{
    const std::vector<unsigned int> keys = Keys(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        HashTable<unsigned int, void*> t(static_cast<unsigned int>(keys.size()));
        for (unsigned int k : keys)
            t.Insert(k, AsAddress(k));
        benchmark::DoNotOptimize(t);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void std_HashInsert(benchmark::State& state)
{
    const std::vector<unsigned int> keys = Keys(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        std::unordered_map<unsigned int, void*> m;
        m.reserve(keys.size());
        for (unsigned int k : keys)
            m[k] = AsAddress(k);
        benchmark::DoNotOptimize(m);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void hash_Find(benchmark::State& state)
{
    const std::vector<unsigned int> keys = Keys(static_cast<int>(state.range(0)));
    HashTable<unsigned int, void*> t(static_cast<unsigned int>(keys.size()));
    for (unsigned int k : keys)
        t.Insert(k, AsAddress(k));
    for (auto _ : state) {
        uintptr_t sum = 0;
        void* out = nullptr;
        for (unsigned int k : keys)
            if (t.LookUp(k, out))
                sum += reinterpret_cast<uintptr_t>(out);
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void std_HashFind(benchmark::State& state)
{
    const std::vector<unsigned int> keys = Keys(static_cast<int>(state.range(0)));
    std::unordered_map<unsigned int, void*> m;
    m.reserve(keys.size());
    for (unsigned int k : keys)
        m[k] = AsAddress(k);
    for (auto _ : state) {
        uintptr_t sum = 0;
        for (unsigned int k : keys) {
            const auto it = m.find(k);
            if (it != m.end())
                sum += reinterpret_cast<uintptr_t>(it->second);
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

typedef cls_PTrie<int, int, 1> Trie;

void trie_Insert(benchmark::State& state)
{
    const std::vector<unsigned int> keys = Keys(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        Trie t;
        for (unsigned int k : keys)
            t.Insert(static_cast<int>(k), static_cast<int>(k));
        benchmark::DoNotOptimize(t);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void std_MapInsert(benchmark::State& state)
{
    const std::vector<unsigned int> keys = Keys(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        std::map<int, int> m;
        for (unsigned int k : keys)
            m[static_cast<int>(k)] = static_cast<int>(k);
        benchmark::DoNotOptimize(m);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void trie_Find(benchmark::State& state)
{
    const std::vector<unsigned int> keys = Keys(static_cast<int>(state.range(0)));
    Trie t;
    for (unsigned int k : keys)
        t.Insert(static_cast<int>(k), static_cast<int>(k));
    for (auto _ : state) {
        long long sum = 0;
        for (unsigned int k : keys)
            sum += *t.ConstGetPtr(static_cast<int>(k));
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void std_MapFind(benchmark::State& state)
{
    const std::vector<unsigned int> keys = Keys(static_cast<int>(state.range(0)));
    std::map<int, int> m;
    for (unsigned int k : keys)
        m[static_cast<int>(k)] = static_cast<int>(k);
    for (auto _ : state) {
        long long sum = 0;
        for (unsigned int k : keys)
            sum += m.find(static_cast<int>(k))->second;
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void trie_Iterate(benchmark::State& state)
{
    const std::vector<unsigned int> keys = Keys(static_cast<int>(state.range(0)));
    Trie t;
    for (unsigned int k : keys)
        t.Insert(static_cast<int>(k), static_cast<int>(k));
    for (auto _ : state) {
        long long sum = 0;
        cls_PTrieIter<int, int, 1> it(t);
        for (it.First(); !it.IsDone(); it.Next())
            sum += it.Value();
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void std_MapIterate(benchmark::State& state)
{
    const std::vector<unsigned int> keys = Keys(static_cast<int>(state.range(0)));
    std::map<int, int> m;
    for (unsigned int k : keys)
        m[static_cast<int>(k)] = static_cast<int>(k);
    for (auto _ : state) {
        long long sum = 0;
        for (const auto& kv : m)
            sum += kv.second;
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

}  // namespace

BENCHMARK(hash_Insert)->Arg(100000);
BENCHMARK(std_HashInsert)->Arg(100000);
BENCHMARK(hash_Find)->Arg(100000);
BENCHMARK(std_HashFind)->Arg(100000);
BENCHMARK(trie_Insert)->Arg(100000);
BENCHMARK(std_MapInsert)->Arg(100000);
BENCHMARK(trie_Find)->Arg(100000);
BENCHMARK(std_MapFind)->Arg(100000);
BENCHMARK(trie_Iterate)->Arg(100000);
BENCHMARK(std_MapIterate)->Arg(100000);

int main(int argc, char** argv)
{
    return zul_BenchMain(argc, argv);
}

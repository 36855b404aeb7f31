// cow_Map against std::map and std::unordered_map in one run: insert, find, iterate, and copy a
// big map then write one entry.
#include <benchmark/benchmark.h>

#include <map>
#include <random>
#include <string>
#include <unordered_map>
#include <vector>

#include "cow/cow_Btree.h"
#include "cow/cow_Map.h"
#include "zul_BenchMain.h"

namespace {

std::vector<int> Keys(int n)
{
    std::mt19937 rng(42);
    std::vector<int> keys(static_cast<size_t>(n));
    for (int& k : keys)
        k = static_cast<int>(rng());
    return keys;
}

template <class M>
void Fill(M& m, const std::vector<int>& keys)
{
    for (int k : keys)
        m[k] = k;
}

void cow_Insert(benchmark::State& state)
{
    const std::vector<int> keys = Keys(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        cow_Map<int, int> m;
        for (int k : keys)
            m.Insert(k, k);
        benchmark::DoNotOptimize(m);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

template <class M>
void std_Insert(benchmark::State& state)
{
    const std::vector<int> keys = Keys(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        M m;
        Fill(m, keys);
        benchmark::DoNotOptimize(m);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void cow_Find(benchmark::State& state)
{
    const std::vector<int> keys = Keys(static_cast<int>(state.range(0)));
    cow_Map<int, int> m;
    for (int k : keys)
        m.Insert(k, k);
    for (auto _ : state) {
        long long sum = 0;
        for (int k : keys)
            sum += m.ConstGet(k);
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

template <class M>
void std_Find(benchmark::State& state)
{
    const std::vector<int> keys = Keys(static_cast<int>(state.range(0)));
    M m;
    Fill(m, keys);
    for (auto _ : state) {
        long long sum = 0;
        for (int k : keys)
            sum += m.find(k)->second;
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void cow_Iterate(benchmark::State& state)
{
    cow_Map<int, int> m;
    for (int k : Keys(static_cast<int>(state.range(0))))
        m.Insert(k, k);
    for (auto _ : state) {
        long long sum = 0;
        cow_ConstMapIterator<int, int> it(m);
        for (it.First(); it.NotDone(); it.Next())
            sum += it.Value();
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

template <class M>
void std_Iterate(benchmark::State& state)
{
    M m;
    Fill(m, Keys(static_cast<int>(state.range(0))));
    for (auto _ : state) {
        long long sum = 0;
        for (const auto& kv : m)
            sum += kv.second;
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void cow_CopyThenWriteOne(benchmark::State& state)
{
    const std::vector<int> keys = Keys(static_cast<int>(state.range(0)));
    cow_Map<int, int> m;
    for (int k : keys)
        m.Insert(k, k);
    for (auto _ : state) {
        cow_Map<int, int> copy(m);
        copy.Get(keys[keys.size() / 2]) = -1;
        benchmark::DoNotOptimize(copy);
    }
}

template <class M>
void std_CopyThenWriteOne(benchmark::State& state)
{
    const std::vector<int> keys = Keys(static_cast<int>(state.range(0)));
    M m;
    Fill(m, keys);
    for (auto _ : state) {
        M copy(m);
        copy[keys[keys.size() / 2]] = -1;
        benchmark::DoNotOptimize(copy);
    }
}

void cow_StringInsertFind(benchmark::State& state)
{
    std::vector<cow_String> keys;
    for (int k : Keys(static_cast<int>(state.range(0))))
        keys.push_back(cow_String(("key_" + std::to_string(k)).c_str()));
    for (auto _ : state) {
        cow_Map<cow_String, int> m;
        for (size_t i = 0; i < keys.size(); ++i)
            m.Insert(keys[i], static_cast<int>(i));
        long long sum = 0;
        for (const cow_String& k : keys)
            sum += m.ConstGet(k);
        benchmark::DoNotOptimize(sum);
    }
}

void std_StringInsertFind(benchmark::State& state)
{
    std::vector<std::string> keys;
    for (int k : Keys(static_cast<int>(state.range(0))))
        keys.push_back("key_" + std::to_string(k));
    for (auto _ : state) {
        std::map<std::string, int> m;
        for (size_t i = 0; i < keys.size(); ++i)
            m[keys[i]] = static_cast<int>(i);
        long long sum = 0;
        for (const std::string& k : keys)
            sum += m.find(k)->second;
        benchmark::DoNotOptimize(sum);
    }
}

void btree_Insert(benchmark::State& state)
{
    const std::vector<int> keys = Keys(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        cow_Btree<int, int> t;
        for (int k : keys)
            t.InsertUnlessMember(k, k);
        benchmark::DoNotOptimize(t);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void btree_Find(benchmark::State& state)
{
    const std::vector<int> keys = Keys(static_cast<int>(state.range(0)));
    cow_Btree<int, int> t;
    for (int k : keys)
        t.InsertUnlessMember(k, k);
    for (auto _ : state) {
        long long sum = 0;
        for (int k : keys)
            sum += t.ConstFind(k)->value;
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void btree_Iterate(benchmark::State& state)
{
    cow_Btree<int, int> t;
    for (int k : Keys(static_cast<int>(state.range(0))))
        t.InsertUnlessMember(k, k);
    for (auto _ : state) {
        long long sum = 0;
        cow_BtreeIterator<int, int> it(t);
        for (it.First(); it.NotDone(); it.Next())
            sum += it.Value();
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

typedef std::map<int, int> StdMap;
typedef std::unordered_map<int, int> StdHash;

}  // namespace

BENCHMARK(cow_Insert)->Arg(100000);
BENCHMARK_TEMPLATE(std_Insert, StdMap)->Arg(100000);
BENCHMARK_TEMPLATE(std_Insert, StdHash)->Arg(100000);
BENCHMARK(cow_Find)->Arg(100000);
BENCHMARK_TEMPLATE(std_Find, StdMap)->Arg(100000);
BENCHMARK_TEMPLATE(std_Find, StdHash)->Arg(100000);
BENCHMARK(cow_Iterate)->Arg(100000);
BENCHMARK_TEMPLATE(std_Iterate, StdMap)->Arg(100000);
BENCHMARK_TEMPLATE(std_Iterate, StdHash)->Arg(100000);
BENCHMARK(cow_CopyThenWriteOne)->Arg(1000000);
BENCHMARK_TEMPLATE(std_CopyThenWriteOne, StdMap)->Arg(1000000)->Iterations(3);
BENCHMARK_TEMPLATE(std_CopyThenWriteOne, StdHash)->Arg(1000000)->Iterations(3);
BENCHMARK(btree_Insert)->Arg(100000);
BENCHMARK(btree_Find)->Arg(100000);
BENCHMARK(btree_Iterate)->Arg(100000);
BENCHMARK(cow_StringInsertFind)->Arg(20000);
BENCHMARK(std_StringInsertFind)->Arg(20000);

int main(int argc, char** argv)
{
    return zul_BenchMain(argc, argv);
}

// cow_1DArrayList and cow_List against std::vector, measured in one run.
// Read the figures as ratios of a cow_ row to the std_ row with the same argument.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <random>
#include <vector>

#include "cow/cow_1DArrayList.h"
#include "cow/cow_List.h"
#include "zul_BenchMain.h"

namespace {

template <class T>
cow_1DArrayList<T> MakeCow(int n)
{
    cow_1DArrayList<T> l;
    for (int i = 0; i < n; ++i)
        l.Append(static_cast<T>(i));
    return l;
}

template <class T>
std::vector<T> MakeStd(int n)
{
    std::vector<T> v;
    for (int i = 0; i < n; ++i)
        v.push_back(static_cast<T>(i));
    return v;
}

std::vector<int> RandomIndices(int n)
{
    std::mt19937 rng(12345);
    std::uniform_int_distribution<int> pick(0, n - 1);
    std::vector<int> idx(static_cast<size_t>(n));
    for (int& i : idx)
        i = pick(rng);
    return idx;
}

template <class T>
void cow_Append(benchmark::State& state)
{
    const int n = static_cast<int>(state.range(0));
    for (auto _ : state) {
        cow_1DArrayList<T> l = MakeCow<T>(n);
        benchmark::DoNotOptimize(l);
    }
    state.SetItemsProcessed(state.iterations() * n);
}

template <class T>
void std_Append(benchmark::State& state)
{
    const int n = static_cast<int>(state.range(0));
    for (auto _ : state) {
        std::vector<T> v = MakeStd<T>(n);
        benchmark::DoNotOptimize(v);
    }
    state.SetItemsProcessed(state.iterations() * n);
}

template <class T>
void cow_SequentialRead(benchmark::State& state)
{
    const int n = static_cast<int>(state.range(0));
    const cow_1DArrayList<T> l = MakeCow<T>(n);
    for (auto _ : state) {
        T sum = 0;
        for (int i = 0; i < n; ++i)
            sum += l[i];
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * n);
}

// The same sum, block by block (ConstRun).
template <class T>
void cow_BlockRead(benchmark::State& state)
{
    const int n = static_cast<int>(state.range(0));
    const cow_1DArrayList<T> l = MakeCow<T>(n);
    for (auto _ : state) {
        T sum = 0;
        for (int i = 0, run = 0; i < n; i += run)
            for (const T *p = l.ConstRun(i, run), *e = p + run; p != e; ++p)
                sum += *p;
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * n);
}

template <class T>
void std_SequentialRead(benchmark::State& state)
{
    const int n = static_cast<int>(state.range(0));
    const std::vector<T> v = MakeStd<T>(n);
    for (auto _ : state) {
        T sum = 0;
        for (int i = 0; i < n; ++i)
            sum += v[static_cast<size_t>(i)];
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * n);
}

template <class T>
void cow_RandomRead(benchmark::State& state)
{
    const int n = static_cast<int>(state.range(0));
    const cow_1DArrayList<T> l = MakeCow<T>(n);
    const std::vector<int> idx = RandomIndices(n);
    for (auto _ : state) {
        T sum = 0;
        for (int i : idx)
            sum += l[i];
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * n);
}

template <class T>
void std_RandomRead(benchmark::State& state)
{
    const int n = static_cast<int>(state.range(0));
    const std::vector<T> v = MakeStd<T>(n);
    const std::vector<int> idx = RandomIndices(n);
    for (auto _ : state) {
        T sum = 0;
        for (int i : idx)
            sum += v[static_cast<size_t>(i)];
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * n);
}

// Copy a big container, then change one element of the copy.
void cow_CopyThenWriteOne(benchmark::State& state)
{
    const int n = static_cast<int>(state.range(0));
    const cow_1DArrayList<int> l = MakeCow<int>(n);
    for (auto _ : state) {
        cow_1DArrayList<int> copy(l);
        copy.Get(n / 2) = -1;
        benchmark::DoNotOptimize(copy);
    }
}

void std_CopyThenWriteOne(benchmark::State& state)
{
    const int n = static_cast<int>(state.range(0));
    const std::vector<int> v = MakeStd<int>(n);
    for (auto _ : state) {
        std::vector<int> copy(v);
        copy[static_cast<size_t>(n / 2)] = -1;
        benchmark::DoNotOptimize(copy);
    }
}

void cow_ListPrepend(benchmark::State& state)
{
    const int n = static_cast<int>(state.range(0));
    for (auto _ : state) {
        cow_List<int> l;
        for (int i = 0; i < n; ++i)
            l.Prepend(i);
        benchmark::DoNotOptimize(l);
    }
    state.SetItemsProcessed(state.iterations() * n);
}

void std_VectorInsertFront(benchmark::State& state)
{
    const int n = static_cast<int>(state.range(0));
    for (auto _ : state) {
        std::vector<int> v;
        for (int i = 0; i < n; ++i)
            v.insert(v.begin(), i);
        benchmark::DoNotOptimize(v);
    }
    state.SetItemsProcessed(state.iterations() * n);
}

}  // namespace

BENCHMARK_TEMPLATE(cow_Append, int)->Arg(1 << 16);
BENCHMARK_TEMPLATE(std_Append, int)->Arg(1 << 16);
BENCHMARK_TEMPLATE(cow_Append, double)->Arg(1 << 16);
BENCHMARK_TEMPLATE(std_Append, double)->Arg(1 << 16);
BENCHMARK_TEMPLATE(cow_SequentialRead, int)->Arg(1 << 16);
BENCHMARK_TEMPLATE(cow_BlockRead, int)->Arg(1 << 16);
BENCHMARK_TEMPLATE(std_SequentialRead, int)->Arg(1 << 16);
BENCHMARK_TEMPLATE(cow_SequentialRead, double)->Arg(1 << 16);
BENCHMARK_TEMPLATE(cow_BlockRead, double)->Arg(1 << 16);
BENCHMARK_TEMPLATE(std_SequentialRead, double)->Arg(1 << 16);
BENCHMARK_TEMPLATE(cow_RandomRead, int)->Arg(1 << 16);
BENCHMARK_TEMPLATE(std_RandomRead, int)->Arg(1 << 16);
BENCHMARK_TEMPLATE(cow_RandomRead, double)->Arg(1 << 16);
BENCHMARK_TEMPLATE(std_RandomRead, double)->Arg(1 << 16);
BENCHMARK(cow_CopyThenWriteOne)->Arg(1000000);
BENCHMARK(std_CopyThenWriteOne)->Arg(1000000);
BENCHMARK(cow_ListPrepend)->Arg(1 << 14);
BENCHMARK(std_VectorInsertFront)->Arg(1 << 14);

int main(int argc, char** argv)
{
    return zul_BenchMain(argc, argv);
}

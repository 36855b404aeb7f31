// atr_String against std::string, measured in one run. Each atr_ benchmark has a std_ twin with
// the same argument; after the usual table the program prints the ratio atr/std of their real
// times (below 1 means atr_String is faster).
#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include "atr/atr_String.h"
#include "omi/omi_CoreUtils.h"
#include "zul_BenchMain.h"

namespace {

std::string MakeText(int n)
{
    std::string t;
    t.reserve(static_cast<size_t>(n));
    for (int i = 0; i < n; ++i)
        t += static_cast<char>('a' + (i * 7) % 26);
    return t;
}

// Copying a string: atr_String shares its representation, std::string copies the characters.
void atr_Copy(benchmark::State& state)
{
    const atr_String s(MakeText(static_cast<int>(state.range(0))).c_str());
    for (auto _ : state) {
        atr_String c(s);
        benchmark::DoNotOptimize(c.c_str());
    }
}

void std_Copy(benchmark::State& state)
{
    const std::string s = MakeText(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        std::string c(s);
        benchmark::DoNotOptimize(c.data());
    }
}

// Building a string by appending short pieces.
void atr_AppendLoop(benchmark::State& state)
{
    const int n = static_cast<int>(state.range(0));
    for (auto _ : state) {
        atr_String s;
        for (int i = 0; i < n; ++i)
            s.append("word ", 5);
        benchmark::DoNotOptimize(s.c_str());
    }
    state.SetItemsProcessed(state.iterations() * n);
}

void std_AppendLoop(benchmark::State& state)
{
    const int n = static_cast<int>(state.range(0));
    for (auto _ : state) {
        std::string s;
        for (int i = 0; i < n; ++i)
            s.append("word ", 5);
        benchmark::DoNotOptimize(s.data());
    }
    state.SetItemsProcessed(state.iterations() * n);
}

// Appending single characters.
void atr_AppendChar(benchmark::State& state)
{
    const int n = static_cast<int>(state.range(0));
    for (auto _ : state) {
        atr_String s;
        for (int i = 0; i < n; ++i)
            s += 'x';
        benchmark::DoNotOptimize(s.c_str());
    }
    state.SetItemsProcessed(state.iterations() * n);
}

void std_AppendChar(benchmark::State& state)
{
    const int n = static_cast<int>(state.range(0));
    for (auto _ : state) {
        std::string s;
        for (int i = 0; i < n; ++i)
            s += 'x';
        benchmark::DoNotOptimize(s.data());
    }
    state.SetItemsProcessed(state.iterations() * n);
}

// Searching a long text for a needle near its end.
void atr_Find(benchmark::State& state)
{
    std::string text = MakeText(static_cast<int>(state.range(0)));
    text += "needle";
    const atr_String s(text.c_str());
    for (auto _ : state)
        benchmark::DoNotOptimize(s.Find("needle"));
    state.SetBytesProcessed(state.iterations() * state.range(0));
}

void std_Find(benchmark::State& state)
{
    std::string s = MakeText(static_cast<int>(state.range(0)));
    s += "needle";
    for (auto _ : state)
        benchmark::DoNotOptimize(s.find("needle"));
    state.SetBytesProcessed(state.iterations() * state.range(0));
}

// Writing one character into a copy: atr_String detaches (one copy), std::string has one already.
void atr_CopyThenWrite(benchmark::State& state)
{
    const atr_String s(MakeText(static_cast<int>(state.range(0))).c_str());
    for (auto _ : state) {
        atr_String c(s);
        c[0] = 'Z';
        benchmark::DoNotOptimize(c.c_str());
    }
}

void std_CopyThenWrite(benchmark::State& state)
{
    const std::string s = MakeText(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        std::string c(s);
        c[0] = 'Z';
        benchmark::DoNotOptimize(c.data());
    }
}

BENCHMARK(atr_Copy)->Arg(8)->Arg(64)->Arg(4096);
BENCHMARK(std_Copy)->Arg(8)->Arg(64)->Arg(4096);
BENCHMARK(atr_AppendLoop)->Arg(16)->Arg(4096);
BENCHMARK(std_AppendLoop)->Arg(16)->Arg(4096);
BENCHMARK(atr_AppendChar)->Arg(4096);
BENCHMARK(std_AppendChar)->Arg(4096);
BENCHMARK(atr_Find)->Arg(64)->Arg(65536);
BENCHMARK(std_Find)->Arg(64)->Arg(65536);
BENCHMARK(atr_CopyThenWrite)->Arg(64)->Arg(4096);
BENCHMARK(std_CopyThenWrite)->Arg(64)->Arg(4096);

// The console table, then one line per atr_/std_ pair with the ratio of their real times.
class RatioReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override
    {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& r : runs) {
            if (r.run_type == Run::RT_Iteration && !r.error_occurred)
                m_times[r.benchmark_name()] = r.GetAdjustedRealTime();
        }
    }
    void Finalize() override
    {
        ConsoleReporter::Finalize();
        std::printf("\n%-28s %12s %12s %8s\n", "atr_String / std::string", "atr", "std", "ratio");
        for (const auto& entry : m_times) {
            const std::string& name = entry.first;
            if (name.compare(0, 4, "atr_") != 0)
                continue;
            const auto twin = m_times.find("std_" + name.substr(4));
            if (twin == m_times.end() || twin->second <= 0)
                continue;
            std::printf("%-28s %12.1f %12.1f %8.2f\n", name.substr(4).c_str(), entry.second, twin->second,
                        entry.second / twin->second);
        }
    }

private:
    std::map<std::string, double> m_times;
};

}  // namespace

int main(int argc, char** argv)
{
    zul_BenchSteadyHeap();
    int count = 0;
    UTI_CoreUtils_initialize(count);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    UTI_CoreUtils_finalize(count);
    return 0;
}

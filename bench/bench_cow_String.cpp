// cow_String against std::string in one run: copy, compare, append.
#include <benchmark/benchmark.h>

#include <string>

#include "cow/cow_String.h"
#include "zul_BenchMain.h"

namespace {

std::string Text(int n, char last)
{
    std::string s(static_cast<size_t>(n), 'x');
    s.back() = last;
    return s;
}

void cow_Copy(benchmark::State& state)
{
    const cow_String s(Text(static_cast<int>(state.range(0)), 'a').c_str());
    for (auto _ : state) {
        cow_String copy(s);
        benchmark::DoNotOptimize(copy);
    }
}

void std_Copy(benchmark::State& state)
{
    const std::string s = Text(static_cast<int>(state.range(0)), 'a');
    for (auto _ : state) {
        std::string copy(s);
        benchmark::DoNotOptimize(copy);
    }
}

// Two strings that differ only in their last character.
void cow_Compare(benchmark::State& state)
{
    const int n = static_cast<int>(state.range(0));
    const cow_String a(Text(n, 'a').c_str()), b(Text(n, 'b').c_str());
    for (auto _ : state) {
        bool less = a < b;
        benchmark::DoNotOptimize(less);
    }
}

void std_Compare(benchmark::State& state)
{
    const int n = static_cast<int>(state.range(0));
    const std::string a = Text(n, 'a'), b = Text(n, 'b');
    for (auto _ : state) {
        bool less = a < b;
        benchmark::DoNotOptimize(less);
    }
}

void cow_Append(benchmark::State& state)
{
    const int n = static_cast<int>(state.range(0));
    for (auto _ : state) {
        cow_String s;
        for (int i = 0; i < n; ++i)
            s.append("word ", 5);
        benchmark::DoNotOptimize(s);
    }
}

void std_Append(benchmark::State& state)
{
    const int n = static_cast<int>(state.range(0));
    for (auto _ : state) {
        std::string s;
        for (int i = 0; i < n; ++i)
            s.append("word ", 5);
        benchmark::DoNotOptimize(s);
    }
}

}  // namespace

BENCHMARK(cow_Copy)->Arg(8)->Arg(256);
BENCHMARK(std_Copy)->Arg(8)->Arg(256);
BENCHMARK(cow_Compare)->Arg(8)->Arg(256);
BENCHMARK(std_Compare)->Arg(8)->Arg(256);
BENCHMARK(cow_Append)->Arg(1000);
BENCHMARK(std_Append)->Arg(1000);

int main(int argc, char** argv)
{
    return zul_BenchMain(argc, argv);
}

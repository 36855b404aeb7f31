// The regular-expression layer against direct PCRE2 calls in one run: rgx_match on a cached
// pattern against pcre2_match with match data prepared once, with and without the JIT (and
// against pcre2_jit_match, the JIT's own entry); a
// lookup that has to go through the cache's map (two patterns alternating); and a whole
// substitution against the same walk written on PCRE2 directly.
#include <benchmark/benchmark.h>

#include <cstring>
#include <string>

#include <pcre2.h>

#include "rgx/rgx_ReCompileCache.h"
#include "rgx/rgx_funcs.h"
#include "zul_BenchMain.h"

namespace {

const char kPattern[] = "(\\w+)@(\\w+)\\.com";
const char kSubject[] = "please write to someone@example.com before friday";

struct Direct {
    explicit Direct(bool jit)
    {
        int error;
        PCRE2_SIZE offset;
        code = pcre2_compile(reinterpret_cast<PCRE2_SPTR>(kPattern), PCRE2_ZERO_TERMINATED, 0, &error, &offset, nullptr);
        if (jit)
            pcre2_jit_compile(code, PCRE2_JIT_COMPLETE);
        data = pcre2_match_data_create(10, nullptr);
    }
    ~Direct()
    {
        pcre2_match_data_free(data);
        pcre2_code_free(code);
    }
    pcre2_code* code;
    pcre2_match_data* data;
};

// direct:1 calls the JIT's own entry, pcre2_jit_match, which skips the engine's checks: the call
// rgx makes for JIT-compiled patterns that do not read UTF-8.
void pcre2_Match(benchmark::State& state)
{
    Direct d(state.range(0) != 0);
    const auto match = state.range(1) != 0 ? &pcre2_jit_match : &pcre2_match;
    const size_t length = std::strlen(kSubject);
    for (auto _ : state) {
        int rc = match(d.code, reinterpret_cast<PCRE2_SPTR>(kSubject), length, 0, 0, d.data, nullptr);
        benchmark::DoNotOptimize(rc);
        benchmark::DoNotOptimize(pcre2_get_ovector_pointer(d.data)[2]);
    }
}

void rgx_Match(benchmark::State& state)
{
    rgx_ReCompileCache::Instance().SetJit(state.range(0) != 0);
    const cow_String pattern(kPattern);
    const cow_String subject(kSubject);
    for (auto _ : state) {
        rgx_ReIterator m = rgx_match(pattern, subject);
        benchmark::DoNotOptimize(m.Start(1));
    }
    rgx_ReCompileCache::Instance().SetJit(true);
}

// Alternating patterns miss the last-pattern shortcut and go through the map each time.
void rgx_MatchAlternating(benchmark::State& state)
{
    rgx_ReCompileCache::Instance().SetJit(state.range(0) != 0);
    const cow_String patterns[2] = {kPattern, "(\\w+)@(\\w+)\\.(?:com)"};
    const cow_String subject(kSubject);
    int i = 0;
    for (auto _ : state) {
        rgx_ReIterator m = rgx_match(patterns[i], subject);
        i ^= 1;
        benchmark::DoNotOptimize(m.Start(1));
    }
    rgx_ReCompileCache::Instance().SetJit(true);
}

std::string Text()
{
    std::string text;
    for (int i = 0; i < 200; ++i)
        text += "word" + std::to_string(i) + ", ";
    return text;
}

// Replaces every ", " of a 200-item list: the library against the same walk on PCRE2 and
// std::string.
void rgx_Subn(benchmark::State& state)
{
    const cow_String subject(Text().c_str());
    for (auto _ : state) {
        cow_String out = rgx_subn(",\\s*", ";", subject, 1 << 30);
        benchmark::DoNotOptimize(out.c_str());
    }
}

void pcre2_Subn(benchmark::State& state)
{
    const std::string subject = Text();
    int error;
    PCRE2_SIZE offset;
    pcre2_code* code = pcre2_compile(reinterpret_cast<PCRE2_SPTR>(",\\s*"), PCRE2_ZERO_TERMINATED, 0, &error, &offset, nullptr);
    pcre2_jit_compile(code, PCRE2_JIT_COMPLETE);
    pcre2_match_data* data = pcre2_match_data_create(10, nullptr);
    for (auto _ : state) {
        std::string out;
        size_t pos = 0;
        while (pcre2_match(code, reinterpret_cast<PCRE2_SPTR>(subject.data()) + pos, subject.size() - pos, 0, 0, data,
                           nullptr) > 0) {
            const PCRE2_SIZE* v = pcre2_get_ovector_pointer(data);
            out.append(subject, pos, v[0]);
            out += ';';
            pos += v[1] > 0 ? v[1] : 1;
        }
        out.append(subject, pos, std::string::npos);
        benchmark::DoNotOptimize(out.data());
    }
    pcre2_match_data_free(data);
    pcre2_code_free(code);
}

}  // namespace

BENCHMARK(pcre2_Match)->Args({1, 0})->Args({0, 0})->Args({1, 1})->ArgNames({"jit", "direct"});
BENCHMARK(rgx_Match)->Arg(1)->Arg(0)->ArgName("jit");
BENCHMARK(rgx_MatchAlternating)->Arg(1)->Arg(0)->ArgName("jit");
BENCHMARK(pcre2_Subn);
BENCHMARK(rgx_Subn);

int main(int argc, char** argv) { return zul_BenchMain(argc, argv); }

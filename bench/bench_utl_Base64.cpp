// Base64 encoding and decoding of the same bytes against OpenSSL's EVP_EncodeBlock and
// EVP_DecodeBlock (no line breaks; the library's alphabet differs from OpenSSL's in one character,
// which costs nothing). Caller buffers on both sides, plus the cow_String entry points, which
// allocate their result.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <vector>

#include <openssl/evp.h>

#include "utl/utl_Base64.h"
#include "zul_BenchMain.h"

namespace {

const std::vector<unsigned char>& Input(size_t n)
{
    static std::vector<std::vector<unsigned char>> made(32);
    size_t slot = 0;
    while ((size_t(1) << slot) < n)
        ++slot;
    if (made[slot].size() != n)
        made[slot] = zul_BenchRandomBytes(n);
    return made[slot];
}

void utl_Encode(benchmark::State& state)
{
    const std::vector<unsigned char>& in = Input(static_cast<size_t>(state.range(0)));
    std::vector<char> out(utl_base64EncodedLength(in.size(), false) + 1);
    for (auto _ : state) {
        benchmark::DoNotOptimize(utl_base64EncodeTo(in.data(), in.size(), false, out.data()));
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * int64_t(in.size()));
}

void ssl_Encode(benchmark::State& state)
{
    const std::vector<unsigned char>& in = Input(static_cast<size_t>(state.range(0)));
    std::vector<unsigned char> out(utl_base64EncodedLength(in.size(), false) + 1);
    for (auto _ : state) {
        benchmark::DoNotOptimize(EVP_EncodeBlock(out.data(), in.data(), static_cast<int>(in.size())));
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * int64_t(in.size()));
}

void utl_Decode(benchmark::State& state)
{
    const std::vector<unsigned char>& in = Input(static_cast<size_t>(state.range(0)));
    std::vector<char> text(utl_base64EncodedLength(in.size(), false));
    utl_base64EncodeTo(in.data(), in.size(), false, text.data());
    std::vector<unsigned char> out(text.size() / 4 * 3 + 1);
    for (auto _ : state) {
        benchmark::DoNotOptimize(utl_base64DecodeTo(text.data(), text.size(), false, out.data()));
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * int64_t(in.size()));
}

void ssl_Decode(benchmark::State& state)
{
    const std::vector<unsigned char>& in = Input(static_cast<size_t>(state.range(0)));
    std::vector<unsigned char> text(utl_base64EncodedLength(in.size(), false) + 1);
    EVP_EncodeBlock(text.data(), in.data(), static_cast<int>(in.size()));
    std::vector<unsigned char> out(text.size() / 4 * 3 + 1);
    for (auto _ : state) {
        benchmark::DoNotOptimize(EVP_DecodeBlock(out.data(), text.data(), static_cast<int>(text.size() - 1)));
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * int64_t(in.size()));
}

// The string entry points: the same coding plus the allocation of the result.
void utl_EncodeString(benchmark::State& state)
{
    const std::vector<unsigned char>& in = Input(static_cast<size_t>(state.range(0)));
    cow_String data;
    std::copy(in.begin(), in.end(), data.GetWriteBuffer(static_cast<int>(in.size())));
    data.SetLength(static_cast<int>(in.size()));
    for (auto _ : state)
        benchmark::DoNotOptimize(utl_base64Encode(data, true));
    state.SetBytesProcessed(state.iterations() * int64_t(in.size()));
}

void utl_DecodeString(benchmark::State& state)
{
    const std::vector<unsigned char>& in = Input(static_cast<size_t>(state.range(0)));
    cow_String data;
    std::copy(in.begin(), in.end(), data.GetWriteBuffer(static_cast<int>(in.size())));
    data.SetLength(static_cast<int>(in.size()));
    cow_String text = utl_base64Encode(data, true);
    for (auto _ : state)
        benchmark::DoNotOptimize(utl_base64Decode(text, true));
    state.SetBytesProcessed(state.iterations() * int64_t(in.size()));
}

}  // namespace

BENCHMARK(utl_Encode)->Arg(57)->Arg(4096)->Arg(1 << 20);
BENCHMARK(ssl_Encode)->Arg(57)->Arg(4096)->Arg(1 << 20);
BENCHMARK(utl_Decode)->Arg(57)->Arg(4096)->Arg(1 << 20);
BENCHMARK(ssl_Decode)->Arg(57)->Arg(4096)->Arg(1 << 20);
BENCHMARK(utl_EncodeString)->Arg(4096)->Arg(1 << 20);
BENCHMARK(utl_DecodeString)->Arg(4096)->Arg(1 << 20);

int main(int argc, char** argv)
{
    return zul_BenchMain(argc, argv);
}

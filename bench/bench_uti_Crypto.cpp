// MD5 and Blowfish ECB against OpenSSL's own on the same bytes, and the rotor cipher's
// throughput; each pair in one run. OpenSSL's low-level MD5 and BF_* calls are the anchors.
#include <benchmark/benchmark.h>

#include <cstring>
#include <openssl/blowfish.h>
#include <openssl/md5.h>
#include <vector>

#include "uti/uti_Blowfish.h"
#include "uti/uti_MD5.h"
#include "uti/uti_Rotor.h"
#include "zul_BenchMain.h"

namespace {

const int kBytes = 1 << 20;
const char kKey[] = "a Blowfish key of some length";

const std::vector<unsigned char>& Data()
{
    static const std::vector<unsigned char> data = zul_BenchRandomBytes(kBytes);
    return data;
}

// The same bytes as a string (built through the write buffer so zero bytes stay).
const cow_String& Text()
{
    static const cow_String text = [] {
        cow_String s;
        std::memcpy(s.GetWriteBuffer(kBytes), Data().data(), kBytes);
        s.SetLength(kBytes);
        return s;
    }();
    return text;
}

void uti_MD5_1MiB(benchmark::State& state)
{
    const std::vector<unsigned char>& data = Data();
    for (auto _ : state) {
        uti_MD5 md5;
        md5.Append(data.data(), kBytes);
        benchmark::DoNotOptimize(md5.Digest());
    }
    state.SetBytesProcessed(state.iterations() * int64_t(kBytes));
}

void OpenSSL_MD5_1MiB(benchmark::State& state)
{
    const std::vector<unsigned char>& data = Data();
    unsigned char digest[MD5_DIGEST_LENGTH];
    for (auto _ : state) {
        MD5(data.data(), kBytes, digest);
        benchmark::DoNotOptimize(digest);
    }
    state.SetBytesProcessed(state.iterations() * int64_t(kBytes));
}

// Argument 0 enciphers, 1 deciphers.
void uti_Blowfish_1MiB(benchmark::State& state)
{
    uti_Blowfish bf;
    bf.Set_Passwd(kKey);
    const cow_String& text = Text();
    const bool decrypt = state.range(0) != 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(decrypt ? bf.Decrypt(text) : bf.Encrypt(text));
    state.SetBytesProcessed(state.iterations() * int64_t(kBytes));
}

void OpenSSL_BF_ecb_1MiB(benchmark::State& state)
{
    BF_KEY key;
    BF_set_key(&key, static_cast<int>(std::strlen(kKey)), reinterpret_cast<const unsigned char*>(kKey));
    const std::vector<unsigned char>& data = Data();
    std::vector<unsigned char> out(kBytes);
    const int direction = state.range(0) != 0 ? BF_DECRYPT : BF_ENCRYPT;
    for (auto _ : state) {
        for (int i = 0; i < kBytes; i += 8)
            BF_ecb_encrypt(data.data() + i, out.data() + i, &key, direction);
        benchmark::DoNotOptimize(out.data());
    }
    state.SetBytesProcessed(state.iterations() * int64_t(kBytes));
}

void uti_Rotor_Encrypt_1MiB(benchmark::State& state)
{
    uti_Rotor rotor(kKey);
    const cow_String& text = Text();
    for (auto _ : state)
        benchmark::DoNotOptimize(rotor.Encrypt(text));
    state.SetBytesProcessed(state.iterations() * int64_t(kBytes));
}

void uti_Rotor_Encrypt_64B(benchmark::State& state)
{
    // Short strings: the rotor build (6 shuffles of 256 entries) dominates.
    uti_Rotor rotor(kKey);
    const cow_String text = Text().Substr(0, 64);
    for (auto _ : state)
        benchmark::DoNotOptimize(rotor.Encrypt(text));
    state.SetBytesProcessed(state.iterations() * int64_t(64));
}

}  // namespace

BENCHMARK(uti_MD5_1MiB);
BENCHMARK(OpenSSL_MD5_1MiB);
BENCHMARK(uti_Blowfish_1MiB)->Arg(0);
BENCHMARK(OpenSSL_BF_ecb_1MiB)->Arg(0);
BENCHMARK(uti_Blowfish_1MiB)->Arg(1);
BENCHMARK(OpenSSL_BF_ecb_1MiB)->Arg(1);
BENCHMARK(uti_Rotor_Encrypt_1MiB);
BENCHMARK(uti_Rotor_Encrypt_64B);

int main(int argc, char** argv) { return zul_BenchMain(argc, argv); }

// The container checksum against zlib's crc32, a container save against a plain copy of the
// same bytes, and binary-stream writes per item against one array write; each pair in one run.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <fcntl.h>
#include <string>
#include <unistd.h>
#include <vector>
#include <zlib.h>

#include "utl/utl_BinStream.h"
#include "utl/utl_MultisectionFile.h"
#include "zul_BenchMain.h"

namespace {

namespace fs = std::filesystem;

const size_t kCrcBytes = size_t(64) << 20;

void utl_Crc64MiB(benchmark::State& state)
{
    static const std::vector<unsigned char> data = zul_BenchRandomBytes(kCrcBytes, 7);
    for (auto _ : state)
        benchmark::DoNotOptimize(utl_MultisectionCrc(data.data(), data.size()));
    state.SetBytesProcessed(state.iterations() * int64_t(kCrcBytes));
}

void zlib_Crc64MiB(benchmark::State& state)
{
    static const std::vector<unsigned char> data = zul_BenchRandomBytes(kCrcBytes, 7);
    for (auto _ : state)
        benchmark::DoNotOptimize(crc32(0, data.data(), static_cast<uInt>(data.size())));
    state.SetBytesProcessed(state.iterations() * int64_t(kCrcBytes));
}

fs::path WorkDir()
{
    static const fs::path dir = [] {
        fs::path d = fs::temp_directory_path() / ("zul_bench_" + std::to_string(getpid()));
        fs::create_directories(d);
        return d;
    }();
    return dir;
}

const int kSections = 64;
const int kSectionBytes = 1 << 20;

// A container of 64 sections of 1 MiB, made once.
std::string Container()
{
    static const std::string path = [] {
        const std::string p = (WorkDir() / "bench.msf").string();
        const std::vector<unsigned char> data = zul_BenchRandomBytes(kSectionBytes, 7);
        utl_MultisectionFile f(p.c_str(), utl_FileAccessWrite);
        for (int i = 0; i < kSections; ++i)
            f.setSectionData(("s" + std::to_string(i)).c_str(), data.data(), kSectionBytes);
        f.saveChanges();
        return p;
    }();
    return path;
}

void utl_SaveContainer64MiB(benchmark::State& state)
{
    const std::string path = Container();
    for (auto _ : state) {
        utl_MultisectionFile f(path.c_str(), utl_FileAccessUpdate);
        f.saveChanges();
    }
    state.SetBytesProcessed(state.iterations() * int64_t(kSections) * kSectionBytes);
}

void plain_Copy64MiB(benchmark::State& state)
{
    const std::string from = Container();
    const std::string to = (WorkDir() / "copy.bin").string();
    std::vector<char> buffer(size_t(1) << 20);
    for (auto _ : state) {
        FILE* in = std::fopen(from.c_str(), "rb");
        FILE* out = std::fopen(to.c_str(), "wb");
        size_t n;
        while ((n = std::fread(buffer.data(), 1, buffer.size(), in)) > 0)
            std::fwrite(buffer.data(), 1, n, out);
        std::fflush(out);
        fsync(fileno(out));
        std::fclose(out);
        std::fclose(in);
    }
    state.SetBytesProcessed(state.iterations() * int64_t(kSections) * kSectionBytes);
}

const int kInts = 1000000;

void utl_BinWriteIntEach(benchmark::State& state)
{
    const std::string path = (WorkDir() / "ints.bin").string();
    for (auto _ : state) {
        const int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        utl_BinOStream s(fd, omi_Swapper::Native);
        for (int i = 0; i < kInts; ++i)
            s.WriteInt(i);
        close(fd);
    }
}

void utl_BinWriteIntArray(benchmark::State& state)
{
    const std::string path = (WorkDir() / "ints.bin").string();
    std::vector<int> values(kInts);
    for (int i = 0; i < kInts; ++i)
        values[size_t(i)] = i;
    for (auto _ : state) {
        const int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        utl_BinOStream s(fd, omi_Swapper::Native);
        s.WriteIntArray(values.data(), kInts);
        close(fd);
    }
}

}  // namespace

BENCHMARK(utl_Crc64MiB)->Unit(benchmark::kMillisecond);
BENCHMARK(zlib_Crc64MiB)->Unit(benchmark::kMillisecond);
BENCHMARK(utl_SaveContainer64MiB)->Unit(benchmark::kMillisecond);
BENCHMARK(plain_Copy64MiB)->Unit(benchmark::kMillisecond);
BENCHMARK(utl_BinWriteIntEach)->Unit(benchmark::kMillisecond)->Iterations(2);
BENCHMARK(utl_BinWriteIntArray)->Unit(benchmark::kMillisecond);

int main(int argc, char** argv)
{
    const int rc = zul_BenchMain(argc, argv);
    std::error_code ec;
    fs::remove_all(WorkDir(), ec);
    return rc;
}

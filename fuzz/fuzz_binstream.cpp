// utl_BinIStream on arbitrary bytes. The first byte gives the number of reads, the next ones
// what each read is; the rest is the stream. Every value must equal the little-endian bytes at
// the reader's position, a string must be its length's bytes, a negative length must raise
// utl_BinStreamBadLength and a short stream utl_BinStreamEOF; nothing else may come out.
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

#include "utl/utl_BinStream.h"
#include "zul_FuzzSupport.h"

namespace {

using zul_fuzz::Cow;
using zul_fuzz::Str;

// The stream as the reader should see it.
struct Model {
    const uint8_t* data;
    size_t size;
    size_t at = 0;

    size_t Left() const { return size - at; }
    template <class T>
    T Take()
    {
        T v;
        std::memcpy(&v, data + at, sizeof(T));
        at += sizeof(T);
        return v;
    }
};

template <class T, class Read>
bool Scalar(Model& model, Read read)
{
    if (model.Left() < sizeof(T)) {
        bool eof = false;
        try {
            read();
        } catch (const utl_BinStreamEOF&) {
            eof = true;
        }
        ZUL_FUZZ_CHECK(eof);
        return false;
    }
    const T expected = model.Take<T>();
    const T got = read();
    ZUL_FUZZ_CHECK(std::memcmp(&got, &expected, sizeof(T)) == 0);
    return true;
}

template <class T>
bool Array(const utl_BinIStream& in, Model& model, int n, void (utl_BinIStream::*read)(T*, int) const)
{
    std::vector<T> buffer(static_cast<size_t>(n) + 1);
    const size_t bytes = static_cast<size_t>(n) * sizeof(T);
    if (model.Left() < bytes) {
        bool eof = false;
        try {
            (in.*read)(buffer.data(), n);
        } catch (const utl_BinStreamEOF&) {
            eof = true;
        }
        ZUL_FUZZ_CHECK(eof);
        return false;
    }
    (in.*read)(buffer.data(), n);
    ZUL_FUZZ_CHECK(std::memcmp(buffer.data(), model.data + model.at, bytes) == 0);
    model.at += bytes;
    return true;
}

bool String(const utl_BinIStream& in, Model& model)
{
    if (model.Left() < 4)
        return Scalar<int32_t>(model, [&] { return in.ReadInt(); });
    int32_t n;
    std::memcpy(&n, model.data + model.at, 4);
    // The reader allocates the length as written; limiting it is the caller's business, so
    // implausible lengths (far beyond what the stream holds) are not asked for.
    if (n > 0 && static_cast<size_t>(n) > model.Left() + (1u << 20))
        return false;
    try {
        const cow_String s = in.ReadString();
        ZUL_FUZZ_CHECK(n >= 0 && model.Left() >= 4 + static_cast<size_t>(n));
        ZUL_FUZZ_CHECK(s.Length() == n);
        ZUL_FUZZ_CHECK(n == 0 || std::memcmp(s.c_str(), model.data + model.at + 4, static_cast<size_t>(n)) == 0);
        ZUL_FUZZ_CHECK(s.c_str()[n] == '\0');
        model.at += 4 + static_cast<size_t>(n);
        return true;
    } catch (const utl_BinStreamBadLength&) {
        ZUL_FUZZ_CHECK(n < 0);
    } catch (const utl_BinStreamEOF&) {
        ZUL_FUZZ_CHECK(n >= 0 && model.Left() < 4 + static_cast<size_t>(n));
    }
    return false;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    zul_fuzz::Initialize();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size == 0)
        return 0;
    const size_t reads = data[0] % 32;
    if (size < 1 + reads)
        return 0;
    const uint8_t* ops = data + 1;
    Model model{data + 1 + reads, size - 1 - reads};

    const std::string path = zul_fuzz::ScratchDirectory() + "/stream.bin";
    {
        const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        ZUL_FUZZ_CHECK(fd >= 0);
        ZUL_FUZZ_CHECK(model.size == 0 || ::write(fd, model.data, model.size) == static_cast<ssize_t>(model.size));
        ::close(fd);
    }
    const int fd = ::open(path.c_str(), O_RDONLY);
    ZUL_FUZZ_CHECK(fd >= 0);
    zul_fuzz::Expect<utl_BinStreamException>::Run([&] {
        utl_BinIStream in(fd, omi_Swapper::Little);
        for (size_t i = 0; i < reads; ++i) {
            const int op = ops[i] & 15;
            const int n = ops[i] >> 4;  // array length 0..15
            bool ok = true;
            switch (op) {
            case 0: ok = Scalar<signed char>(model, [&] { return in.ReadSchar(); }); break;
            case 1: ok = Scalar<unsigned char>(model, [&] { return in.ReadUchar(); }); break;
            case 2: ok = Scalar<short>(model, [&] { return in.ReadShort(); }); break;
            case 3: ok = Scalar<unsigned short>(model, [&] { return in.ReadUShort(); }); break;
            case 4: ok = Scalar<int>(model, [&] { return in.ReadInt(); }); break;
            case 5: ok = Scalar<unsigned>(model, [&] { return in.ReadUInt(); }); break;
            case 6: ok = Scalar<int64_t>(model, [&] { return in.ReadInt64(); }); break;
            case 7: ok = Scalar<uint64_t>(model, [&] { return in.ReadUInt64(); }); break;
            case 8: ok = Array<int>(in, model, n, &utl_BinIStream::ReadIntArray); break;
            case 9: ok = Array<float>(in, model, n, &utl_BinIStream::ReadFloatArray); break;
            case 10: ok = Array<double>(in, model, n, &utl_BinIStream::ReadDoubleArray); break;
            default: ok = String(in, model); break;
            }
            // After a failed read the stream position is no longer known to the model.
            if (!ok)
                break;
        }
    });
    ::close(fd);
    return 0;
}

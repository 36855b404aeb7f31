// The binary record format, byte for byte, and the stream failures.
#include <gtest/gtest.h>

#include <cstring>
#include <fcntl.h>
#include <string>
#include <type_traits>

#include "utl/utl_BinStream.h"
#include "zul_TestSupport.h"

namespace {

using zul_test::Bytes;
using zul_test::Descriptor;

TEST(UtlBinStream, ScalarsAndStringsAreLittleEndianWithoutPadding)
{
    zul_test::TempDir dir;
    const std::string path = dir.File("out.bin");
    {
        Descriptor out(path, O_WRONLY | O_CREAT | O_TRUNC);
        ASSERT_GE(out.fd(), 0);
        utl_BinOStream s(out.fd(), omi_Swapper::Big);  // the byte order argument is ignored
        s.WriteInt(1);
        s.WriteShort(-2);
        s.WriteString("abc");
        s.WriteString(cow_String());
        s.WriteUchar(0xAB);
        s.WriteInt64(-2);
    }
    const std::string expected = Bytes({1, 0, 0, 0, 0xFE, 0xFF, 3, 0, 0, 0, 'a', 'b', 'c', 0, 0, 0, 0, 0xAB,
                                        0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF});
    EXPECT_EQ(zul_test::ReadFileBytes(path), expected);
}

TEST(UtlBinStream, RoundTripOfEveryKind)
{
    zul_test::TempDir dir;
    const std::string path = dir.File("round.bin");
    const double reals[3] = {1.5, -0.25, 1e300};
    const int ints[2] = {-7, 123456789};
    {
        Descriptor out(path, O_WRONLY | O_CREAT | O_TRUNC);
        utl_BinOStream s(out.fd(), omi_Swapper::Native);
        s.WriteSchar(-5);
        s.WriteUShort(65535);
        s.WriteUInt(4000000000u);
        s.WriteUInt64(0xFFFFFFFFFFFFFFFFull);
        s.WriteDoubleArray(reals, 3);
        s.WriteDoubleArray(reals, 0);
        s.WriteDoubleArray(reals, -5);
        s.WriteIntArray(ints, 2);
        s.WriteString("tail");
    }
    Descriptor in(path, O_RDONLY);
    utl_BinIStream s(in.fd(), omi_Swapper::Little);
    EXPECT_EQ(s.ReadSchar(), -5);
    EXPECT_EQ(s.ReadUShort(), 65535);
    EXPECT_EQ(s.ReadUInt(), 4000000000u);
    EXPECT_EQ(s.ReadUInt64(), 0xFFFFFFFFFFFFFFFFull);
    double back[3] = {0, 0, 0};
    s.ReadDoubleArray(back, 3);
    EXPECT_EQ(std::memcmp(back, reals, sizeof(reals)), 0);
    int intsBack[2] = {0, 0};
    s.ReadIntArray(intsBack, 2);
    EXPECT_EQ(std::memcmp(intsBack, ints, sizeof(ints)), 0);
    EXPECT_EQ(s.ReadString(), "tail");
}

// An empty string reads; a negative length is refused; a length past the data, and a short
// scalar, are the end of the file, which is not a read error.
TEST(UtlBinStream, StringLengthsAndTheEndOfTheFile)
{
    zul_test::TempDir dir;
    const std::string path = dir.File("lengths.bin");
    zul_test::WriteFileBytes(path, Bytes({0, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF, 10, 0, 0, 0, 'a', 'b'}));
    Descriptor in(path, O_RDONLY);
    utl_BinIStream s(in.fd(), omi_Swapper::Native);
    EXPECT_EQ(s.ReadString().Length(), 0);
    EXPECT_THROW(s.ReadString(), utl_BinStreamBadLength);
    EXPECT_THROW(s.ReadString(), utl_BinStreamEOF);

    zul_test::WriteFileBytes(dir.File("short.bin"), Bytes({1, 2}));
    Descriptor shortFile(dir.File("short.bin"), O_RDONLY);
    utl_BinIStream t(shortFile.fd(), omi_Swapper::Native);
    const auto e = zul_test::Raised<utl_BinStreamEOF>([&] { t.ReadInt(); });
    ASSERT_TRUE(e.has_value());
    EXPECT_EQ(e->UserReport(), "*** ERROR: End of file on binary stream.");
    EXPECT_EQ(e->File(), "utl/impl/utl_BinStream");
    EXPECT_FALSE((std::is_base_of<utl_BinStreamReadError, utl_BinStreamEOF>::value));
}

TEST(UtlBinStream, SystemFailuresAndPropagationKeepTheClass)
{
    zul_test::TempDir dir;
    const std::string path = dir.File("ro.bin");
    zul_test::WriteFileBytes(path, "data");
    Descriptor readOnly(path, O_RDONLY);
    utl_BinOStream writer(readOnly.fd(), omi_Swapper::Native);
    const auto e = zul_test::Raised<utl_BinStreamWriteError>([&] { writer.WriteInt(1); });
    ASSERT_TRUE(e.has_value()) << "writing to a read-only descriptor succeeded";
    const utl_BinStreamException& base = *e;
    EXPECT_EQ(base.DynTypeId(), utl_BinStreamWriteError::TypeId());
    EXPECT_GT(base.UserReport().Length(), 0);
    EXPECT_THROW(base.Propagate(), utl_BinStreamWriteError);

    Descriptor writeOnly(dir.File("wo.bin"), O_WRONLY | O_CREAT);
    utl_BinIStream reader(writeOnly.fd(), omi_Swapper::Native);
    EXPECT_THROW(reader.ReadInt(), utl_BinStreamReadError);
}

}  // namespace

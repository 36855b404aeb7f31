// The container file: checksum, byte format, update, lock, and damaged input.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "utl_MultisectionTestSupport.h"

namespace {

using namespace utl_test;
using zul_test::Bytes;
using zul_test::ReadFileBytes;
using zul_test::WriteFileBytes;
using Format = utl_MultisectionFormatException;
using Corrupt = utl_MultisectionCorruptException;

std::string Le32(uint32_t v)
{
    return Bytes({int(v & 0xFF), int((v >> 8) & 0xFF), int((v >> 16) & 0xFF), int(v >> 24)});
}

// CRC-32/MPEG-2. The table steps and the carry-less folding must agree with the byte-at-a-time
// definition at every length (around the folding's 16- and 64-byte steps), alignment and
// starting value.
TEST(UtlMultisectionCrc, MatchesTheBytewiseDefinition)
{
    EXPECT_EQ(utl_MultisectionCrc("123456789", 9), 0x0376E6E7u);  // the published check value
    auto bytewise = [](const unsigned char* p, size_t n) {
        uint32_t crc = 0xFFFFFFFFu;
        for (size_t i = 0; i < n; ++i) {
            crc ^= uint32_t(p[i]) << 24;
            for (int bit = 0; bit < 8; ++bit)
                crc = (crc & 0x80000000u) ? (crc << 1) ^ 0x04C11DB7u : (crc << 1);
        }
        return crc;
    };
    const std::string text = Pattern(1100, 12345);
    const auto* data = reinterpret_cast<const unsigned char*>(text.data());
    for (size_t start = 0; start < 8; ++start) {
        for (size_t n = 0; n + start <= text.size(); n += (n < 300 ? 1 : 13)) {
            const uint32_t expected = bytewise(data + start, n);
            ASSERT_EQ(utl_MultisectionCrc(data + start, n), expected) << start << "/" << n;
            ASSERT_EQ(utl_MultisectionCrcTable(data + start, n), expected) << start << "/" << n;
        }
    }
    // Continuing from a running value: a long piece after a short one.
    EXPECT_EQ(utl_MultisectionCrc(data + 5, 900, utl_MultisectionCrc(data, 5)), bytewise(data, 905));
}

TEST(UtlMultisectionFile, ByteFormat)
{
    zul_test::TempDir dir;
    const std::string path = dir.File("c.msf");
    const std::string header = Bytes({0x28, 0xC1, 0x1D, 0xAF, 1, 0, 0, 0});
    WriteContainer(path, {});
    EXPECT_EQ(ReadFileBytes(path), header + Le32(0));
    WriteContainer(path, {{"a", "\1\2\3"}});
    EXPECT_EQ(ReadFileBytes(path),
              header + Le32(1) + Le32(1) + "a" + Le32(3) + Le32(utl_MultisectionCrc("\1\2\3", 3)) + "\1\2\3");
}

// (What an update keeps, replaces and appends is checked by the fault sweep's undisturbed saves;
// a second writer is refused in test_MultisectionFileProcesses.cpp.)
TEST(UtlMultisectionFile, NewDataReadsBeforeTheSaveAndAReaderCannotSave)
{
    zul_test::TempDir dir;
    const std::string path = dir.File("multi.msf");
    WriteContainer(path, {{"text", "hello"}});
    {
        utl_MultisectionFile f(path.c_str(), utl_FileAccessUpdate);
        f.setSectionData("text", "HELLO, WORLD", 12);
        EXPECT_EQ(SectionOf(f, "text"), "HELLO, WORLD");
    }
    EXPECT_TRUE(Holds(path, {{"text", "hello"}})) << "unsaved changes are dropped";
    utl_MultisectionFile f(path.c_str(), utl_FileAccessRead);
    EXPECT_FALSE(f.hasSection("nothing"));
    ExpectFailure(path, "No section \"nothing\"", [&] { f.getSectionLength("nothing"); });
    f.setSectionData("text", "x", 1);
    EXPECT_THROW(f.saveChanges(), utl_FileExceptionWrite);
    EXPECT_EQ(FilesIn(dir.Path()), std::vector<std::string>{"multi.msf"}) << "no lock, no save file";
}

TEST(UtlMultisectionFile, DamagedHeadersTablesAndDataAreReported)
{
    zul_test::TempDir dir;
    const std::string path = dir.File("damaged.msf");
    auto open = [&] { utl_MultisectionFile(path.c_str(), utl_FileAccessRead); };
    for (const std::string& bad : {std::string("not a container at all"), Bytes({0x28, 0xC1})}) {
        WriteFileBytes(path, bad);
        ExpectFailure<Format>(path, "Invalid file type", open);
    }
    WriteFileBytes(path, Bytes({0x28, 0xC1, 0x1D, 0xAF, 2, 0, 0, 0, 0, 0, 0, 0}));
    ExpectFailure<Format>(path, "Unsupported file format", open);

    WriteContainer(path, {{"alpha", "0123456789"}});
    const std::string good = ReadFileBytes(path);
    const std::string header = good.substr(0, 12);
    // Truncated anywhere inside the table; a negative name length, and one past the end of the file.
    std::vector<std::string> tables = {header + Le32(0xFFFFFFFFu), header + Le32(0x7FFFFFF0u) + "abc"};
    for (size_t cut = 12; cut < 12 + 4 + 5 + 8; ++cut)
        tables.push_back(good.substr(0, cut));
    for (const std::string& table : tables) {
        WriteFileBytes(path, table);
        ExpectFailure<Corrupt>(path, "Invalid string length", open);
    }

    // Data altered on disk, and data missing at the end.
    std::string altered = good;
    altered[altered.size() - 1] ^= 0x55;
    for (const std::string& bad : {altered, good.substr(0, good.size() - 3)}) {
        WriteFileBytes(path, bad);
        utl_MultisectionFile f(path.c_str(), utl_FileAccessRead);
        ExpectFailure<Corrupt>(path, "Data corrupted in section \"alpha\"", [&] { SectionOf(f, "alpha"); });
    }
    // With a complete save file of this process beside the damaged container (left by a failed
    // copy-back), a save refuses rather than overwrite what may be the only complete copy.
    WriteFileBytes(path, altered);
    const std::string savePath = SaveFileOf(path);
    WriteFileBytes(savePath, good);
    {
        utl_MultisectionFile f(path.c_str(), utl_FileAccessUpdate);
        f.setSectionData("beta", "b", 1);
        ExpectFailure(path,
                      "Cannot save: the container does not verify and \"" + savePath +
                          "\" is a complete save file; restore it first with \"zulutil msf recover " + path + "\"",
                      [&] { f.saveChanges(); });
    }
    EXPECT_EQ(ReadFileBytes(savePath), good);
    cow_String used;
    EXPECT_EQ(utl_MultisectionFile::RestoreFromSaveFile(path.c_str(), used), utl_MultisectionFile::RestoreDone);
    EXPECT_EQ(ReadFileBytes(path), good);

    // A 54-byte table claiming sections of 2 GiB: those past the end are corrupt before any
    // buffer is sized or read (a null buffer shows that nothing is read), the one before them
    // reads, and a save refuses before it touches the container.
    auto entry = [](const std::string& name, uint32_t length, uint32_t crc) {
        return Le32(uint32_t(name.size())) + name + Le32(length) + Le32(crc);
    };
    const std::string crafted = header.substr(0, 8) + Le32(3) + entry("a", 3, utl_MultisectionCrc("abc", 3)) +
                                entry("b", 0x7FFFFFFFu, 0) + entry("c", 0x7FFFFFFFu, 0) + "abc";
    ASSERT_EQ(crafted.size(), 54u);
    WriteFileBytes(path, crafted);
    {
        utl_MultisectionFile f(path.c_str(), utl_FileAccessUpdate);
        ASSERT_EQ(f.SectionCount(), 3);
        EXPECT_EQ(f.SectionLength(2), 0x7FFFFFFF);
        EXPECT_EQ(SectionOf(f, "a"), "abc");
        ExpectFailure<Corrupt>(path, "Data corrupted in section \"b\"", [&] { f.getSectionLength("b"); });
        EXPECT_EQ(f.getSectionLength(0), 3);
        ExpectFailure<Corrupt>(path, "Data corrupted in section \"c\"", [&] { f.getSectionData(2, nullptr); });
        f.setSectionData("a", "xyz", 3);
        ExpectFailure<Corrupt>(path, "Data corrupted in section \"b\"", [&] { f.saveChanges(); });
    }
    EXPECT_EQ(ReadFileBytes(path), crafted);
    EXPECT_EQ(FilesIn(dir.Path()), std::vector<std::string>{"damaged.msf"});
}

}  // namespace

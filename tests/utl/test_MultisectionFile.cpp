// The container file: byte format, CRC, lock, save, and damaged input.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "utl/utl_MultisectionFile.h"
#include "zul_TestSupport.h"

namespace {

std::string Bytes(std::initializer_list<int> values)
{
    std::string out;
    for (int v : values)
        out.push_back(static_cast<char>(v));
    return out;
}

std::string Le32(uint32_t v)
{
    return Bytes({int(v & 0xFF), int((v >> 8) & 0xFF), int((v >> 16) & 0xFF), int(v >> 24)});
}

std::string SectionOf(utl_MultisectionFile& f, const char* name)
{
    std::string data(static_cast<size_t>(f.getSectionLength(name)), '\0');
    f.getSectionData(name, &data[0]);
    return data;
}

// Expects a nex_TextException whose text is the quoted path, ": " and the message.
template <class F>
void ExpectFailure(const std::string& path, const std::string& message, F action)
{
    try {
        action();
        ADD_FAILURE() << "no failure, expected " << message;
    } catch (const nex_TextException& e) {
        EXPECT_EQ(e.UserReport(), ("\"" + path + "\": " + message).c_str());
        EXPECT_EQ(e.File(), "utl/impl/utl_MultisectionFile");
    }
}

TEST(UtlMultisectionCrc, MatchesCrc32Mpeg2)
{
    EXPECT_EQ(utl_MultisectionCrc("", 0), 0xFFFFFFFFu);
    EXPECT_EQ(utl_MultisectionCrc("123456789", 9), 0x0376E6E7u);  // the published check value
    const uint32_t part = utl_MultisectionCrc("12345", 5);
    EXPECT_EQ(utl_MultisectionCrc("6789", 4, part), 0x0376E6E7u);
}

TEST(UtlMultisectionFile, EmptyContainerIsTwelveBytes)
{
    zul_test::TempDir dir;
    const std::string path = dir.File("empty.msf");
    {
        utl_MultisectionFile f(path.c_str(), utl_FileAccessWrite);
        f.saveChanges();
    }
    EXPECT_EQ(zul_test::ReadFileBytes(path), Bytes({0x28, 0xC1, 0x1D, 0xAF, 1, 0, 0, 0, 0, 0, 0, 0}));
}

TEST(UtlMultisectionFile, TableEntryAndDataLayout)
{
    zul_test::TempDir dir;
    const std::string path = dir.File("one.msf");
    const char data[3] = {1, 2, 3};
    {
        utl_MultisectionFile f(path.c_str(), utl_FileAccessWrite);
        f.setSectionData("a", data, 3);
        f.saveChanges();
    }
    const std::string expected = Bytes({0x28, 0xC1, 0x1D, 0xAF, 1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 'a', 3, 0, 0, 0}) +
                                 Le32(utl_MultisectionCrc(data, 3)) + Bytes({1, 2, 3});
    EXPECT_EQ(zul_test::ReadFileBytes(path), expected);
    EXPECT_FALSE(zul_test::ReadFileBytes(path).empty());
}

TEST(UtlMultisectionFile, UpdateKeepsOldSectionsAndAppendsNewOnes)
{
    zul_test::TempDir dir;
    const std::string path = dir.File("multi.msf");
    {
        utl_MultisectionFile f(path.c_str(), utl_FileAccessWrite);
        f.setSectionData("text", "hello", 5);
        f.setSectionData("empty", "", 0);
        f.setSectionData("bin", "\0\1\2\3", 4);
        f.saveChanges();
    }
    {
        utl_MultisectionFile f(path.c_str(), utl_FileAccessUpdate);
        EXPECT_EQ(SectionOf(f, "text"), "hello");
        f.setSectionData("text", "HELLO, WORLD", 12);
        f.setSectionData("last", "z", 1);
        EXPECT_EQ(SectionOf(f, "text"), "HELLO, WORLD") << "new data reads back before the save";
        f.saveChanges();
        EXPECT_EQ(SectionOf(f, "bin"), std::string("\0\1\2\3", 4)) << "offsets follow the saved file";
    }
    utl_MultisectionFile f(path.c_str(), utl_FileAccessRead);
    ASSERT_EQ(f.SectionCount(), 4);
    EXPECT_EQ(f.SectionName(3), "last");
    EXPECT_EQ(SectionOf(f, "text"), "HELLO, WORLD");
    EXPECT_EQ(SectionOf(f, "empty"), "");
    EXPECT_EQ(SectionOf(f, "last"), "z");
    EXPECT_FALSE(f.hasSection("nothing"));
    EXPECT_THROW(f.getSectionLength("nothing"), nex_TextException);
    EXPECT_FALSE(std::filesystem::exists(path + ".lock")) << "the lock goes with its writer";
}

TEST(UtlMultisectionFile, LockKeepsASecondWriterOutButNotReaders)
{
    zul_test::TempDir dir;
    const std::string path = dir.File("locked.msf");
    {
        utl_MultisectionFile f(path.c_str(), utl_FileAccessWrite);
        f.saveChanges();
    }
    utl_MultisectionFile writer(path.c_str(), utl_FileAccessUpdate);
    ExpectFailure(path, "Cannot create the lock file.", [&] { utl_MultisectionFile(path.c_str(), utl_FileAccessUpdate); });
    EXPECT_NO_THROW(utl_MultisectionFile(path.c_str(), utl_FileAccessRead));
}

TEST(UtlMultisectionFile, HeaderErrors)
{
    zul_test::TempDir dir;
    const std::string path = dir.File("bad.msf");
    zul_test::WriteFileBytes(path, "not a container at all");
    ExpectFailure(path, "Invalid file type", [&] { utl_MultisectionFile(path.c_str(), utl_FileAccessRead); });
    zul_test::WriteFileBytes(path, Bytes({0x28, 0xC1, 0x1D, 0xAF, 2, 0, 0, 0, 0, 0, 0, 0}));
    ExpectFailure(path, "Unsupported file format", [&] { utl_MultisectionFile(path.c_str(), utl_FileAccessRead); });
    zul_test::WriteFileBytes(path, Bytes({0x28, 0xC1}));
    ExpectFailure(path, "Invalid file type", [&] { utl_MultisectionFile(path.c_str(), utl_FileAccessRead); });
}

TEST(UtlMultisectionFile, DamagedTablesAndDataAreReported)
{
    zul_test::TempDir dir;
    const std::string path = dir.File("damaged.msf");
    {
        utl_MultisectionFile f(path.c_str(), utl_FileAccessWrite);
        f.setSectionData("alpha", "0123456789", 10);
        f.saveChanges();
    }
    const std::string good = zul_test::ReadFileBytes(path);
    const std::string header = good.substr(0, 12);

    // Truncated anywhere inside the table.
    for (size_t cut = 12; cut < 12 + 4 + 5 + 8; ++cut) {
        zul_test::WriteFileBytes(path, good.substr(0, cut));
        ExpectFailure(path, "Invalid string length", [&] { utl_MultisectionFile(path.c_str(), utl_FileAccessRead); });
    }
    // A negative name length, and one that runs past the end of the file.
    zul_test::WriteFileBytes(path, header + Le32(0xFFFFFFFFu));
    ExpectFailure(path, "Invalid string length", [&] { utl_MultisectionFile(path.c_str(), utl_FileAccessRead); });
    zul_test::WriteFileBytes(path, header + Le32(0x7FFFFFF0u) + "abc");
    ExpectFailure(path, "Invalid string length", [&] { utl_MultisectionFile(path.c_str(), utl_FileAccessRead); });

    // Data altered on disk, and data missing at the end.
    std::string altered = good;
    altered[altered.size() - 1] ^= 0x55;
    zul_test::WriteFileBytes(path, altered);
    {
        utl_MultisectionFile f(path.c_str(), utl_FileAccessRead);
        ExpectFailure(path, "Data corrupted in section \"alpha\"", [&] { SectionOf(f, "alpha"); });
    }
    zul_test::WriteFileBytes(path, good.substr(0, good.size() - 3));
    {
        utl_MultisectionFile f(path.c_str(), utl_FileAccessRead);
        ExpectFailure(path, "Data corrupted in section \"alpha\"", [&] { SectionOf(f, "alpha"); });
    }
}

TEST(UtlMultisectionFile, SaveLeavesNoTemporaryFile)
{
    zul_test::TempDir dir;
    const std::string path = dir.File("clean.msf");
    {
        utl_MultisectionFile f(path.c_str(), utl_FileAccessWrite);
        f.setSectionData("s", "x", 1);
        f.saveChanges();
    }
    int entries = 0;
    for (const auto& entry : std::filesystem::directory_iterator(dir.Path())) {
        ++entries;
        EXPECT_EQ(entry.path().filename().string(), "clean.msf");
    }
    EXPECT_EQ(entries, 1);
}

}  // namespace

namespace {

// The table steps and the carry-less folding must agree with the byte-at-a-time definition at
// every length (around the folding's 16- and 64-byte steps), alignment and starting value.
TEST(UtlMultisectionCrc, FoldingMatchesTheBytewiseDefinition)
{
    auto bytewise = [](const unsigned char* p, size_t n) {
        uint32_t crc = 0xFFFFFFFFu;
        for (size_t i = 0; i < n; ++i) {
            crc ^= uint32_t(p[i]) << 24;
            for (int bit = 0; bit < 8; ++bit)
                crc = (crc & 0x80000000u) ? (crc << 1) ^ 0x04C11DB7u : (crc << 1);
        }
        return crc;
    };
    std::vector<unsigned char> data(1100);
    uint32_t seed = 12345;
    for (unsigned char& c : data) {
        seed = seed * 1103515245u + 12345u;
        c = static_cast<unsigned char>(seed >> 16);
    }
    for (size_t start = 0; start < 8; ++start) {
        for (size_t n = 0; n + start <= data.size(); n += (n < 300 ? 1 : 13)) {
            const uint32_t expected = bytewise(data.data() + start, n);
            ASSERT_EQ(utl_MultisectionCrc(data.data() + start, n), expected) << start << "/" << n;
            ASSERT_EQ(utl_MultisectionCrcTable(data.data() + start, n), expected) << start << "/" << n;
        }
    }
    // Continuing from a running value: a long piece after a short one.
    const uint32_t head = utl_MultisectionCrc(data.data(), 5);
    EXPECT_EQ(utl_MultisectionCrc(data.data() + 5, 900, head), bytewise(data.data(), 905));
}

}  // namespace

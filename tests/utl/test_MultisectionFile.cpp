// The container file: byte format, CRC, lock, save, damaged input, and saves under I/O faults.
#include <gtest/gtest.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#if defined(_WIN32)
#include <process.h>
#define ZUL_GETPID _getpid
#else
#define ZUL_GETPID getpid
#include <csignal>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

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

std::vector<std::string> FilesIn(const std::string& directory)
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(directory))
        names.push_back(entry.path().filename().string());
    return names;
}

std::string SectionOf(utl_MultisectionFile& f, const char* name)
{
    std::string data(static_cast<size_t>(f.getSectionLength(name)), '\0');
    f.getSectionData(name, &data[0]);
    return data;
}

using Format = utl_MultisectionFormatException;
using Corrupt = utl_MultisectionCorruptException;

// Expects an E (a nex_TextException) whose text is the quoted path, ": " and the message.
template <class E = nex_TextException, class F>
void ExpectFailure(const std::string& path, const std::string& message, F action)
{
    try {
        action();
        ADD_FAILURE() << "no failure, expected " << message;
    } catch (const E& e) {
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
    f.setSectionData("text", "x", 1);
    EXPECT_THROW(f.saveChanges(), utl_FileExceptionWrite) << "a reader cannot save";
    EXPECT_EQ(FilesIn(dir.Path()), std::vector<std::string>{"multi.msf"}) << "no lock, no save file";
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
    ExpectFailure<Format>(path, "Invalid file type", [&] { utl_MultisectionFile(path.c_str(), utl_FileAccessRead); });
    zul_test::WriteFileBytes(path, Bytes({0x28, 0xC1, 0x1D, 0xAF, 2, 0, 0, 0, 0, 0, 0, 0}));
    ExpectFailure<Format>(path, "Unsupported file format",
                          [&] { utl_MultisectionFile(path.c_str(), utl_FileAccessRead); });
    zul_test::WriteFileBytes(path, Bytes({0x28, 0xC1}));
    ExpectFailure<Format>(path, "Invalid file type", [&] { utl_MultisectionFile(path.c_str(), utl_FileAccessRead); });
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
        ExpectFailure<Corrupt>(path, "Invalid string length",
                               [&] { utl_MultisectionFile(path.c_str(), utl_FileAccessRead); });
    }
    // A negative name length, and one that runs past the end of the file.
    zul_test::WriteFileBytes(path, header + Le32(0xFFFFFFFFu));
    ExpectFailure<Corrupt>(path, "Invalid string length",
                           [&] { utl_MultisectionFile(path.c_str(), utl_FileAccessRead); });
    zul_test::WriteFileBytes(path, header + Le32(0x7FFFFFF0u) + "abc");
    ExpectFailure<Corrupt>(path, "Invalid string length",
                           [&] { utl_MultisectionFile(path.c_str(), utl_FileAccessRead); });

    // Data altered on disk, and data missing at the end.
    std::string altered = good;
    altered[altered.size() - 1] ^= 0x55;
    zul_test::WriteFileBytes(path, altered);
    {
        utl_MultisectionFile f(path.c_str(), utl_FileAccessRead);
        ExpectFailure<Corrupt>(path, "Data corrupted in section \"alpha\"", [&] { SectionOf(f, "alpha"); });
    }
    // With a complete save file of this process beside the damaged container (left by a failed
    // copy-back), a save refuses rather than overwrite what may be the only complete copy.
    const std::string savePath = path + "." + std::to_string(ZUL_GETPID()) + ".tmp";
    zul_test::WriteFileBytes(savePath, good);
    {
        utl_MultisectionFile f(path.c_str(), utl_FileAccessUpdate);
        f.setSectionData("beta", "b", 1);
        ExpectFailure(path,
                      "Cannot save: the container does not verify and \"" + savePath +
                          "\" is a complete save file; restore it first with \"zulutil msf recover " + path + "\"",
                      [&] { f.saveChanges(); });
    }
    EXPECT_EQ(zul_test::ReadFileBytes(savePath), good);
    cow_String used;
    EXPECT_EQ(utl_MultisectionFile::RestoreFromSaveFile(path.c_str(), used), utl_MultisectionFile::RestoreDone);
    EXPECT_EQ(zul_test::ReadFileBytes(path), good);

    zul_test::WriteFileBytes(path, good.substr(0, good.size() - 3));
    {
        utl_MultisectionFile f(path.c_str(), utl_FileAccessRead);
        ExpectFailure<Corrupt>(path, "Data corrupted in section \"alpha\"", [&] { SectionOf(f, "alpha"); });
    }

    // A 54-byte table claiming sections of 2 GiB: those past the end are corrupt before any
    // buffer is sized or read (a null buffer shows that nothing is read), the one before them
    // reads, and a save refuses before it touches the container.
    auto entry = [](const std::string& name, uint32_t length, uint32_t crc) {
        return Le32(uint32_t(name.size())) + name + Le32(length) + Le32(crc);
    };
    const std::string crafted = header.substr(0, 8) + Le32(3) + entry("a", 3, utl_MultisectionCrc("abc", 3)) +
                                entry("b", 0x7FFFFFFFu, 0) + entry("c", 0x7FFFFFFFu, 0) + "abc";
    ASSERT_EQ(crafted.size(), 54u);
    zul_test::WriteFileBytes(path, crafted);
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
    EXPECT_EQ(zul_test::ReadFileBytes(path), crafted);
    EXPECT_EQ(FilesIn(dir.Path()), std::vector<std::string>{"damaged.msf"});
}


// ---- Saves under faults ----

using Sections = std::vector<std::pair<std::string, std::string>>;

Sections SectionsOf(utl_MultisectionFile& f)
{
    Sections out;
    for (int i = 0; i < f.SectionCount(); ++i) {
        const std::string name = f.SectionName(i).c_str();
        out.emplace_back(name, SectionOf(f, name.c_str()));
    }
    return out;
}

// The sections of the container at `path`, or false when it is missing or any section fails.
bool ReadSections(const std::string& path, Sections& out)
{
    try {
        utl_MultisectionFile f(path.c_str(), utl_FileAccessRead);
        out = SectionsOf(f);
        return true;
    } catch (const nex_Exception&) {
        return false;
    }
}

std::string Pattern(size_t n, unsigned seed)
{
    std::string out(n, '\0');
    for (char& c : out) {
        seed = seed * 1103515245u + 12345u;
        c = static_cast<char>(seed >> 16);
    }
    return out;
}

// A save to prove: the container's sections before (none: it is created) and the sections set.
struct Shape {
    const char* name;
    Sections before;
    Sections changes;

    Sections After() const
    {
        Sections out = before;
        for (const auto& change : changes) {
            auto it = out.begin();
            while (it != out.end() && it->first != change.first)
                ++it;
            if (it == out.end())
                out.push_back(change);
            else
                it->second = change.second;
        }
        return out;
    }
};

#if defined(_WIN32)
const uint32_t kIoError = 1117;  // ERROR_IO_DEVICE
const uint32_t kDiskFull = 112;  // ERROR_DISK_FULL
#else
const uint32_t kIoError = EIO;
const uint32_t kDiskFull = ENOSPC;
#endif

// One save of a shape with one fault armed around it, and every promise checked after it.
class FaultedSave {
public:
    FaultedSave(const zul_test::TempDir& dir, const Shape& shape)
        : m_dir(dir), m_shape(shape), m_path(dir.File("c.msf")), m_after(shape.After())
    {
        if (!shape.before.empty()) {
            {
                utl_MultisectionFile f(m_path.c_str(), utl_FileAccessWrite);
                for (const auto& section : shape.before)
                    f.setSectionData(section.first.c_str(), section.second.data(), int(section.second.size()));
                f.saveChanges();
            }
            m_image = zul_test::ReadFileBytes(m_path);
        }
    }

    // Runs the save with arm() before and disarm() after; answers whether the fault struck.
    template <class Arm, class Disarm>
    bool Run(const std::string& label, Arm arm, Disarm disarm, bool deleteFault = false)
    {
        std::filesystem::remove_all(m_dir.Path());
        std::filesystem::create_directories(m_dir.Path());
        if (!m_image.empty())
            zul_test::WriteFileBytes(m_path, m_image);
        const std::string savePath = m_path + "." + std::to_string(ZUL_GETPID()) + ".tmp";
        std::string message, container, saveFile;
        bool threw = false, struck = false, hadContainer = false, hadSaveFile = false;
        {
            utl_MultisectionFile f(m_path.c_str(), m_image.empty() ? utl_FileAccessWrite : utl_FileAccessUpdate);
            for (const auto& change : m_shape.changes)
                f.setSectionData(change.first.c_str(), change.second.data(), int(change.second.size()));
            arm();
            try {
                f.saveChanges();
            } catch (const nex_Exception& e) {
                threw = true;
                message = e.UserReport().c_str();
            }
            struck = disarm();
            if (!struck)
                return false;
            ++m_faults;
            // The object survives: it reads what it was given, and the files stay as they are.
            try {
                EXPECT_EQ(SectionsOf(f), m_after) << label;
            } catch (const nex_Exception& e) {
                ADD_FAILURE() << label << ": the object no longer reads: " << e.UserReport().c_str();
            }
            hadContainer = std::filesystem::exists(m_path);
            hadSaveFile = std::filesystem::exists(savePath);
            if (hadContainer)
                container = zul_test::ReadFileBytes(m_path);
            if (hadSaveFile)
                saveFile = zul_test::ReadFileBytes(savePath);
            if (threw && hadSaveFile && !m_lockChecked) {
                cow_String used;
                ExpectFailure(m_path, "Cannot create the lock file.",
                              [&] { utl_MultisectionFile::RestoreFromSaveFile(m_path.c_str(), used); });
                m_lockChecked = true;
            }
            // A retry saves exactly the contents and leaves no save file.
            try {
                f.saveChanges();
            } catch (const nex_Exception& e) {
                ADD_FAILURE() << label << ": the retry failed: " << e.UserReport().c_str();
            }
            Sections now;
            EXPECT_TRUE(ReadSections(m_path, now) && now == m_after) << label << ": the retry";
            EXPECT_FALSE(std::filesystem::exists(savePath)) << label << ": the retry";
        }
        // Back to the files as the failure left them, the object gone.
        std::filesystem::remove(m_path);
        if (hadContainer)
            zul_test::WriteFileBytes(m_path, container);
        if (hadSaveFile)
            zul_test::WriteFileBytes(savePath, saveFile);
        Sections now;
        const bool kept = message.find("\"zulutil msf recover " + m_path + "\"") != std::string::npos;
        if (!threw) {
            EXPECT_TRUE(ReadSections(m_path, now) && now == m_after) << label << ": no failure, no new contents";
            return true;
        }
        if (kept) {
            EXPECT_NE(message.find("\"" + savePath + "\""), std::string::npos) << label << ": " << message;
            EXPECT_TRUE(ReadSections(savePath, now) && now == m_after) << label << ": the kept save file";
        } else {
            EXPECT_TRUE(deleteFault || !std::filesystem::exists(savePath)) << label << ": a save file left: " << message;
        }
        // The old contents, the new ones, or a restore that gives the new ones.
        const bool readable = ReadSections(m_path, now);
        const bool old = m_image.empty() ? !std::filesystem::exists(m_path) : readable && now == m_shape.before;
        if (!old && !(readable && now == m_after)) {
            cow_String used;
            EXPECT_TRUE(kept) << label << ": the container lost its contents: " << message;
            EXPECT_EQ(utl_MultisectionFile::RestoreFromSaveFile(m_path.c_str(), used), utl_MultisectionFile::RestoreDone)
                << label;
            const bool restored = ReadSections(m_path, now) && now == m_after;
            EXPECT_TRUE(restored) << label << ": the restore";
            EXPECT_FALSE(std::filesystem::exists(savePath)) << label << ": the restore";
            m_lost += restored ? 0 : 1;
        }
        return true;
    }

    // Counts the calls of every kind in an undisturbed save.
    std::vector<long> CountCalls()
    {
        std::vector<long> counts(utl_FileCallKinds);
        Run("undisturbed", [] { utl_FileTestFaults(utl_FileCallOpen, 0, 0); },
            [&] {
                for (int k = 0; k < utl_FileCallKinds; ++k)
                    counts[k] = utl_FileTestCalls(utl_FileCallEnm(k));
                utl_FileTestFaultsOff();
                return true;
            });
        m_faults = 0;
        EXPECT_EQ(FilesIn(m_dir.Path()), std::vector<std::string>{"c.msf"}) << m_shape.name << ": only the container stays";
        return counts;
    }

    int Faults() const { return m_faults; }
    int Lost() const { return m_lost; }

private:
    const zul_test::TempDir& m_dir;
    const Shape& m_shape;
    std::string m_path;
    Sections m_after;
    std::string m_image;
    int m_faults = 0;
    int m_lost = 0;
    bool m_lockChecked = false;
};

// Every system call of a save, of every kind, failed in turn (and every allocation): the
// container always verifies with its old sections or a complete save file restores the new
// ones; the object still reads what it was given and a retry saves exactly that.
TEST(UtlMultisectionFile, NoFaultInASaveLosesData)
{
    zul_test::TempDir dir;
    const std::string big = Pattern(1200000, 7);  // more than one copy piece
    const std::vector<Shape> shapes = {
        {"grows and appends", {{"x", "abcdef"}, {"a", big}}, {{"x", Pattern(3000, 1)}, {"n", "new"}}},
        {"shrinks", {{"a", Pattern(500, 2)}, {"b", Pattern(300, 3)}, {"c", Pattern(200, 4)}}, {{"b", "short"}}},
        {"replaces the first", {{"a", Pattern(100, 5)}, {"b", Pattern(200, 6)}}, {{"a", Pattern(150, 8)}}},
        {"appends", {{"a", Pattern(100, 9)}, {"b", ""}}, {{"n", Pattern(80, 10)}}},
        {"creates", {}, {{"a", "first"}, {"b", ""}, {"c", Pattern(40, 11)}}},
    };
    struct Fault {
        utl_FileCallEnm kind;
        uint32_t error;
        const char* name;
    };
    const std::vector<Fault> faults = {
        {utl_FileCallOpen, kIoError, "open"},     {utl_FileCallRead, kIoError, "read"},
        {utl_FileCallRead, 0, "short read"},      {utl_FileCallWrite, kIoError, "write"},
        {utl_FileCallWrite, 0, "short write"},    {utl_FileCallSeek, kIoError, "seek"},
        {utl_FileCallSize, kIoError, "size"},     {utl_FileCallExtend, kIoError, "extend"},
        {utl_FileCallExtend, kDiskFull, "full"},  {utl_FileCallFlush, kIoError, "flush"},
        {utl_FileCallClose, kIoError, "close"},   {utl_FileCallDelete, kIoError, "delete"},
    };
    int faultsInjected = 0, allocations = 0, lost = 0;
    for (const Shape& shape : shapes) {
        FaultedSave save(dir, shape);
        const std::vector<long> counts = save.CountCalls();
        for (const Fault& fault : faults) {
            EXPECT_GT(counts[fault.kind], 0) << shape.name << " makes no " << fault.name << " call";
            for (long n = 1; n <= counts[fault.kind]; ++n) {
                const std::string label = std::string(shape.name) + ", " + fault.name + " " + std::to_string(n);
                const bool struck = save.Run(
                    label, [&] { utl_FileTestFaults(fault.kind, n, fault.error); },
                    [] {
                        const bool fired = utl_FileTestFaultFired();
                        utl_FileTestFaultsOff();
                        return fired;
                    },
                    fault.kind == utl_FileCallDelete);
                EXPECT_TRUE(struck) << label;
            }
        }
        const int fileFaults = save.Faults();
        for (long n = 1;; ++n) {
            const bool struck = save.Run(
                std::string(shape.name) + ", allocation " + std::to_string(n), [&] { mem_TestFailAllocation(n); },
                [] {
                    const bool fired = mem_TestFailAllocationPending() == 0;
                    mem_TestFailAllocation(0);
                    return fired;
                });
            if (!struck)
                break;
        }
        faultsInjected += fileFaults;
        allocations += save.Faults() - fileFaults;
        lost += save.Lost();
    }
    std::printf("[ faults   ] %d file faults and %d allocation failures injected; containers lost: %d\n", faultsInjected,
                allocations, lost);
    EXPECT_EQ(lost, 0);
}

#if !defined(_WIN32)
// A container of a small section and a large one, and a save that makes the small one large.
struct FullDiskCase {
    Sections before = {{"x", "abcdef"}, {"a", Pattern(1200000, 12)}};
    std::string grown = Pattern(400000, 13);

    void Create(const std::string& path) const
    {
        utl_MultisectionFile f(path.c_str(), utl_FileAccessWrite);
        for (const auto& section : before)
            f.setSectionData(section.first.c_str(), section.second.data(), int(section.second.size()));
        f.saveChanges();
    }

    // In a child process: the save fails with a full disk (status 0), else 1..3.
    int SaveInChild(const std::string& path, rlim_t fileSizeLimit) const
    {
        const pid_t child = ::fork();
        if (child == 0) {
            int status = 1;
            if (fileSizeLimit != RLIM_INFINITY) {
                ::signal(SIGXFSZ, SIG_IGN);
                const struct rlimit limit = {fileSizeLimit, fileSizeLimit};
                ::setrlimit(RLIMIT_FSIZE, &limit);
            }
            try {
                utl_MultisectionFile f(path.c_str(), utl_FileAccessUpdate);
                f.setSectionData("x", grown.data(), int(grown.size()));
                f.saveChanges();
            } catch (const utl_FileExceptionFull&) {
                status = 0;
            } catch (const nex_Exception& e) {
                std::fprintf(stderr, "%s\n", e.UserReport().c_str());
                status = 2;
            }
            ::_exit(status);
        }
        int status = 3;
        ::waitpid(child, &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : 3;
    }

    // The failed save left the old container and no save file.
    void ExpectUntouched(const std::string& directory, const std::string& path) const
    {
        Sections now;
        EXPECT_TRUE(ReadSections(path, now) && now == before);
        EXPECT_EQ(FilesIn(directory), std::vector<std::string>{"c.msf"});
    }
};

// Real full disks, without faked calls. A file-size limit (set in a child process, its signal
// ignored) stops the save while it writes the save file, and Extend past it gives the full-disk
// error and keeps the old size. On a small tmpfs (root only), the container grows past the free
// space: the reservation fails before the container is touched.
TEST(UtlMultisectionFile, AFullDiskStopsTheSaveBeforeTheContainer)
{
    const FullDiskCase full;
    zul_test::TempDir dir;
    const std::string path = dir.File("c.msf");
    full.Create(path);
    EXPECT_EQ(full.SaveInChild(path, 1300000), 0);
    full.ExpectUntouched(dir.Path(), path);

    const std::string extended = dir.File("extended.dat");
    const pid_t child = ::fork();
    if (child == 0) {
        ::signal(SIGXFSZ, SIG_IGN);
        const struct rlimit limit = {1 << 20, 1 << 20};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        utl_File f(extended.c_str(), utl_FileAccessWrite);
        f.Write("abcd", 4);
        int status = 1;
        try {
            f.Extend(2 << 20);
        } catch (const utl_FileExceptionFull& e) {
            const bool text = e.UserReport() == ("*** Error: Free disk space depleted\nfile name: " + extended).c_str();
            status = text && f.FileSize().Value() == 4 ? 0 : 2;
        }
        ::_exit(status);
    }
    int status = 3;
    ::waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "Extend past the file-size limit";

    if (::geteuid() != 0)
        GTEST_SKIP() << "the tmpfs run needs root";
    zul_test::TempDir small;
    if (::mount("tmpfs", small.Path().c_str(), "tmpfs", 0, "size=3000k") != 0)
        GTEST_SKIP() << "cannot mount a tmpfs: " << std::strerror(errno);
    struct Unmount {
        std::string at;
        ~Unmount() { ::umount(at.c_str()); }
    } unmount{small.Path()};
    const std::string onTmpfs = small.File("c.msf");
    full.Create(onTmpfs);
    EXPECT_EQ(full.SaveInChild(onTmpfs, RLIM_INFINITY), 0);
    full.ExpectUntouched(small.Path(), onTmpfs);
}
#endif

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

// Container saves under faults: every system call and allocation of a save failed in turn, and
// real full disks (Linux).
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#if !defined(_WIN32)
#include <csignal>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

#include "utl_MultisectionTestSupport.h"

namespace {

using namespace utl_test;
namespace fs = std::filesystem;

// A save to prove: the container's sections before (none: it is created) and the sections set.
struct Shape {
    const char* name;
    Sections before;
    Sections changes;

    Sections After() const
    {
        Sections out = before;
        for (const auto& change : changes) {
            auto it = std::find_if(out.begin(), out.end(), [&](const auto& s) { return s.first == change.first; });
            if (it == out.end())
                out.push_back(change);
            else
                it->second = change.second;
        }
        return out;
    }
};

// The bytes of a file, none when it does not exist; and the file put back as it was.
std::optional<std::string> Snapshot(const std::string& path)
{
    return fs::exists(path) ? std::optional<std::string>(zul_test::ReadFileBytes(path)) : std::nullopt;
}

void PutBack(const std::string& path, const std::optional<std::string>& bytes)
{
    fs::remove(path);
    if (bytes)
        zul_test::WriteFileBytes(path, *bytes);
}

// One save of a shape with one fault armed around it, and every promise checked after it.
class FaultedSave {
public:
    FaultedSave(const zul_test::TempDir& dir, const Shape& shape)
        : m_dir(dir), m_shape(shape), m_path(dir.File("c.msf")), m_after(shape.After())
    {
        if (!shape.before.empty()) {
            WriteContainer(m_path, shape.before);
            m_image = zul_test::ReadFileBytes(m_path);
        }
    }

    // Runs the save with arm() before and disarm() after; answers whether the fault struck.
    template <class Arm, class Disarm>
    bool Run(const std::string& label, Arm arm, Disarm disarm, bool deleteFault = false)
    {
        fs::remove_all(m_dir.Path());
        fs::create_directories(m_dir.Path());
        if (!m_image.empty())
            zul_test::WriteFileBytes(m_path, m_image);
        const std::string savePath = SaveFileOf(m_path);
        std::string message;
        bool threw = false;
        std::optional<std::string> container, saveFile;
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
            if (!disarm())
                return false;
            ++m_faults;
            // The object survives: it reads what it was given, and the files stay as they are.
            try {
                EXPECT_EQ(SectionsOf(f), m_after) << label;
            } catch (const nex_Exception& e) {
                ADD_FAILURE() << label << ": the object no longer reads: " << e.UserReport().c_str();
            }
            container = Snapshot(m_path);
            saveFile = Snapshot(savePath);
            if (threw && saveFile && !m_lockChecked) {
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
            EXPECT_TRUE(Holds(m_path, m_after)) << label << ": the retry";
            EXPECT_FALSE(fs::exists(savePath)) << label << ": the retry";
        }
        // Back to the files as the failure left them, the object gone.
        PutBack(m_path, container);
        PutBack(savePath, saveFile);
        if (!threw) {
            EXPECT_TRUE(Holds(m_path, m_after)) << label << ": no failure, no new contents";
            return true;
        }
        const bool kept = message.find("\"zulutil msf recover " + m_path + "\"") != std::string::npos;
        if (kept) {
            EXPECT_NE(message.find("\"" + savePath + "\""), std::string::npos) << label << ": " << message;
            EXPECT_TRUE(Holds(savePath, m_after)) << label << ": the kept save file";
        } else {
            EXPECT_TRUE(deleteFault || !fs::exists(savePath)) << label << ": a save file left: " << message;
        }
        // The old contents, the new ones, or a restore that gives the new ones.
        const bool old = m_image.empty() ? !fs::exists(m_path) : Holds(m_path, m_shape.before);
        if (!old && !Holds(m_path, m_after)) {
            cow_String used;
            EXPECT_TRUE(kept) << label << ": the container lost its contents: " << message;
            EXPECT_EQ(utl_MultisectionFile::RestoreFromSaveFile(m_path.c_str(), used), utl_MultisectionFile::RestoreDone)
                << label;
            const bool restored = Holds(m_path, m_after);
            EXPECT_TRUE(restored) << label << ": the restore";
            EXPECT_FALSE(fs::exists(savePath)) << label << ": the restore";
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
    const uint32_t io = zul_test::kIoErrorCode;
    const std::vector<Fault> faults = {
        {utl_FileCallOpen, io, "open"},       {utl_FileCallRead, io, "read"},
        {utl_FileCallRead, 0, "short read"},  {utl_FileCallWrite, io, "write"},
        {utl_FileCallWrite, 0, "short write"}, {utl_FileCallSeek, io, "seek"},
        {utl_FileCallSize, io, "size"},       {utl_FileCallExtend, io, "extend"},
        {utl_FileCallExtend, zul_test::kDiskFullCode, "full"}, {utl_FileCallFlush, io, "flush"},
        {utl_FileCallClose, io, "close"},     {utl_FileCallDelete, io, "delete"},
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
// Runs `body` in a child process whose files may not grow past `fileSizeLimit` (SIGXFSZ
// ignored, so that a write past it fails with EFBIG); answers the child's exit status.
template <class F>
int InChildWithFileSizeLimit(rlim_t fileSizeLimit, F body)
{
    const pid_t child = ::fork();
    if (child == 0) {
        ::signal(SIGXFSZ, SIG_IGN);
        const struct rlimit limit = {fileSizeLimit, fileSizeLimit};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        ::_exit(body());
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 99;
}

// Real full disks, without faked calls. A file-size limit stops the save while it writes the
// save file, and Extend past it gives the full-disk error and keeps the old size. On a small
// tmpfs (root only), the container grows past the free space: the reservation fails before the
// container is touched. In every case the container keeps its old sections and no save file stays.
TEST(UtlMultisectionFile, AFullDiskStopsTheSaveBeforeTheContainer)
{
    const Sections before = {{"x", "abcdef"}, {"a", Pattern(1200000, 12)}};
    const std::string grown = Pattern(400000, 13);
    // Grows section x in a child process: 0 when the save fails with a full disk.
    auto saveFails = [&](const std::string& path, rlim_t fileSizeLimit) {
        return InChildWithFileSizeLimit(fileSizeLimit, [&] {
            try {
                utl_MultisectionFile f(path.c_str(), utl_FileAccessUpdate);
                f.setSectionData("x", grown.data(), int(grown.size()));
                f.saveChanges();
            } catch (const utl_FileExceptionFull&) {
                return 0;
            } catch (const nex_Exception& e) {
                std::fprintf(stderr, "%s\n", e.UserReport().c_str());
                return 2;
            }
            return 1;
        });
    };
    auto expectUntouched = [&](const std::string& directory, const std::string& path) {
        EXPECT_TRUE(Holds(path, before));
        EXPECT_EQ(FilesIn(directory), std::vector<std::string>{"c.msf"});
    };
    zul_test::TempDir dir;
    const std::string path = dir.File("c.msf");
    WriteContainer(path, before);
    EXPECT_EQ(saveFails(path, 1300000), 0);
    expectUntouched(dir.Path(), path);

    const std::string extended = dir.File("extended.dat");
    const int status = InChildWithFileSizeLimit(1 << 20, [&] {
        utl_File f(extended.c_str(), utl_FileAccessWrite);
        f.Write("abcd", 4);
        try {
            f.Extend(2 << 20);
        } catch (const utl_FileExceptionFull& e) {
            const bool text = e.UserReport() == ("*** Error: Free disk space depleted\nfile name: " + extended).c_str();
            return text && f.FileSize().Value() == 4 ? 0 : 2;
        }
        return 1;
    });
    EXPECT_EQ(status, 0) << "Extend past the file-size limit";

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
    WriteContainer(onTmpfs, before);
    EXPECT_EQ(saveFails(onTmpfs, RLIM_INFINITY), 0);
    expectUntouched(small.Path(), onTmpfs);
}
#endif

}  // namespace

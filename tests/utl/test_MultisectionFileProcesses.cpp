// Containers shared between processes: a writer killed at any moment of a save leaves either a
// valid container or a complete temporary save file beside it from which the library restores
// the container; a second writer is refused by the lock while readers still read; the lock names
// its owner, so that the lock of a killed writer is told stale and removed (by the library and by
// zulutil) while a live one is kept. The writers are real child processes, ended abruptly
// (SIGKILL, TerminateProcess).
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "uti/uti_Spawn.h"
#include "utl_MultisectionTestSupport.h"

namespace {

using namespace utl_test;
namespace fs = std::filesystem;

const int kSections = 16;
const int kSectionBytes = 1024 * 1024;

// kSections sections of kSectionBytes copies of the letter.
Sections Filled(char letter)
{
    Sections out;
    for (int i = 0; i < kSections; ++i)
        out.emplace_back("section" + std::to_string(i), std::string(kSectionBytes, letter));
    return out;
}

// 'A' or 'B' when the container holds Filled('A') or Filled('B'); 0 when it holds anything else
// or cannot be read.
char ContentsOf(const std::string& path)
{
    Sections now;
    if (ReadSections(path, now))
        for (char letter : {'A', 'B'})
            if (now == Filled(letter))
                return letter;
    return 0;
}

std::vector<std::string> SaveFilesBeside(const std::string& path)
{
    std::vector<std::string> found;
    const std::string name = fs::path(path).filename().string() + ".";
    for (const std::string& file : FilesIn(fs::path(path).parent_path().string()))
        if (file.compare(0, name.size(), name) == 0 && file.size() > 4 && file.compare(file.size() - 4, 4, ".tmp") == 0)
            found.push_back((fs::path(path).parent_path() / file).string());
    return found;
}

void StartChild(uti_Spawn& child, const std::vector<std::string>& args, int output = -1)
{
    uti_Redirection redirection(-1, output, -1);
    child.Start(zul_test::ChildPath().c_str(), zul_test::Arguments(args), redirection);
}

TEST(UtlMultisectionFileProcesses, AKilledSaveIsAlwaysRecoverable)
{
    zul_test::TempDir dir;
    const std::string path = dir.File("crash.msf");
    WriteContainer(path, Filled('A'));
    auto writeArgs = [&](char letter) {
        return std::vector<std::string>{"msf-write", path, std::string(1, letter), std::to_string(kSections), std::to_string(kSectionBytes)};
    };

    // One undisturbed save by a child process sets the span over which the kills are spread.
    const auto begin = std::chrono::steady_clock::now();
    {
        uti_Spawn child;
        StartChild(child, writeArgs('A'));
        ASSERT_EQ(child.Reap(0), 0);
    }
    const auto span = std::chrono::steady_clock::now() - begin;
    ASSERT_EQ(ContentsOf(path), 'A');

    const int kRounds = 24;
    int sawOld = 0, sawNew = 0, restored = 0;
    for (int round = 0; round < kRounds; ++round) {
        const char next = round % 2 ? 'A' : 'B';
        uti_Spawn child;
        StartChild(child, writeArgs(next));
        std::this_thread::sleep_for(span * (round + 1) / (kRounds - 2));  // from the start to past the end
        child.Kill();
        child.Reap(0);
        fs::remove(path + ".lock");  // a killed writer leaves its lock behind

        char letter = ContentsOf(path);
        const std::vector<std::string> saves = SaveFilesBeside(path);
        if (letter == 0) {
            ASSERT_EQ(saves.size(), 1u) << "round " << round << ": container broken and no save file";
            const char saved = ContentsOf(saves[0]);
            ASSERT_NE(saved, 0) << "round " << round << ": the save file is incomplete";
            cow_String used;
            ASSERT_EQ(utl_MultisectionFile::RestoreFromSaveFile(path.c_str(), used), utl_MultisectionFile::RestoreDone);
            EXPECT_EQ(used, saves[0].c_str());
            EXPECT_FALSE(fs::exists(saves[0])) << "the restore deletes the save file it used";
            letter = ContentsOf(path);
            ASSERT_EQ(letter, saved);
            ++restored;
        }
        (letter == next ? sawNew : sawOld)++;
        for (const std::string& save : saves)
            fs::remove(save);
    }
    RecordProperty("old", sawOld);
    RecordProperty("new", sawNew);
    RecordProperty("restored", restored);
}

// Runs zulutil with the arguments; its standard output and error go to `output`.
int RunTool(const std::vector<std::string>& args, const std::string& output)
{
    uti_Redirection redirection(-1, zul_test::OpenForWriting(output), 1);
    uti_Spawn tool;
    tool.Start(zul_test::ProgramPath("zulutil").c_str(), zul_test::Arguments(args), redirection);
    return tool.Reap(0);
}

TEST(UtlMultisectionFileProcesses, AKilledWritersLockIsToldStaleAndRemovedALiveOneIsKept)
{
    zul_test::TempDir dir;
    const std::string path = dir.File("shared.msf");
    const std::string lockPath = path + ".lock";
    const std::string said = dir.File("said.out");
    WriteContainer(path, Filled('A'));
    uti_Spawn holder;
    StartChild(holder, {"msf-hold", path}, zul_test::OpenForWriting(said));
    bool ready = false;
    for (int i = 0; i < 3000 && !ready; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        ready = zul_test::ReadFileBytes(said).find("ready") != std::string::npos;
    }
    ASSERT_TRUE(ready) << "the holder never took the lock";

    // A live owner: named in the lock file, refused by a second writer and by unlock.
    utl_MultisectionLockOwner owner;
    ASSERT_TRUE(utl_MultisectionFile::LockOwner(path.c_str(), owner));
    const utl_MultisectionLockOwner self = utl_MultisectionLockOwner::Current();
    EXPECT_TRUE(owner.known);
    EXPECT_NE(owner.processId, self.processId);
    EXPECT_EQ(owner.host, self.host);
    EXPECT_EQ(owner.State(), utl_MultisectionLockLive);
    const auto start = std::chrono::steady_clock::now();
    const std::string refusal =
        zul_test::ReportOf<nex_TextException>([&] { utl_MultisectionFile(path.c_str(), utl_FileAccessUpdate); });
    EXPECT_EQ(refusal, "\"" + path + "\": Cannot create the lock file.");
    RecordProperty("refusal_ms", static_cast<int>(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count() * 1000));
    EXPECT_EQ(ContentsOf(path), 'A') << "a reader still reads";
#ifdef ZUL_TEST_ZULUTIL
    EXPECT_EQ(RunTool({"msf", "unlock", path}, said), 1);
    EXPECT_NE(zul_test::ReadFileBytes(said).find("pid " + std::to_string(owner.processId)), std::string::npos)
        << "the refusal names the owner: " << zul_test::ReadFileBytes(said);
#endif
    EXPECT_EQ(utl_MultisectionFile::RemoveLock(path.c_str(), false, owner), utl_MultisectionUnlockRefused);
    ASSERT_TRUE(fs::exists(lockPath)) << "a live owner's lock was removed";

    // Killed, the same owner is stale; unlock removes its lock and the next writer gets in.
    holder.Kill();
    holder.Reap(0);
    utl_MultisectionLockOwner after;
    ASSERT_TRUE(utl_MultisectionFile::LockOwner(path.c_str(), after));
    EXPECT_EQ(after.processId, owner.processId);
    EXPECT_EQ(after.State(), utl_MultisectionLockStale);
#ifdef ZUL_TEST_ZULUTIL
    EXPECT_EQ(RunTool({"msf", "list", path}, said), 0);
    EXPECT_NE(zul_test::ReadFileBytes(said).find("no longer runs"), std::string::npos) << zul_test::ReadFileBytes(said);
    EXPECT_EQ(RunTool({"msf", "unlock", path}, said), 0) << zul_test::ReadFileBytes(said);
#else
    EXPECT_EQ(utl_MultisectionFile::RemoveLock(path.c_str(), false, after), utl_MultisectionUnlockRemoved);
#endif
    EXPECT_FALSE(fs::exists(lockPath));
    WriteContainer(path, Filled('B'));
    EXPECT_EQ(ContentsOf(path), 'B');
}

}  // namespace

// Containers shared between processes: a writer killed at any moment of a save leaves either a
// valid container or a complete temporary save file beside it from which the library restores
// the container; a second writer is refused by the lock while readers still read. The writers are
// real child processes, ended abruptly (SIGKILL, TerminateProcess).
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "uti/uti_Spawn.h"
#include "utl/utl_MultisectionFile.h"
#include "zul_SpawnTestSupport.h"
#include "zul_TestSupport.h"

namespace {

namespace fs = std::filesystem;

const int kSections = 16;
const int kSectionBytes = 1024 * 1024;

// Every section holds kSectionBytes copies of one letter; answers that letter, or 0 when the
// container cannot be read or any section fails its check.
char ContentsOf(const std::string& path)
{
    try {
        utl_MultisectionFile f(path.c_str(), utl_FileAccessRead);
        if (f.SectionCount() != kSections)
            return 0;
        std::string data(kSectionBytes, '\0');
        char letter = 0;
        for (int i = 0; i < kSections; ++i) {
            const cow_String name = f.SectionName(i);
            if (f.getSectionLength(name) != kSectionBytes)
                return 0;
            f.getSectionData(name, &data[0]);
            if (data.find_first_not_of(data[0]) != std::string::npos || (letter && data[0] != letter))
                return 0;
            letter = data[0];
        }
        return letter;
    } catch (const nex_Exception&) {
        return 0;
    }
}

void WriteAll(const std::string& path, char letter)
{
    utl_MultisectionFile f(path.c_str(), utl_FileAccessWrite);
    const std::string data(kSectionBytes, letter);
    for (int i = 0; i < kSections; ++i)
        f.setSectionData(("section" + std::to_string(i)).c_str(), data.data(), kSectionBytes);
    f.saveChanges();
}

std::vector<std::string> SaveFilesBeside(const std::string& path)
{
    std::vector<std::string> found;
    const std::string name = fs::path(path).filename().string() + ".";
    for (const fs::directory_entry& e : fs::directory_iterator(fs::path(path).parent_path())) {
        const std::string file = e.path().filename().string();
        if (file.compare(0, name.size(), name) == 0 && file.size() > 4 && file.compare(file.size() - 4, 4, ".tmp") == 0)
            found.push_back(e.path().string());
    }
    return found;
}

void StartChild(uti_Spawn& child, const std::vector<std::string>& args, int output = -1)
{
    uti_Redirection redirection(-1, output, -1);
    child.Start(zul_test::ChildPath().c_str(), zul_test::Arguments(args), redirection);
}

TEST(MultisectionProcesses, AKilledSaveIsAlwaysRecoverable)
{
    zul_test::TempDir dir;
    const std::string path = dir.File("crash.msf");
    WriteAll(path, 'A');
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
    EXPECT_EQ(sawOld + sawNew, kRounds);
}

TEST(MultisectionProcesses, ASecondWriterIsRefusedByTheLockButAReaderReads)
{
    zul_test::TempDir dir;
    const std::string path = dir.File("shared.msf");
    WriteAll(path, 'A');
    const std::string said = dir.File("holder.out");
    uti_Spawn holder;
    StartChild(holder, {"msf-hold", path}, zul_test::OpenForWriting(said));
    bool ready = false;
    for (int i = 0; i < 3000 && !ready; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        ready = zul_test::ReadFileBytes(said).find("ready") != std::string::npos;
    }
    ASSERT_TRUE(ready) << "the holder never took the lock";

    const auto start = std::chrono::steady_clock::now();
    try {
        utl_MultisectionFile second(path.c_str(), utl_FileAccessUpdate);
        ADD_FAILURE() << "a second writer got in";
    } catch (const nex_TextException& e) {
        EXPECT_TRUE(e.UserReport().EndsWith("Cannot create the lock file.")) << e.UserReport().c_str();
    }
    const double waited = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    RecordProperty("refusal_ms", static_cast<int>(waited * 1000));
    EXPECT_EQ(ContentsOf(path), 'A') << "a reader still reads";
    holder.Kill();
    holder.Reap(0);
}

}  // namespace

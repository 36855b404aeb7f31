// A writer killed at any moment of a save leaves either a valid container or a complete
// temporary file beside it from which the container can be restored.
#include <gtest/gtest.h>

#if !defined(_WIN32)

#include <csignal>
#include <filesystem>
#include <string>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include "utl/utl_MultisectionFile.h"
#include "zul_TestSupport.h"

namespace {

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

void WriteAll(const std::string& path, char letter, utl_FileAccess mode)
{
    utl_MultisectionFile f(path.c_str(), mode);
    const std::string data(kSectionBytes, letter);
    for (int i = 0; i < kSections; ++i)
        f.setSectionData(("section" + std::to_string(i)).c_str(), data.data(), kSectionBytes);
    f.saveChanges();
}

TEST(UtlMultisectionCrash, KilledSaveIsAlwaysRecoverable)
{
    zul_test::TempDir dir;
    const std::string path = dir.File("crash.msf");
    WriteAll(path, 'A', utl_FileAccessWrite);

    int sawOld = 0, sawNew = 0, restored = 0;
    for (int round = 0; round < 40; ++round) {
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            WriteAll(path, round % 2 ? 'A' : 'B', utl_FileAccessUpdate);
            _exit(0);
        }
        struct timespec pause = {0, static_cast<long>(round) * 1000000L};  // 0 to 40 ms into the save
        nanosleep(&pause, nullptr);
        kill(child, SIGKILL);
        int status = 0;
        waitpid(child, &status, 0);
        std::filesystem::remove(path + ".lock");  // a killed writer leaves its lock behind

        const std::string temp = path + "." + std::to_string(child) + ".tmp";
        char letter = ContentsOf(path);
        if (letter == 0) {
            ASSERT_TRUE(std::filesystem::exists(temp)) << "round " << round << ": container broken and no save file";
            const char saved = ContentsOf(temp);
            ASSERT_NE(saved, 0) << "round " << round << ": the save file is incomplete";
            std::filesystem::copy_file(temp, path, std::filesystem::copy_options::overwrite_existing);
            letter = ContentsOf(path);
            ASSERT_EQ(letter, saved);
            ++restored;
        }
        (letter == (round % 2 ? 'A' : 'B') ? sawNew : sawOld)++;
        std::filesystem::remove(temp);
    }
    RecordProperty("old", sawOld);
    RecordProperty("new", sawNew);
    RecordProperty("restored", restored);
    EXPECT_GT(sawOld + sawNew, 0);
}

TEST(UtlMultisectionCrash, ASecondProcessCannotWriteButCanRead)
{
    zul_test::TempDir dir;
    const std::string path = dir.File("shared.msf");
    WriteAll(path, 'A', utl_FileAccessWrite);
    int ready[2];
    ASSERT_EQ(pipe(ready), 0);
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        utl_MultisectionFile writer(path.c_str(), utl_FileAccessUpdate);
        const char go = 1;
        (void)!write(ready[1], &go, 1);
        pause();  // holds the lock until killed
        _exit(0);
    }
    char go = 0;
    ASSERT_EQ(read(ready[0], &go, 1), 1);
    try {
        utl_MultisectionFile second(path.c_str(), utl_FileAccessUpdate);
        ADD_FAILURE() << "a second writer got in";
    } catch (const nex_TextException& e) {
        EXPECT_TRUE(e.UserReport().EndsWith("Cannot create the lock file."));
    }
    EXPECT_EQ(ContentsOf(path), 'A') << "a reader still reads";
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    close(ready[0]);
    close(ready[1]);
}

}  // namespace

#endif

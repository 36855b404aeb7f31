// The owner line of a container's lock, and which owners count as stale, on locks written by
// this process and by hand. (Killed and live writers in other processes:
// test_MultisectionFileProcesses.cpp.)
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "utl_MultisectionTestSupport.h"

namespace {

namespace fs = std::filesystem;

TEST(UtlMultisectionLockOwner, OnlyAnOwnerKnownToHaveEndedOnThisHostIsStale)
{
    zul_test::TempDir dir;
    const std::string path = dir.File("c.msf");
    const std::string lockPath = path + ".lock";
    const utl_MultisectionLockOwner self = utl_MultisectionLockOwner::Current();
    ASSERT_FALSE(self.host.IsEmpty());
    ASSERT_FALSE(self.started.IsEmpty());
    utl_MultisectionLockOwner owner;
    EXPECT_FALSE(utl_MultisectionFile::LockOwner(path.c_str(), owner));
    EXPECT_EQ(utl_MultisectionFile::RemoveLock(path.c_str(), false, owner), utl_MultisectionUnlockNotLocked);
    {
        utl_MultisectionFile writer(path.c_str(), utl_FileAccessWrite);
        EXPECT_EQ(zul_test::ReadFileBytes(lockPath), "pid=" + std::to_string(self.processId) + " host=" + self.host.c_str() +
                                                         " started=" + self.started.c_str() + "\n");
        ASSERT_TRUE(utl_MultisectionFile::LockOwner(path.c_str(), owner));
        EXPECT_EQ(owner.State(), utl_MultisectionLockLive);
        EXPECT_EQ(utl_MultisectionFile::RemoveLock(path.c_str(), false, owner), utl_MultisectionUnlockRefused);
        writer.saveChanges();
    }
    EXPECT_FALSE(fs::exists(lockPath));

    const std::string pid = std::to_string(self.processId), host = self.host.c_str(), started = self.started.c_str();
    struct Case {
        std::string text;
        utl_MultisectionLockStateEnm state;
    } cases[] = {
        {"pid=" + pid + " host=" + host + " started=" + started + "\r\nmore\n", utl_MultisectionLockLive},
        {"extra=1 started=" + started + " host=" + host + " pid=" + pid, utl_MultisectionLockLive},
        // The id now belongs to a process that started at another time.
        {"pid=" + pid + " host=" + host + " started=1" + started + "\n", utl_MultisectionLockStale},
        // A start time this platform cannot have written: whether it runs cannot be told.
        {"pid=" + pid + " host=" + host + " started=later\n", utl_MultisectionLockLive},
        {"pid=" + pid + " host=" + host + "x started=1" + started + "\n", utl_MultisectionLockOtherHost},
        {"pid=" + pid + " host= started=1" + started + "\n", utl_MultisectionLockOtherHost},
        {"", utl_MultisectionLockUnknownOwner},
        {"pid=0 host=" + host + " started=1\n", utl_MultisectionLockUnknownOwner},
        {"pid=4294967296 host=" + host + " started=1\n", utl_MultisectionLockUnknownOwner},
        {"pid=12a host=" + host + " started=1\n", utl_MultisectionLockUnknownOwner},
        {"pid=" + pid + " host=" + host + "\n", utl_MultisectionLockUnknownOwner},
        {"pid=" + pid + "  host=" + host + " started=1\n", utl_MultisectionLockUnknownOwner},
        {"\npid=" + pid + " host=" + host + " started=1" + started, utl_MultisectionLockUnknownOwner},
    };
    for (const Case& c : cases) {
        zul_test::WriteFileBytes(lockPath, c.text);
        ASSERT_TRUE(utl_MultisectionFile::LockOwner(path.c_str(), owner)) << c.text;
        EXPECT_EQ(owner.State(), c.state) << c.text;
        EXPECT_EQ(owner.known, c.state != utl_MultisectionLockUnknownOwner) << c.text;
        const bool stale = c.state == utl_MultisectionLockStale;
        EXPECT_EQ(utl_MultisectionFile::RemoveLock(path.c_str(), false, owner),
                  stale ? utl_MultisectionUnlockRemoved : utl_MultisectionUnlockRefused) << c.text;
        EXPECT_EQ(fs::exists(lockPath), !stale) << c.text;
        if (!stale) {
            EXPECT_EQ(utl_MultisectionFile::RemoveLock(path.c_str(), true, owner), utl_MultisectionUnlockRemoved);
            EXPECT_FALSE(fs::exists(lockPath));
        }
    }
}

}  // namespace

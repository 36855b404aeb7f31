// utl_flock: operation codes, and a lock that excludes another process (the helper child).
#include <gtest/gtest.h>

#include <cerrno>

#if defined(_WIN32)
#include <io.h>
#else
#include <unistd.h>
#endif

#include "uti/uti_Spawn.h"
#include "utl/utl_FileLock.h"
#include "zul_SpawnTestSupport.h"
#include "zul_TestSupport.h"

namespace {

int ChildLocks(const std::string& path, int operation)
{
    uti_Redirection inherit;
    uti_Spawn child;
    child.Start(zul_test::ChildPath().c_str(), zul_test::Arguments({"lock", path, std::to_string(operation)}), inherit);
    return child.Reap(0);
}

void CloseDescriptor(int fd)
{
#if defined(_WIN32)
    _close(fd);
#else
    close(fd);
#endif
}

TEST(UtlFlock, UnknownOperationsAreRefused)
{
    zul_test::TempDir dir;
    zul_test::WriteFileBytes(dir.File("f"), "data");
    const int fd = zul_test::OpenForWriting(dir.File("f"));
    for (int op : {0, 3, 4, 7, 9, 12}) {
        errno = 0;
        EXPECT_EQ(utl_flock(fd, op), -1) << op;
        EXPECT_EQ(errno, 22) << op;
    }
    EXPECT_EQ(utl_flock(-1, utl_FlockExclusive | utl_FlockNoWait), -1);
    EXPECT_FALSE(utl_noInheritFile(-1));
    EXPECT_FALSE(utl_noInheritSocket(-1));
    EXPECT_TRUE(utl_noInheritFile(fd));
    CloseDescriptor(fd);
}

TEST(UtlFlock, ExclusiveLockExcludesAnotherProcess)
{
    zul_test::TempDir dir;
    zul_test::WriteFileBytes(dir.File("locked"), "data");
    const int fd = zul_test::OpenForWriting(dir.File("locked"));
    ASSERT_GE(fd, 0);
    ASSERT_EQ(utl_flock(fd, utl_FlockExclusive), 0);
    EXPECT_EQ(ChildLocks(dir.File("locked"), utl_FlockExclusive | utl_FlockNoWait), 1);
    EXPECT_EQ(ChildLocks(dir.File("locked"), utl_FlockShared | utl_FlockNoWait), 1);
    ASSERT_EQ(utl_flock(fd, utl_FlockUnlock), 0);
    EXPECT_EQ(ChildLocks(dir.File("locked"), utl_FlockExclusive | utl_FlockNoWait), 0);
    CloseDescriptor(fd);
}

}  // namespace

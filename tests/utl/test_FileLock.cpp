// utl_flock: operation codes, and a lock that excludes another process (the helper child).
#include <gtest/gtest.h>

#include <cerrno>
#include <fcntl.h>

#include "uti/uti_Spawn.h"
#include "utl/utl_FileLock.h"
#include "zul_TestSupport.h"

namespace {

int ChildLocks(const std::string& path, int operation)
{
    uti_Redirection inherit;
    uti_Spawn child;
    child.Start(zul_test::ChildPath().c_str(), zul_test::Arguments({"lock", path, std::to_string(operation)}), inherit);
    return child.Reap(0);
}

TEST(UtlFlock, UnknownOperationsAreRefused)
{
    zul_test::TempDir dir;
    zul_test::WriteFileBytes(dir.File("f"), "data");
    const zul_test::Descriptor file(dir.File("f"), O_RDWR);
    for (int op : {0, 3, 4, 7, 9, 12}) {
        errno = 0;
        EXPECT_EQ(utl_flock(file.fd(), op), -1) << op;
        EXPECT_EQ(errno, EINVAL) << op;
    }
    EXPECT_EQ(utl_flock(-1, utl_FlockExclusive | utl_FlockNoWait), -1);
    EXPECT_FALSE(utl_noInheritFile(-1));
    EXPECT_FALSE(utl_noInheritSocket(-1));
    EXPECT_TRUE(utl_noInheritFile(file.fd()));
}

TEST(UtlFlock, ExclusiveLockExcludesAnotherProcess)
{
    zul_test::TempDir dir;
    const std::string path = dir.File("locked");
    zul_test::WriteFileBytes(path, "data");
    const zul_test::Descriptor file(path, O_RDWR);
    ASSERT_EQ(utl_flock(file.fd(), utl_FlockExclusive), 0);
    EXPECT_EQ(ChildLocks(path, utl_FlockExclusive | utl_FlockNoWait), 1);
    EXPECT_EQ(ChildLocks(path, utl_FlockShared | utl_FlockNoWait), 1);
    ASSERT_EQ(utl_flock(file.fd(), utl_FlockUnlock), 0);
    EXPECT_EQ(ChildLocks(path, utl_FlockExclusive | utl_FlockNoWait), 0);
}

}  // namespace

// Test main for suites that use the library as a client does: brought up once
// before the first test and taken down after the last.
#include <gtest/gtest.h>

#include "uti/uti_BasicUtils.h"

int main(int argc, char** argv)
{
    ::testing::InitGoogleTest(&argc, argv);
    int count = 0;
    UTI_BasicUtils_initialize(count);
    const int rc = RUN_ALL_TESTS();
    UTI_BasicUtils_finalize(count);
    return rc;
}

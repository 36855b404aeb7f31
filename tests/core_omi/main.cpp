// Runs the suite with only the lower library brought up.
#include <gtest/gtest.h>

#include "omi/omi_CoreUtils.h"

int main(int argc, char** argv)
{
    ::testing::InitGoogleTest(&argc, argv);
    int count = 0;
    UTI_CoreUtils_initialize(count);
    const int rc = RUN_ALL_TESTS();
    UTI_CoreUtils_finalize(count);
    return rc;
}

// Host facts: formats and consistency with what the system reports by other means.
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <string>
#include <thread>

#include "utl/utl_HostInfo.h"

namespace {

TEST(UtlHostInfo, DateAndTimeFormats)
{
    const std::string date = utl_getDate().c_str();
    ASSERT_EQ(date.size(), 11u) << date;  // dd-Mon-yyyy
    EXPECT_EQ(date[2], '-');
    EXPECT_EQ(date[6], '-');
    EXPECT_NE(std::string("JanFebMarAprMayJunJulAugSepOctNovDec").find(date.substr(3, 3)), std::string::npos);
    const std::string time = utl_getTime().c_str();
    ASSERT_EQ(time.size(), 8u) << time;
    EXPECT_EQ(time[2], ':');
    EXPECT_EQ(time[5], ':');
}

TEST(UtlHostInfo, ProcessAndHost)
{
    EXPECT_EQ(utl_getcwd().c_str(), std::filesystem::current_path().string());
    EXPECT_FALSE(utl_getHostName().IsEmpty());
    EXPECT_FALSE(utl_getUserName().IsEmpty());
#if defined(_WIN32)
    EXPECT_STREQ(utl_getPlatform().c_str(), "win86_64");
#else
    EXPECT_STREQ(utl_getPlatform().c_str(), "lnx86_64");
#endif
    EXPECT_EQ(utl_getNumberCpus(), static_cast<int>(std::thread::hardware_concurrency()));
    const int mhz = utl_getCpusClockSpeed();
    EXPECT_TRUE(mhz == -1 || mhz > 0) << mhz << ": a speed, or -1 when the system does not tell";
    EXPECT_EQ(utl_sleep(1), 1);
}

// The vendor string and the flags read from it agree; the model has a name.
TEST(UtlHostInfo, ProcessorIdentification)
{
    char vendor[16];
    std::memset(vendor, 'x', sizeof(vendor));
    utl_getVendorId(vendor);
    EXPECT_EQ(std::strlen(vendor), 12u);
    EXPECT_EQ(utl_isIntelCore(), std::strcmp(vendor, "GenuineIntel") == 0 ? 1 : 0);
    EXPECT_EQ(utl_isAMDCore(), std::strcmp(vendor, "AuthenticAMD") == 0 ? 1 : 0);
    char model[49] = {};
    utl_getProcessorModel(model);
    EXPECT_GT(std::strlen(model), 0u);
    EXPECT_EQ(utl_hasSSE2support(), 1) << "every x86-64 processor has SSE2";
}

}  // namespace

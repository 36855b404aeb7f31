// The counting rule of module start-up and shut-down, and the fixed order of the chain.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "nex/nex_OutOfMemoryException.h"
#include "nex/nex_TypeTable.h"
#include "omi/omi_CoreUtils.h"
#include "typ/typ_DebugFlags.h"
#include "typ/typ_Module.h"
#include "uti/uti_BasicUtils.h"
#include "cow/cow_Initialize.h"
#include "nex/nex_Initialize.h"
#include "typ/typ_Initialize.h"

namespace {

std::vector<std::string> g_events;

void Record(const char* module, bool up)
{
    g_events.push_back(std::string(up ? "+" : "-") + module);
}

const std::vector<std::string> kOrder = {"typ", "thr", "pnt", "mrm", "bio", "cow", "cls", "nex", "rgx", "pdc", "utl", "uti"};

class Lifecycle : public ::testing::Test {
protected:
    void SetUp() override
    {
        g_events.clear();
        typ_SetModuleObserver(&Record);
    }
    void TearDown() override { typ_SetModuleObserver(nullptr); }
};

// Runs first on purpose: the process has not brought the library up yet.
TEST_F(Lifecycle, FirstInitializeBringsEverythingUpInOrderAndFinalizeReverses)
{
    int count = 0;
    UTI_BasicUtils_initialize(count);
    EXPECT_EQ(count, 14) << "the library's own count, twelve modules and the lower library";
    EXPECT_EQ(UTI_CoreUtils_useCount(), 1);

    std::vector<std::string> expectedUp;
    for (const std::string& m : kOrder)
        expectedUp.push_back("+" + m);
    expectedUp.push_back("+ZULFNDUTI_BasicUtils");
    EXPECT_EQ(g_events, expectedUp);

    EXPECT_STREQ(typ_ArchCompTable::GetName(0x1F0002u), "nex_TextException");
    ASSERT_NE(nex_OutOfMemoryException::GetOutOfMemoryMsgGeneric(), nullptr);

    const int up = count;
    UTI_BasicUtils_initialize(count);  // nested: counted only
    EXPECT_EQ(count, up);
    g_events.clear();
    UTI_BasicUtils_finalize(count);
    EXPECT_TRUE(g_events.empty()) << "two initializes and one finalize tear nothing down";
    EXPECT_EQ(count, up);

    UTI_BasicUtils_finalize(count);
    EXPECT_EQ(count, 0);
    std::vector<std::string> expectedDown = {"-ZULFNDUTI_BasicUtils"};
    for (auto it = kOrder.rbegin(); it != kOrder.rend(); ++it)
        expectedDown.push_back("-" + *it);
    EXPECT_EQ(g_events, expectedDown);
    EXPECT_FALSE(typ_ArchCompTable::Exists());
    EXPECT_EQ(nex_OutOfMemoryException::GetOutOfMemoryMsgGeneric(), nullptr);
}

TEST_F(Lifecycle, SurplusFinalizeGoesBelowZeroAndTheNextInitializeOnlyCountsBack)
{
    int count = 0;
    UTI_BasicUtils_finalize(count);  // without an initialize
    EXPECT_EQ(count, 0);
    EXPECT_TRUE(g_events.empty());

    UTI_BasicUtils_initialize(count);  // back to 0: does nothing
    EXPECT_EQ(count, 0);
    EXPECT_TRUE(g_events.empty());
    EXPECT_FALSE(typ_ArchCompTable::Exists());

    UTI_BasicUtils_initialize(count);  // passes from 0: starts up
    EXPECT_GT(count, 0);
    EXPECT_TRUE(typ_ArchCompTable::Exists());
    UTI_BasicUtils_finalize(count);
    EXPECT_EQ(count, 0);
}

TEST_F(Lifecycle, AModuleBroughtUpAloneIsOnlyCountedByTheChain)
{
    int count = 0;
    typ_initialize(count);
    cow_initialize(count);
    EXPECT_EQ(count, 2);
    g_events.clear();

    int chain = 0;
    UTI_BasicUtils_initialize(chain);
    for (const std::string& e : g_events) {
        EXPECT_NE(e, "+typ");
        EXPECT_NE(e, "+cow");
    }
    UTI_BasicUtils_finalize(chain);
    EXPECT_TRUE(typ_ArchCompTable::Exists()) << "typ is still held by its own initialize";

    cow_finalize(count);
    typ_finalize(count);
    EXPECT_EQ(count, 0);
    EXPECT_FALSE(typ_ArchCompTable::Exists());
}

TEST_F(Lifecycle, ModuleCountsAreNotClamped)
{
    int count = 0;
    nex_finalize(count);
    nex_finalize(count);
    EXPECT_EQ(count, 0);
    nex_initialize(count);
    nex_initialize(count);
    EXPECT_EQ(count, 0) << "two initializes only bring the count back to 0";
    nex_initialize(count);
    EXPECT_EQ(count, 1);
    nex_finalize(count);
    EXPECT_EQ(count, 0);
}

}  // namespace

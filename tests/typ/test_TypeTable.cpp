// Type names, parent walks, checked downcasts and debug flags.
#include <gtest/gtest.h>

#include "nex/nex_Exception.h"
#include "nex/nex_TypeTable.h"
#include "typ/typ_DebugFlags.h"

namespace {

// A test module in a free slot: class 1 derives from typ_obj, class 2 from class 1, class 3 is of
// kind 7 (not compatible with typ_any) with parent class 1, class 4 is a kind-7 child of class 3.
const unsigned kModule = 900;
const unsigned kBase = (kModule << 16) | 1;
const unsigned kDerived = (kModule << 16) | 2;
const unsigned kOdd = (kModule << 16) | 3;
const unsigned kOddChild = (kModule << 16) | 4;
const typ_Entry kTestTypes[] = {
    {0, typ_none, "test"},
    {1, typ_obj, "test_Base"},
    {1, kBase, "test_Derived"},
    {7, kBase, "test_Odd"},
    {7, kOdd, "test_OddChild"},
};

class TypeTable : public ::testing::Test {
protected:
    static void SetUpTestSuite()
    {
        typ_ArchCompTable::InsertEntry(kModule, typ_ArchCompEntry(kTestTypes, 5));
    }
};

TEST_F(TypeTable, NamesOfRegisteredBuiltInAndUnresolvableIds)
{
    EXPECT_STREQ(typ_ArchCompTable::GetName(0x1F0001u), "nex_Exception");
    EXPECT_STREQ(typ_ArchCompTable::GetName(0x1F0009u), "nex_OutOfMemoryException");
    EXPECT_STREQ(typ_ArchCompTable::GetName(2), "typ_any");
    EXPECT_STREQ(typ_ArchCompTable::GetName(4), "typ_ado");
    EXPECT_STREQ(typ_ArchCompTable::GetName(0x5), "INVALID FACILITY");
    EXPECT_STREQ(typ_ArchCompTable::GetName(0x04000001u), "INVALID FACILITY");  // module 1024
    EXPECT_STREQ(typ_ArchCompTable::GetName(0x1F1001u), "INVALID TYPE");       // bit 0x1000 set
    EXPECT_STREQ(typ_ArchCompTable::GetName(0x1F0010u), "INVALID TYPE");       // past the list
    EXPECT_STREQ(typ_ArchCompTable::GetName(0x03E70001u), "MISSING TYPE TABLES");  // module 999
    EXPECT_STREQ(typ_ArchCompTable::GetName(kDerived), "test_Derived");
}

TEST_F(TypeTable, ParentWalksAndKindSevenTypesAreNotDerivedFromAny)
{
    EXPECT_TRUE(typ_ArchCompTable::IsParent(kDerived, kBase));
    EXPECT_TRUE(typ_ArchCompTable::IsParent(kDerived, kDerived));
    EXPECT_FALSE(typ_ArchCompTable::IsParent(kBase, kDerived));
    EXPECT_TRUE(typ_ArchCompTable::IsParent(kDerived, typ_any));
    EXPECT_TRUE(typ_ArchCompTable::IsParent(kDerived, typ_obj));
    EXPECT_TRUE(typ_ArchCompTable::IsParent(0x1F0002u, 0x1F0001u));
    EXPECT_FALSE(typ_ArchCompTable::IsParent(0x1F0002u, 0x1F0003u));
    EXPECT_FALSE(typ_ArchCompTable::IsParent(kOdd, typ_any));
    EXPECT_TRUE(typ_ArchCompTable::IsParent(kOdd, kBase));
    EXPECT_TRUE(typ_ArchCompTable::IsParent(kOddChild, kBase));
    EXPECT_FALSE(typ_ArchCompTable::IsParent(kOddChild, typ_any));
    // typ_obj counts only when the walk reaches it as a parent.
    EXPECT_TRUE(typ_ArchCompTable::IsParent(kOdd, typ_obj));
    EXPECT_FALSE(typ_ArchCompTable::IsParent(typ_obj, kBase)) << "the walk stops at typ_obj";
}

TEST_F(TypeTable, CheckedDowncasts)
{
    EXPECT_TRUE(nex_canDynamicCastPtr(0x1F0001u, 0x1F0002u));
    EXPECT_FALSE(nex_canDynamicCastPtr(0x1F0002u, 0x1F0001u));
    EXPECT_TRUE(nex_canDynamicCastRef(kBase, kDerived, "x", 1));
    try {
        nex_canDynamicCastRef(0x1F0002u, 0x1F0004u, "nex/impl/nex_Demo", 7);
        FAIL() << "a bad cast did not throw";
    } catch (const nex_BadCastException& e) {
        EXPECT_EQ(e.UserReport(), "Bad Cast: From `nex_AssertException' To 'nex_TextException'.");
        EXPECT_EQ(e.File(), "nex/impl/nex_Demo");
        EXPECT_EQ(e.Line(), 7);
    }
}

class DebugFlags : public ::testing::Test {
protected:
    void SetUp() override
    {
        typ_DebugFlags::SetDebugFlags("nex", 0);
        typ_DebugFlags::SetDebugFlags("cls", 0);
    }
};

TEST_F(DebugFlags, FacilitiesOfTheLibraryAreKnown)
{
    EXPECT_STREQ(typ_DebugFlags::GetDebugFacilityName(2), "uti");
    EXPECT_STREQ(typ_DebugFlags::GetDebugFacilityName(3), "utl");
    EXPECT_STREQ(typ_DebugFlags::GetDebugFacilityName(26), "cio");
    EXPECT_STREQ(typ_DebugFlags::GetDebugFacilityName(32), "nexT");
    EXPECT_EQ(typ_DebugFlags::GetDebugFacilityName(1023), nullptr);
    EXPECT_TRUE(typ_DebugFlags::SetDebugFlags("utl", 3));
    EXPECT_EQ(typ_DebugFlags::GetDebugFlags(3u), 3);
    EXPECT_EQ(typ_DebugFlags::GetDebugFlags("utl"), 3);
    typ_DebugFlags::SetDebugFlags("utl", 0);
    EXPECT_FALSE(typ_DebugFlags::SetDebugFlags("UTL", 1)) << "names are case-sensitive";
    EXPECT_EQ(typ_DebugFlags::GetDebugFlags("bogus"), 0);
}

TEST_F(DebugFlags, UnknownNamesAndMalformedItems)
{
    EXPECT_FALSE(typ_DebugFlags::ParseDebugFlags("nex=2,bogus=1,cls=3"));  // the known ones are still set
    EXPECT_EQ(typ_DebugFlags::GetDebugFlags("nex"), 2);
    EXPECT_EQ(typ_DebugFlags::GetDebugFlags("cls"), 3);
    typ_DebugFlags::SetDebugFlags("nex", 0);
    EXPECT_TRUE(typ_DebugFlags::ParseDebugFlags(""));
    EXPECT_FALSE(typ_DebugFlags::ParseDebugFlags("nex"));
    EXPECT_EQ(typ_DebugFlags::GetDebugFlags("nex"), 0);
    EXPECT_FALSE(typ_DebugFlags::ParseDebugFlags("nex,cls=1"));
    EXPECT_FALSE(typ_DebugFlags::ParseDebugFlags("nex=-1"));
    EXPECT_FALSE(typ_DebugFlags::ParseDebugFlags("nex=1x"));

    typ_DebugFlags::SetDebugFlags("nex", 5);
    EXPECT_TRUE(typ_DebugFlags::ParseDebugFlags("nex="));
    EXPECT_EQ(typ_DebugFlags::GetDebugFlags("nex"), 0) << "an empty number counts as 0";
}

TEST_F(DebugFlags, OverlongFieldsAreRejectedSafely)
{
    const std::string longName(200, 'n');
    EXPECT_FALSE(typ_DebugFlags::ParseDebugFlags((longName + "=1").c_str()));
    const std::string longNumber = "nex=" + std::string(200, '7');
    EXPECT_FALSE(typ_DebugFlags::ParseDebugFlags(longNumber.c_str()));
    EXPECT_FALSE(typ_DebugFlags::ParseDebugFlags(("nex=" + std::string(31, '0') + "4").c_str()));
    EXPECT_TRUE(typ_DebugFlags::ParseDebugFlags(("nex=" + std::string(30, '0') + "4").c_str()));
    EXPECT_EQ(typ_DebugFlags::GetDebugFlags("nex"), 4);
}

}  // namespace

// The class registry: versions, lookups, first registration wins, the repeat warning, hierarchy
// walks, destruction through the nearest destructor function, metadata lists and the metadata
// registrar's flag bits.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cls/cls_ClassRegistrar.h"
#include "cls/cls_MetadataRegistrar.h"
#include "zul_TestSupport.h"

namespace {

using zul_test::SetEnvironment;

const unsigned kRoot = 1;

TEST(ClsRegistrar, VersionsAreKeptAndWalkedInOrder)
{
    cls_ClassRegistrar r;
    const unsigned id = 0x500001;
    r.CreateClassMD("demo", id, 1, nullptr, kRoot);
    r.CreateClassMD("demo", id, 3, nullptr, kRoot);
    r.CreateClassMD("demo", id, 2, nullptr, kRoot);
    r.CreateClassMD("other", id + 1, 5, nullptr, kRoot);  // versions of another class never count

    EXPECT_EQ(r.ConstGet(id).GetVersion(), 3);
    EXPECT_EQ(r.GetLastClassVersionNumber(id), 3);
    EXPECT_EQ(r.VersionCount(), 4);
    EXPECT_EQ(r.ClassCount(), 2);
    for (int v = 1; v <= 3; ++v)
        EXPECT_EQ(r.GetClassMetadata(id, v).GetVersion(), v);

    EXPECT_EQ(r.GetFirstClassVersionNumberGREQ(id, 2), 2);
    EXPECT_EQ(r.GetFirstClassVersionNumberGREQ(id, -7), 1);
    EXPECT_EQ(r.GetFirstClassVersionNumberGREQ(id, 4), -1);
    EXPECT_EQ(r.GetPreviousClassVersionNumber(id, 2), 1);
    EXPECT_EQ(r.GetPreviousClassVersionNumber(id, 9), 3);
    EXPECT_EQ(r.GetPreviousClassVersionNumber(id, 1), -1);
}

TEST(ClsRegistrar, UnknownIdsAndNamesAnswerTheDefaultsAndNamesAreNeverTakenOver)
{
    cls_ClassRegistrar r;
    r.CreateClassMD("known", 0x500001, 1, nullptr, kRoot);
    EXPECT_TRUE(r.ClassIsPresent(0x500001));
    EXPECT_FALSE(r.ClassIsPresent(0x500002));
    const cls_ClassMetadata& fallback = r.ConstGet(0x500002);
    EXPECT_EQ(&r.ConstGet(0x500003), &fallback);
    EXPECT_EQ(r.GetLastClassVersionNumber(0x500002), fallback.GetVersion());
    EXPECT_EQ(r.GetClassMetadata(0x500001, 2).GetClassID(), r.GetClassMetadata(7, 7).GetClassID());
    EXPECT_NE(r.GetClassMetadata(0x500001, 2).GetClassID(), 0x500001u);
    EXPECT_EQ(r.GetClassID("unknown"), static_cast<unsigned>(cls_ClassRegistrar::UnknownId));

    // A name stays with the first class registered under it, even through a deletion.
    r.CreateClassMD("known", 0x500002, 1, nullptr, kRoot);
    EXPECT_EQ(r.GetClassID("known"), 0x500001u);
    EXPECT_EQ(r.ConstGet(0x500002).GetName(), "known");
    r.DeleteClass("known", 0x500009);
    EXPECT_EQ(r.GetClassID("known"), 0x500001u);
    r.DeleteClass("retired", 0x500009);
    EXPECT_EQ(r.GetClassID("retired"), 0x500009u);
    EXPECT_FALSE(r.ClassIsPresent(0x500009));
}

TEST(ClsRegistrar, FirstRegistrationOfAVersionWins)
{
    cls_ClassRegistrar r;
    cls_ClassMetadata& first = r.CreateClassMD("first", 0x500001, 1, nullptr, kRoot);
    cls_ClassMetadata* late = new cls_ClassMetadata("late", 0x500001, 1, nullptr, kRoot);
    cls_ClassMetadata& second = r.AddClassMD(late);  // dropped (and freed) by the registrar
    EXPECT_EQ(&second, &first);
    second.AddAttribute(cls_FieldHandle(4, "m_Four"), cls_AttrInt, 0, cls_CollNone);
    EXPECT_EQ(first.MaxFieldID(), 4);
    EXPECT_EQ(r.ConstGet(0x500001).GetName(), "first");
    EXPECT_EQ(r.VersionCount(), 1);

    // A lower version later on stays in the history but does not become current.
    r.CreateClassMD("first", 0x500001, 0, nullptr, kRoot);
    EXPECT_EQ(r.ConstGet(0x500001).GetVersion(), 1);
    EXPECT_EQ(r.VersionCount(), 2);
}

TEST(ClsRegistrar, RepeatedRegistrationWarnsOnlyOnSites)
{
    cls_ClassRegistrar r;
    r.CreateClassMD("twice", 0x500001, 7, nullptr, kRoot);

    SetEnvironment("TAVRIN_SITE", nullptr);
    testing::internal::CaptureStderr();
    r.CreateClassMD("twice", 0x500001, 7, nullptr, kRoot);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");

    SetEnvironment("TAVRIN_SITE", "1");
    testing::internal::CaptureStderr();
    r.CreateClassMD("twice", 0x500001, 7, nullptr, kRoot);
    r.CreateClassMD("twice", 0x500001, 8, nullptr, kRoot);  // a new version is no repeat
    const std::string printed = testing::internal::GetCapturedStderr();
    SetEnvironment("TAVRIN_SITE", nullptr);
    EXPECT_EQ(printed, "WARNING: Metadata for class twice version 7 has been initialized more than once.\n");
}

TEST(ClsRegistrar, ListsRunInUnsignedIdThenSignedVersionOrder)
{
    cls_ClassRegistrar r;
    for (unsigned id : {0xFFFFFFF0u, 5u, 0x80000001u}) {
        r.CreateClassMD("c", id, 2, nullptr, kRoot);
        r.CreateClassMD("c", id, -3, nullptr, kRoot);
    }
    typedef std::vector<std::pair<unsigned, int>> Entries;
    auto entries = [](const cow_1DArray<cls_ClassMetadataHld>& list) {
        Entries out;
        for (int i = 0; i < list.Size(); ++i)
            out.emplace_back(list[i].GetRef().GetClassID(), list[i].GetRef().GetVersion());
        return out;
    };
    const cow_1DArray<cls_ClassMetadataHld> current = r.GetMDList();
    ASSERT_EQ(entries(current), (Entries{{5u, 2}, {0x80000001u, 2}, {0xFFFFFFF0u, 2}}));
    EXPECT_EQ(current[2].GetPtr(), &r.ConstGet(0xFFFFFFF0u));  // shares the registrar's metadata
    EXPECT_EQ(entries(r.GetHistoryMDList()),
              (Entries{{5u, -3}, {5u, 2}, {0x80000001u, -3}, {0x80000001u, 2}, {0xFFFFFFF0u, -3}, {0xFFFFFFF0u, 2}}));
}

std::string g_destroyedBy;

template <char Name>
void DestroyAs(cls_CowObject* object)
{
    g_destroyedBy += Name;
    cow_Destroy(object);
}

TEST(ClsRegistrar, HierarchyWalksFollowRegisteredBaseIds)
{
    cls_ClassRegistrar r;
    r.CreateClassMD("a", 10, 1, nullptr, kRoot).AddDtor(&DestroyAs<'A'>);
    r.CreateClassMD("b", 11, 1, nullptr, 10);
    r.CreateClassMD("c", 12, 1, nullptr, 11).AddDtor(&DestroyAs<'C'>);
    r.CreateClassMD("x", 20, 1, nullptr, 21);  // 21 and 20 base each other: a circle
    r.CreateClassMD("y", 21, 1, nullptr, 20);
    r.CreateClassMD("lone", 30, 1, nullptr, kRoot);

    EXPECT_TRUE(r.InheritanceCheck(12, 10));
    EXPECT_TRUE(r.InheritanceCheck(12, kRoot));
    EXPECT_FALSE(r.InheritanceCheck(10, 12));
    EXPECT_FALSE(r.InheritanceCheck(12, 20));
    EXPECT_TRUE(r.InheritanceCheck(99, 99));  // never registered
    EXPECT_FALSE(r.InheritanceCheck(99, kRoot));
    EXPECT_FALSE(r.InheritanceCheck(20, 10));  // ends instead of circling

    // Deletion goes through the nearest destructor function up the hierarchy, if there is one.
    g_destroyedBy.clear();
    EXPECT_TRUE(r.DeleteCow(12, cow_New<cls_CowObject>(cow_New<int>(1))));
    EXPECT_TRUE(r.DeleteCow(11, cow_New<cls_CowObject>(cow_New<int>(2))));
    cls_CowObject kept(cow_New<int>(3));
    EXPECT_FALSE(r.DeleteCow(kRoot, &kept));
    EXPECT_FALSE(r.DeleteCow(30, &kept));
    EXPECT_FALSE(r.DeleteCow(77, &kept));
    EXPECT_EQ(g_destroyedBy, "CA");
    EXPECT_EQ(kept.ConstGet(), 3);
}

std::vector<std::string> g_lookups;
void OnId(const unsigned& id)
{
    g_lookups.push_back("id " + std::to_string(id));
}
void OnVersion(unsigned id, int version)
{
    g_lookups.push_back("version " + std::to_string(id) + " " + std::to_string(version));
}
void OnName(const cow_String& name)
{
    g_lookups.push_back(std::string("name ") + name.c_str());
}

TEST(ClsRegistrar, HooksSeeEachLookupFirst)
{
    cls_ClassRegistrar r;
    r.CreateClassMD("a", 10, 1, nullptr, kRoot);
    g_lookups.clear();
    cls_ClassRegistrar::SetIdLookupHook(&OnId);
    cls_ClassRegistrar::SetVersionLookupHook(&OnVersion);
    cls_ClassRegistrar::SetNameLookupHook(&OnName);
    r.ConstGet(10);
    r.GetClassMetadata(10, -2);
    r.GetClassID("a");
    r.ClassIsPresent(11);
    EXPECT_EQ(cls_ClassRegistrar::SetIdLookupHook(nullptr), &OnId);
    EXPECT_EQ(cls_ClassRegistrar::SetVersionLookupHook(nullptr), &OnVersion);
    EXPECT_EQ(cls_ClassRegistrar::SetNameLookupHook(nullptr), &OnName);
    r.ConstGet(10);
    EXPECT_EQ(g_lookups, (std::vector<std::string>{"id 10", "version 10 -2", "name a", "id 11"}));
}

TEST(ClsMetadata, AddersChainOntoOneMetadata)
{
    cls_ClassMetadata md("m", 10, 2, nullptr, kRoot);
    EXPECT_EQ(md.GetTableExtentQuantum(), 4);
    EXPECT_EQ(md.MaxFieldID(), -1);
    cls_ClassMetadata& same = md.AddTableExtentQuantum(9)
                                  .AddAttribute(cls_FieldHandle(3, "m_B"), cls_AttrString, 0, cls_CollNone)
                                  .AddAttribute(cls_FieldHandle(1, "m_A"), cls_AttrInt, 5, cls_CollArray)
                                  .AddAttribute(cls_FieldHandle(1, "m_Again"), cls_AttrUid, 0, cls_CollNone);
    EXPECT_EQ(&same, &md);
    EXPECT_EQ(md.GetTableExtentQuantum(), 9);
    EXPECT_EQ(md.MaxFieldID(), 3);
    EXPECT_EQ(md.GetAttributes().Count(), 2);
    ASSERT_NE(md.FindAttribute(1), nullptr);
    EXPECT_EQ(md.FindAttribute(1)->m_Name, "m_A");
    EXPECT_EQ(md.FindAttribute(1)->m_Parameter, 5u);
    EXPECT_EQ(md.FindAttribute(1)->m_Collection, cls_CollArray);
    EXPECT_EQ(md.FindAttribute(2), nullptr);
}

TEST(ClsMetadataDeathTest, AClassThatIsItsOwnBaseAborts)
{
    EXPECT_DEATH(cls_ClassMetadata("loop_Class", 42, 1, nullptr, 42),
                 "QRB metadat for class: loop_Class\n  Is incorrectly defined.  The base class ID is\n"
                 "  the same as the class ID.  Please correct this.");
}

std::vector<std::string> g_calls;
template <int N>
void Record(cls_ClassRegistrar& r)
{
    g_calls.push_back(std::string(1, static_cast<char>('A' + N)));
    r.CreateClassMD(g_calls.back().c_str(), 100 + N, 1, nullptr, kRoot);
}

// The names of a registrar's current classes, in list order.
std::string Names(cls_ClassRegistrar& r)
{
    const cow_1DArray<cls_ClassMetadataHld> list = r.GetMDList();
    std::string names;
    for (int i = 0; i < list.Size(); ++i)
        names += list[i].GetRef().GetName().c_str();
    return names;
}

TEST(ClsMetadataRegistrar, FlagBitsChooseRegistrarsAndLists)
{
    cls_MetadataRegistrar m;
    g_calls.clear();
    m.initClassMetadata(&Record<0>, cls_RegisterPrimary);
    m.initClassMetadata(&Record<1>, cls_RegisterThird);
    m.initClassMetadata(&Record<2>, cls_RegisterSecond);
    m.initClassMetadata(&Record<3>, cls_RegisterPrimary | cls_RegisterThird | cls_RegisterSecond);
    EXPECT_EQ(g_calls, (std::vector<std::string>{"A", "B", "C", "D", "D", "D"}));
    EXPECT_EQ(Names(m.PrimaryRegistrar()), "AD");
    EXPECT_EQ(Names(m.ThirdRegistrar()), "BD");
    EXPECT_EQ(Names(m.SecondRegistrar()), "CD");

    // Replays run list A, then list B, each in registration order; the third registrar's never.
    g_calls.clear();
    cls_ClassRegistrar replay;
    m.initMetadata(&replay, cls_RegisterPrimary | cls_RegisterThird | cls_RegisterSecond);
    EXPECT_EQ(g_calls, (std::vector<std::string>{"A", "D", "C", "D"}));
    EXPECT_EQ(Names(replay), "ACD");
    g_calls.clear();
    cls_ClassRegistrar onlyB;
    m.initMetadata(&onlyB, cls_RegisterSecond | cls_RegisterThird);
    EXPECT_EQ(g_calls, (std::vector<std::string>{"C", "D"}));
}

}  // namespace

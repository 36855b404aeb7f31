// Every container instance the library and its users rely on compiles in full: each explicit
// instantiation below makes the compiler build all members, not only those the tests call.
#include <gtest/gtest.h>

#include <cstdint>

#include "atr/atr_String.h"
#include "cls/cls_PTrie.h"
#include "cow/cow_1DArrayList.h"
#include "cow/cow_Btree.h"
#include "cow/cow_COW.h"
#include "cow/cow_HashTable.h"
#include "cow/cow_List.h"
#include "cow/cow_Map.h"
#include "cow/cow_String.h"
#include "nex/nex_Exception.h"
#include "nex/nex_OutOfMemoryException.h"
#include "uti/uti_CoordCont3D.h"

// Handles the library uses directly (the map and tree node handles come with their containers).
template class cow_CountedHld<int>;
template class cow_COW<int>;
template class cow_COW<nex_Exception, cow_Virtual<nex_Exception>>;
template class cow_COW<nex_OutOfMemoryException, cow_Virtual<nex_OutOfMemoryException>>;

template class cow_1DArrayList<int>;
template class cow_1DArrayList<unsigned int>;
template class cow_1DArrayList<float>;
template class cow_1DArrayList<double>;
template class cow_1DArrayList<cow_String>;
template class cow_1DArrayList<cow_1DArrayList<int>>;
template class cow_1DArrayList<cow_1DArrayList<float>>;
template class cow_1DArrayList<cow_1DArrayList<double>>;
template class cow_1DArrayList<uti_Coord3D>;
template class cow_1DArrayListIter<int>;
template class cow_1DArrayListIter<cow_String>;

template class cow_List<int>;
template class cow_List<unsigned int>;
template class cow_List<bool>;
template class cow_List<float>;
template class cow_List<double>;
template class cow_List<cow_String>;
template class cow_List<atr_String>;
template class cow_List<cow_1DArrayList<int>>;
template class cow_ListIter<int>;
template class cow_ListIter<cow_String>;

template class cow_Btree<int, int>;
template class cow_Btree<int, double>;
template class cow_Btree<int, cow_1DArrayList<int>>;
template class cow_Btree<float, int>;
template class cow_Btree<cow_String, int>;
template class cow_Btree<cow_String, unsigned int>;
template class cow_Btree<cow_String, float>;
template class cow_Btree<cow_String, cow_String>;
template class cow_Btree<cow_String, cow_1DArray<cow_String>>;
template class cow_Btree<cow_String, cow_1DArrayList<int>>;
template class cow_Btree<cow_String, cow_Btree<int, int>>;
template class cow_Btree<atr_String, cow_List<atr_String>>;

template class cow_Map<int, int>;
template class cow_Map<int, unsigned int>;
template class cow_Map<int, float>;
template class cow_Map<int, double>;
template class cow_Map<int, cow_String>;
template class cow_Map<int, cow_1DArrayList<int>>;
template class cow_Map<int, cow_1DArrayList<float>>;
template class cow_Map<int, cow_1DArrayList<cow_String>>;
template class cow_Map<unsigned int, int>;
template class cow_Map<unsigned int, unsigned int>;
template class cow_Map<unsigned int, cow_String>;
template class cow_Map<unsigned int, atr_String>;
template class cow_Map<cow_String, int>;
template class cow_Map<cow_String, unsigned int>;
template class cow_Map<cow_String, float>;
template class cow_Map<cow_String, double>;
template class cow_Map<cow_String, cow_String>;
template class cow_Map<cow_String, atr_String>;
template class cow_Map<cow_String, cow_1DArrayList<int>>;
template class cow_Map<cow_String, cow_1DArrayList<float>>;
template class cow_Map<cow_String, cow_1DArrayList<cow_String>>;
template class cow_Map<cow_String, cow_List<int>>;
template class cow_Map<cow_String, cow_List<cow_String>>;
template class cow_ConstMapSortedIt<int, cow_String>;
template class cow_ConstMapSortedIt<cow_String, float>;
template class cow_ConstMapSortedIt<cow_String, cow_String>;

template class HashTable<unsigned int, void*>;
template class HashTable<void*, unsigned int>;

template class cls_PTrie<int, int, 1>;
template class cls_PTrie<int, float, 1>;
template class cls_PTrie<int, double, 1>;
template class cls_PTrie<int, bool, 1>;
template class cls_PTrie<int, cow_String, 1>;

// Stands in for the persistence value types (cls_Uid: a pair of 32-bit numbers), whose tries are
// shared through counted handles.
struct UidStandIn {
    uint32_t high = 0, low = 0;
    bool operator==(const UidStandIn& o) const { return high == o.high && low == o.low; }
};
template class cls_PTrie<int, UidStandIn, 1>;
template class cls_PTrieIter<int, UidStandIn, 1>;
template class cow_CountedHld<cls_PTrie<int, UidStandIn, 1>>;

namespace {

TEST(CowInstances, StringElementsSortAndFindByteWise)
{
    cow_1DArrayList<cow_String> names;
    names.Append("beta");
    names.Append("Alpha");
    EXPECT_EQ(names.FindFirst("Alpha"), 1);
    EXPECT_EQ(names.FindFirst("alpha"), 2);

    cow_List<atr_String> sorted;
    sorted.Append("beta").Append("alpha").Append("Beta");
    sorted.Sort();
    EXPECT_EQ(sorted[0], "Beta");
    EXPECT_EQ(sorted[1], "alpha");
    EXPECT_EQ(sorted[2], "beta");

    cow_List<bool> flags;
    flags.Append(true).Append(false).Sort();
    EXPECT_FALSE(flags[0]);
}

}  // namespace

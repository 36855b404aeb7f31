// Every list instance the library uses compiles in full (all members instantiated).
#include <gtest/gtest.h>

#include "atr/atr_String.h"
#include "cow/cow_1DArrayList.h"
#include "cow/cow_List.h"
#include "cow/cow_String.h"

template class cow_1DArrayList<int>;
template class cow_1DArrayList<unsigned int>;
template class cow_1DArrayList<float>;
template class cow_1DArrayList<double>;
template class cow_1DArrayList<cow_String>;
template class cow_1DArrayList<cow_1DArrayList<int>>;
template class cow_1DArrayList<cow_1DArrayList<float>>;
template class cow_1DArrayList<cow_1DArrayList<double>>;
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

namespace {

TEST(CowListInstances, StringListsSortAndFindByteWise)
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

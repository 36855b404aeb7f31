// The catenator: its switch to stream mode, erasing in both modes, and when results share its
// buffer.
#include <gtest/gtest.h>

#include <string>

#include "utl/utl_Catenator.h"

namespace {

TEST(UtlCatenator, SwitchesToStreamModeAt992BytesAndErasesInBothModes)
{
    utl_Catenator c;
    const std::string piece(991, 'a');
    c.Cat(piece.c_str(), 991);
    EXPECT_FALSE(c.InStreamMode());
    c.Cat("b", 1);
    EXPECT_TRUE(c.InStreamMode());
    c.Cat("cd", 2);
    const cow_String all = c.GetString();
    EXPECT_EQ(all.Length(), 994);
    EXPECT_TRUE(all.EndsWith("abcd"));
    c.Erase().Cat("e", 1);
    EXPECT_TRUE(c.InStreamMode());
    EXPECT_EQ(c.GetString(), "e");

    utl_Catenator d;
    d.Cat("abc", 3).Erase().Cat("d", 1);
    EXPECT_FALSE(d.InStreamMode());
    EXPECT_EQ(d.GetString(), "d");
}

TEST(UtlCatenator, ShortResultsAreCopiesLongOnesShare)
{
    utl_Catenator c;
    const std::string piece(496, 'x');
    c.Cat(piece.c_str(), 496);
    const cow_String copy = c.GetString();
    EXPECT_EQ(copy.RefCount(), 1) << "a short result does not pin the buffer";
    c.Cat("y", 1);
    const cow_String shared = c.GetString();
    EXPECT_EQ(shared.Length(), 497);
    EXPECT_EQ(shared.RefCount(), 2) << "the catenator's buffer is shared";
}

}  // namespace

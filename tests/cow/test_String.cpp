// cow_String as the library's text type, the system error texts and the intrusive counter.
#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>

#include "cow/cow_IntrusiveCountedBase.h"
#include "cow/cow_List.h"
#include "cow/cow_String.h"
#include "cow/cow_SystemErrorCode.h"

namespace {

// cow_String is the library string under another name: the rules are tested in core_atr; here
// the forwarding constructors and operators.
TEST(CowString, SharesTextAndComparesAsTheLibraryString)
{
    cow_String none;
    cow_String emptied("abc");
    emptied.Erase();
    EXPECT_EQ(none, cow_String(""));
    EXPECT_EQ(none, emptied);
    cow_String a("shared");
    cow_String b(a);
    EXPECT_EQ(a.RefCount(), 2);
    b.ToLower().append("!");
    EXPECT_EQ(a, "shared");
    EXPECT_EQ(b, "shared!");
    EXPECT_EQ(a.RefCount(), 1);
    cow_String& r = (b = "x");
    EXPECT_EQ(&r, &b);
    EXPECT_EQ(b, "x");
    EXPECT_LT(cow_String("B"), cow_String("a"));
    EXPECT_LT(cow_String("z"), cow_String("\xe9"));  // 0xE9 sorts after ASCII
    EXPECT_LT(cow_String("ab"), cow_String("abc"));
    EXPECT_EQ(cow_String(-42), "-42");
    EXPECT_EQ(cow_String(4000000000u), "4000000000");
    EXPECT_EQ(cow_String(2.5), "2.5");
    EXPECT_EQ(cow_String(0.25f), "0.25");
}

TEST(CowString, OperationsReturnCowStrings)
{
    cow_String s("  Hello, World  ");
    s.Trim();
    EXPECT_EQ(s, "Hello, World");
    cow_String sub = s.Substr(7, 5);
    EXPECT_EQ(sub, "World");
    EXPECT_EQ(s.Find("o"), 4);
    EXPECT_EQ(s.rfind("o"), 8);
    EXPECT_EQ(s.Find("zzz"), -1);
    EXPECT_EQ(s.Substitute("o", "0"), 2);
    EXPECT_EQ(s, "Hell0, W0rld");
    s.Replace(0, 4, "J").insert(1, "-").Erase(0, 1);
    EXPECT_EQ(s, "-0, W0rld");
}

TEST(CowString, LongestStringOfAList)
{
    cow_List<cow_String> l;
    EXPECT_EQ(GetLengthLongestString(l), 0u);
    l.Append(cow_String()).Append("abc").Append("").Append("ab");
    EXPECT_EQ(GetLengthLongestString(l), 3u);
}

TEST(CowSystemErrorCode, SocketErrorsComeFromTheTable)
{
    EXPECT_EQ(cow_SystemErrorCode(10060).GetText(), "WSAETIMEDOUT (10060) Connection timed out.");
    EXPECT_EQ(cow_SystemErrorCode(10004).GetText(), "WSAEINTR (10004) Interrupted function call.");
    EXPECT_EQ(cow_SystemErrorCode(11004).GetText(), "WSANO_DATA (11004) Valid name, no data record of requested type.");
}

TEST(CowSystemErrorCode, RuntimeErrorsUseStrerrorOtherCodesTheSystemText)
{
    const cow_SystemErrorCode code = cow_SystemErrorCode::FromErrno(ENOENT);
    EXPECT_EQ(code.Code(), 0xFFFFFFFFu);
    EXPECT_EQ(code.GetText(), std::strerror(ENOENT));
    // Code 2 is "file not found" on both Windows and POSIX systems.
    const cow_String text = cow_SystemErrorCode(2).GetText();
    EXPECT_GT(text.Length(), 0);
    EXPECT_EQ(text.Find("WSA"), -1);
}

TEST(CowIntrusiveCountedBase, ResettingToAnotherCounterWarnsButReplaces)
{
    cow_IntrusiveCountedBase object;
    cow_Counter* first = reinterpret_cast<cow_Counter*>(0x10);
    cow_Counter* second = reinterpret_cast<cow_Counter*>(0x20);

    testing::internal::CaptureStderr();
    object.SetCounter(first);
    object.SetCounter(first);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");

    testing::internal::CaptureStderr();
    object.SetCounter(second);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "ERROR: Resetting counter on cow_IntrusiveCountedBase\n");
    EXPECT_EQ(object.GetCounter(), second);
}

}  // namespace

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>

#include "atr/atr_String.h"
#include "mem/mem_Memory.h"

namespace {

std::string S(const atr_StringBase& s) { return std::string(s.c_str(), static_cast<size_t>(s.Length())); }

// A buffer from the memory layer holding text, as Adopt expects.
char* MemCopy(const char* text)
{
    const size_t n = std::strlen(text);
    char* b = static_cast<char*>(mem_Malloc(n + 1));
    std::memcpy(b, text, n + 1);
    return b;
}

// Runs op on a fresh copy of `original`'s sharer with the n-th allocation failing, for n = 1, 2,
// ... until op completes. After every failure the string operated on must still share with, and
// equal, the original.
int CheckStrongGuarantee(const atr_String& original, const std::function<void(atr_String&)>& op)
{
    const std::string before = S(original);
    for (int n = 1; n < 50; ++n) {
        atr_String target(original);
        const int count = original.RefCount();
        mem_TestFailAllocation(n);
        bool failed = false;
        try {
            op(target);
        } catch (...) {
            failed = true;
        }
        const long pending = mem_TestFailAllocationPending();
        mem_TestFailAllocation(0);
        EXPECT_EQ(S(original), before);
        if (!failed) {
            EXPECT_GT(pending, 0);
            return n;
        }
        EXPECT_EQ(S(target), before) << "after failure at allocation " << n;
        EXPECT_TRUE(target.SharesWith(original));
        EXPECT_EQ(original.RefCount(), count);
    }
    ADD_FAILURE() << "operation never completed";
    return -1;
}

}  // namespace

TEST(AtrString, EmptyFormsReadAsEmptyAndCompareEqual)
{
    atr_String a;
    atr_String b("");
    atr_String c(static_cast<const char*>(nullptr));
    atr_String d("abc");
    d.Erase();
    EXPECT_EQ(a.c_str(), atr_EmptyText);
    EXPECT_EQ(a.RefCount(), 0);
    EXPECT_TRUE(a == b && b == c && c == d);
    EXPECT_TRUE(d.IsEmpty());
    EXPECT_TRUE(a == "");
    EXPECT_EQ(a.Compare(nullptr), 0);
    EXPECT_EQ(atr_String("abc", 0).RefCount(), 0);

    alignas(atr_String) unsigned char raw[sizeof(atr_String)];  // all zero bytes: a valid empty string
    std::memset(raw, 0, sizeof raw);
    EXPECT_EQ(S(*reinterpret_cast<const atr_String*>(raw)), "");
    static_assert(sizeof(atr_String) == 2 * sizeof(void*), "two pointers");
}

TEST(AtrString, CopiesShareAndWritersDetach)
{
    atr_String a("hello");
    {
        atr_String b(a);
        atr_String c;
        c = b;
        EXPECT_EQ(a.RefCount(), 3);
        EXPECT_EQ(b.c_str(), a.c_str());
        c.append(" world");
        EXPECT_EQ(S(c), "hello world");
        EXPECT_EQ(a.RefCount(), 2);
        b[0] = 'J';
        EXPECT_EQ(S(b), "Jello");
        EXPECT_EQ(S(a), "hello");
        EXPECT_EQ(a.RefCount(), 1);
        atr_String d(a);
        d.Erase();  // emptying a sharer drops its reference
        EXPECT_EQ(d.RefCount(), 0);
        EXPECT_EQ(a.RefCount(), 1);
    }
    atr_String& self = a;
    a = self;  // self-assignment keeps the text and the count
    EXPECT_EQ(S(a), "hello");
    EXPECT_EQ(a.RefCount(), 1);
    atr_String moved(std::move(a));
    EXPECT_EQ(S(moved), "hello");
    EXPECT_EQ(moved.RefCount(), 1);
}

TEST(AtrString, ReadersAndNoOpWritersDoNotDetach)
{
    atr_String a("Mixed Case");
    atr_String b(a);
    const atr_String& cb = b;
    EXPECT_EQ(cb[1], 'i');
    EXPECT_EQ(cb[100], '\0');
    EXPECT_EQ(b.Find("Case"), 6);
    b.Erase(3, 0);
    b.append("", 0);
    b.Trim();
    EXPECT_EQ(b.Substitute("zz", "y"), 0);
    atr_String lower("already lower");
    atr_String lower2(lower);
    lower2.ToLower();
    EXPECT_TRUE(lower2.SharesWith(lower));
    EXPECT_TRUE(b.SharesWith(a));
    EXPECT_TRUE(a.Substr(0).SharesWith(a));
    EXPECT_TRUE((a + "").SharesWith(a));
}

TEST(AtrString, AssignmentFromTextChainsAndHandlesAliasing)
{
    atr_String a, b;
    a = b = "chain";
    EXPECT_EQ(S(a), "chain");
    EXPECT_EQ(&(a = "x"), &a);
    atr_String s("abcdef");
    s = s.c_str() + 2;  // a text inside the string itself
    EXPECT_EQ(S(s), "cdef");
    s.Assign(s.c_str() + 1, 2);
    EXPECT_EQ(S(s), "de");
}

TEST(AtrString, ComparisonIsBytewiseOverUnsignedChars)
{
    atr_String hi("\xC3\xA9");  // bytes above 0x7F sort after ASCII
    atr_String lo("z");
    EXPECT_TRUE(lo < hi);
    EXPECT_TRUE("z" < hi);
    EXPECT_LT(lo.Compare(hi), 0);
    EXPECT_TRUE(atr_String("abc") < atr_String("abcd"));
    EXPECT_TRUE(atr_String("B") < atr_String("a"));  // case-sensitive
    EXPECT_TRUE(atr_String("abc") != "abd");
    EXPECT_TRUE(atr_String("abd") >= "abc");
}

TEST(AtrString, ConstructorsFromCountsAndNumbers)
{
    EXPECT_EQ(S(atr_String("abcdef", 3)), "abc");
    const atr_String zeros("a\0b", 3);  // zero bytes inside the count are kept, as Adopt keeps them
    EXPECT_EQ(std::string(zeros.c_str(), 4), std::string("a\0b\0", 4));
    EXPECT_EQ(zeros.Length(), 3);
    EXPECT_EQ(S(atr_String("abc", -1)), "abc");
    EXPECT_EQ(S(atr_String(-2147483647 - 1)), "-2147483648");
    EXPECT_EQ(S(atr_String(4294967295u)), "4294967295");
    EXPECT_EQ(S(atr_String(0.1f)), "0.1");
    EXPECT_EQ(S(atr_String(1.0f / 3.0f)), "0.3333333");
    EXPECT_EQ(S(atr_String(0.1)), "0.1");
    EXPECT_EQ(S(atr_String(2.0 / 3.0)), "0.666666666666667");
    EXPECT_EQ(S(atr_String(1e300)), "1e+300");
    EXPECT_EQ(S(atr_String(-3.0)), "-3");
}

TEST(AtrString, BorrowUsesTheCallersCharactersUntilAWrite)
{
    char text[] = "borrowed text";
    atr_String b(text, -1, atr_StringBase::BORROW);
    EXPECT_EQ(b.c_str(), text);
    EXPECT_TRUE(b.IsBorrowed());
    atr_String copy(b);
    EXPECT_EQ(copy.c_str(), text);
    copy.append("!");
    EXPECT_EQ(S(copy), "borrowed text!");
    // Even a sole holder copies before writing: the caller's characters are never changed.
    b[0] = 'B';
    EXPECT_STREQ(text, "borrowed text");
    EXPECT_EQ(S(b), "Borrowed text");
    EXPECT_FALSE(b.IsBorrowed());

    atr_String part(text, 8, atr_StringBase::BORROW);  // text[8] is not a terminator: copied
    EXPECT_EQ(S(part), "borrowed");
    EXPECT_FALSE(part.IsBorrowed());
}

TEST(AtrString, AdoptTakesOwnershipAndGrows)
{
    atr_String a(MemCopy("adopted"), -1, atr_StringBase::ADOPT);
    EXPECT_EQ(a.Capacity(), 7);
    a.append(" and grown to something longer");
    EXPECT_EQ(S(a), "adopted and grown to something longer");
    char* buf = MemCopy("0123456789");
    atr_String b(buf, 4, atr_StringBase::ADOPT);  // the text is the first 4 characters
    EXPECT_EQ(b.c_str(), buf);
    EXPECT_EQ(S(b), "0123");
    atr_String c(static_cast<char*>(nullptr), 3, atr_StringBase::ADOPT);
    EXPECT_EQ(c.Length(), 0);
}

TEST(AtrString, PreSizeGivesCapacityKeptByErase)
{
    atr_String p(992, atr_StringBase::PRESIZE);
    EXPECT_EQ(p.RefCount(), 1);
    const char* storage = p.c_str();
    for (int i = 0; i < 99; ++i)
        p.append("0123456789");
    EXPECT_EQ(p.Length(), 990);
    EXPECT_EQ(p.c_str(), storage);  // no reallocation inside the pre-sized room
    p.Erase();
    EXPECT_EQ(p.Length(), 0);
    EXPECT_EQ(p.c_str(), storage);
    EXPECT_GE(p.Capacity(), 992);
}

TEST(AtrString, AppendLoopGrowsGeometrically)
{
    atr_String s;
    std::string ref;
    int moves = 0;
    const char* last = nullptr;
    for (int i = 0; i < 5000; ++i) {
        s += static_cast<char>('a' + i % 26);
        ref += static_cast<char>('a' + i % 26);
        if (s.c_str() != last) {
            ++moves;
            last = s.c_str();
        }
    }
    EXPECT_EQ(S(s), ref);
    EXPECT_LT(moves, 40);
}

// Positions outside the string are clamped into it, negative counts run to the end, starts past
// the terminator give nothing, and a source may lie inside the string being changed.
TEST(AtrString, EditsClampPositionsAndCounts)
{
    using Edit = void (*)(atr_String&);
    const struct {
        const char* before;
        Edit edit;
        const char* after;
    } cases[] = {
        {"ab", [](atr_String& s) { s.append("xyz", 2); }, "abxy"},
        {"ab", [](atr_String& s) { s.append("0123456", 2, 3); }, "ab34"},  // 2 characters from offset 3
        {"ab", [](atr_String& s) { s.append("-", -1, 0, 3); }, "ab---"},
        {"ab", [](atr_String& s) { s.append('!', 2); }, "ab!!"},
        {"ab", [](atr_String& s) { s.append("abc", -1, 10); }, "ab"},
        {"ab", [](atr_String& s) { s.insert(0, "<<", -1); }, "<<ab"},
        {"ab", [](atr_String& s) { s.insert(999, ">"); }, "ab>"},
        {"ab", [](atr_String& s) { s.insert(-5, "["); }, "[ab"},
        {"ab", [](atr_String& s) { s.insert(1, "xy", -1, 0, 2); }, "axyxyb"},
        {"abc", [](atr_String& s) { s.append(s.c_str(), -1, 0, 3); }, "abcabcabcabc"},
        {"abcabcabcabc", [](atr_String& s) { s.insert(1, s.c_str() + 9, 3); }, "aabcbcabcabcabc"},
        {"0123456789", [](atr_String& s) { s.Erase(8); }, "01234567"},
        {"0123456789", [](atr_String& s) { s.Erase(0, 2); }, "23456789"},
        {"234567", [](atr_String& s) { s.Erase(2, 100); }, "23"},
        {"23", [](atr_String& s) { s.Erase(10, 1); }, "23"},
        {"0123456789", [](atr_String& s) { s.Replace(0, 3, "abc"); }, "abc3456789"},
        {"0123456789", [](atr_String& s) { s.Replace(8, -1, "END"); }, "01234567END"},
        {"0123", [](atr_String& s) { s.Replace(3, 0, "++", 1); }, "012+3"},
        {"0123", [](atr_String& s) { s.Replace(100, 5, "~"); }, "0123~"},
        {"0123", [](atr_String& s) { s.Replace(0, 13, "", 0); }, ""},
        {"0123456789", [](atr_String& s) { s = s.Substr(2, 3); }, "234"},
        {"0123456789", [](atr_String& s) { s = s.Substr(7); }, "789"},
        {"0123456789", [](atr_String& s) { s = s.Substr(8, 50); }, "89"},
        {"0123456789", [](atr_String& s) { s = s.Substr(-4, 2); }, "01"},
        {"0123456789", [](atr_String& s) { s = s.Substr(10); }, ""},
        {"0123456789", [](atr_String& s) { s = s.Substr(50, 2); }, ""},
        {"", [](atr_String& s) { EXPECT_EQ(s[0], '\0'); }, ""},  // an empty string gets storage
        {"ab", [](atr_String& s) { s[5] = s[5]; }, "ab"},         // clamped to the terminator
        {"ab", [](atr_String& s) { s[-1] = 'X'; }, "Xb"},
        {"  \t text \r\n", [](atr_String& s) { s.Trim(); }, "text"},
        {"xxyhixyx", [](atr_String& s) { s.LeftTrim("xy"); }, "hixyx"},
        {"xxyhixyx", [](atr_String& s) { s.RightTrim("xy"); }, "xxyhi"},
        {"    ", [](atr_String& s) { s.Trim(" "); }, ""},
        {"abc", [](atr_String& s) { s.Trim(""); }, "abc"},
        {"MiXeD 123 \xC3\x89", [](atr_String& s) { s.ToLower(); }, "mixed 123 \xC3\x89"},  // only ASCII letters
        {"MiXeD 123 \xC3\x89", [](atr_String& s) { s.ToUpper(); }, "MIXED 123 \xC3\x89"},
    };
    for (size_t i = 0; i < sizeof cases / sizeof cases[0]; ++i) {
        atr_String s(cases[i].before);
        cases[i].edit(s);
        EXPECT_EQ(S(s), cases[i].after) << "case " << i << " on \"" << cases[i].before << '"';
    }
}

TEST(AtrString, FindAndRfind)
{
    const atr_String s("abcabcab");
    EXPECT_EQ(s.Find("abc"), 0);
    EXPECT_EQ(s.Find("abc", 1), 3);
    EXPECT_EQ(s.Find("abc", 4), -1);
    EXPECT_EQ(s.Find("ab", 6), 6);
    EXPECT_EQ(s.Find("", 8), 8);
    EXPECT_EQ(s.Find("", 9), -1);
    EXPECT_EQ(s.Find("a", -3), 0);
    EXPECT_EQ(s.Find('c', 3), 5);
    EXPECT_EQ(s.Find('z'), -1);
    EXPECT_EQ(atr_String().Find("a"), -1);
    EXPECT_EQ(atr_String().Find(""), 0);

    EXPECT_EQ(s.rfind("abc"), 3);
    EXPECT_EQ(s.rfind("ab"), 6);
    EXPECT_EQ(s.rfind("ab", 5), 3);
    EXPECT_EQ(s.rfind("ab", 0), 0);
    EXPECT_EQ(s.rfind("bcx", -1, 2), 4);  // only the first two characters of the text
    EXPECT_EQ(s.rfind("abcabcabc"), -1);
    EXPECT_EQ(s.rfind(""), 8);
    EXPECT_EQ(s.rfind('a'), 6);
    EXPECT_EQ(s.rfind('c', 4), 2);
    EXPECT_EQ(s.rfind('z'), -1);

    EXPECT_TRUE(s.StartsWith("abca"));
    EXPECT_TRUE(s.StartsWith(""));
    EXPECT_TRUE(s.EndsWith("cab"));
    EXPECT_FALSE(s.StartsWith("b"));
    EXPECT_FALSE(atr_String("a").EndsWith("ba"));
}

TEST(AtrString, SubstituteCountsAndLimits)
{
    atr_String s("a.b.c.d");
    atr_String keep(s);
    EXPECT_EQ(s.Substitute(".", "::"), 3);
    EXPECT_EQ(S(s), "a::b::c::d");
    EXPECT_EQ(S(keep), "a.b.c.d");
    EXPECT_EQ(s.Substitute("::", "", 2), 2);
    EXPECT_EQ(S(s), "abc::d");
    EXPECT_EQ(s.Substitute("", "x"), 0);
    EXPECT_EQ(s.Substitute("c", "x", 0), 0);
    atr_String overlap("aaaa");
    EXPECT_EQ(overlap.Substitute("aa", "b"), 2);  // non-overlapping, left to right
    EXPECT_EQ(S(overlap), "bb");
    atr_String grow("xx");
    EXPECT_EQ(grow.Substitute(atr_String("x"), grow), 2);  // the replacement is the string itself
    EXPECT_EQ(S(grow), "xxxx");
    mem_TestFailAllocation(1);
    EXPECT_EQ(s.Substitute("nothing", "x"), 0);  // no match: nothing allocated
    EXPECT_EQ(mem_TestFailAllocationPending(), 1);
    mem_TestFailAllocation(0);
    atr_String all("zz");
    EXPECT_EQ(all.Substitute("z", ""), 2);
    EXPECT_TRUE(all.IsEmpty());
}

TEST(AtrString, WriteBufferAndSetLength)
{
    atr_String s("keep");
    atr_String other(s);
    char* buf = s.GetWriteBuffer(20);
    EXPECT_EQ(S(other), "keep");
    std::strcpy(buf + 4, " this");
    s.SetLength();
    EXPECT_EQ(S(s), "keep this");
    s.SetLength(2);
    EXPECT_EQ(S(s), "ke");
    s.SetLength(1000);  // clamped to the capacity
    EXPECT_EQ(s.Length(), s.Capacity());
}

TEST(AtrString, FormatAndConcatenation)
{
    EXPECT_EQ(S(atr_String::Format("%d-%s-%.2f", 7, "x", 1.5)), "7-x-1.50");
    std::string big(1000, 'q');
    EXPECT_EQ(S(atr_String::Format("[%s]", big.c_str())), "[" + big + "]");
    atr_String s("n=");
    s.AppendFormat("%05d", 42);
    EXPECT_EQ(S(s), "n=00042");
    EXPECT_EQ(S(atr_String("a") + "b"), "ab");
    EXPECT_EQ(S("a" + atr_String("b")), "ab");
    EXPECT_EQ(S(atr_String("a") + atr_String("b")), "ab");
    EXPECT_TRUE(atr_String::Format("%s", "").IsEmpty());
}

TEST(AtrString, FailedAllocationLeavesSharedStringUnchanged)
{
    const atr_String original("a shared text that is long enough to need its own block");
    EXPECT_GE(CheckStrongGuarantee(original, [](atr_String& s) { s.append(" more"); }), 1);
    CheckStrongGuarantee(original, [](atr_String& s) { s.insert(3, "ins"); });
    CheckStrongGuarantee(original, [](atr_String& s) { s.Replace(2, 4, "R"); });
    CheckStrongGuarantee(original, [](atr_String& s) { s.Erase(5, 3); });
    CheckStrongGuarantee(original, [](atr_String& s) { s.ToUpper(); });
    CheckStrongGuarantee(original, [](atr_String& s) { s.Substitute("a", "AA"); });
    CheckStrongGuarantee(original, [](atr_String& s) { s[1] = 'X'; });
    CheckStrongGuarantee(original, [](atr_String& s) { s.Trim("a"); });
    CheckStrongGuarantee(original, [](atr_String& s) { s = "replaced"; });
}

TEST(AtrString, FailedGrowthOfPrivateStringKeepsIt)
{
    atr_String s("private");
    const char* before = s.c_str();
    mem_TestFailAllocation(1);
    EXPECT_ANY_THROW(s.append(std::string(500, 'x').c_str()));
    mem_TestFailAllocation(0);
    EXPECT_EQ(S(s), "private");
    EXPECT_EQ(s.c_str(), before);
    EXPECT_EQ(s.RefCount(), 1);

    // An adopted buffer belongs to the string from the call on, so a failure must not leak it
    // (checked by the leak sanitizer in sanitizer builds).
    char* buf = MemCopy("lost");
    mem_TestFailAllocation(1);
    EXPECT_ANY_THROW(atr_String(buf, -1, atr_StringBase::ADOPT));
    mem_TestFailAllocation(0);
}

TEST(AtrString, TextBeyondIntLengthIsRefusedAndStringKept)
{
    atr_String s("abc");
    atr_String shared(s);
    EXPECT_ANY_THROW(s.append("0123456789", -1, 0, 1 << 30));
    EXPECT_ANY_THROW(s.insert(1, "xy", -1, 0, 2000000000));
    EXPECT_EQ(S(s), "abc");
    EXPECT_TRUE(s.SharesWith(shared));
    atr_String r;
    EXPECT_ANY_THROW(r.Reserve(2147483647));
    EXPECT_EQ(r.RefCount(), 0);
}

#include <gtest/gtest.h>

#include <atomic>
#include <cstdio>
#include <string>
#include <thread>
#include <vector>

#include "nex/nex_Exception.h"
#include "rgx/rgx_Initialize.h"
#include "rgx/rgx_ReCompileCache.h"
#include "rgx/rgx_funcs.h"
#include "thr/thr_ThreadSingleton.h"

namespace {

std::vector<std::string> Pieces(const cow_1DArrayList<cow_String>& list)
{
    std::vector<std::string> out;
    for (int i = 0; i < list.Count(); ++i)
        out.emplace_back(list[i].c_str(), list[i].Length());
    return out;
}

typedef std::vector<std::string> Strings;

// The message of the library exception that `f` throws, with its recorded source.
template <class F>
std::string ThrownText(F f, std::string* source)
{
    try {
        f();
    } catch (const nex_TextException& e) {
        *source = e.File().c_str();
        return e.Message().c_str();
    }
    return "(nothing thrown)";
}

}  // namespace

TEST(rgx_match, GroupsSurroundingTextAndIteration)
{
    const rgx_ReIterator m = rgx_match("(\\w+)@(\\w+)\\.com", "mail bob@example.com now");
    ASSERT_TRUE(m.IsMatch());
    EXPECT_EQ(m.Count(), 3);
    EXPECT_STREQ(m.String().c_str(), "bob@example.com");
    EXPECT_STREQ(m.NthString(1).c_str(), "bob");
    EXPECT_STREQ(m.NthString(2).c_str(), "example");
    EXPECT_STREQ(m.NthString(-2).c_str(), "mail ");
    EXPECT_STREQ(m.NthString(-1).c_str(), " now");
    for (int n : {3, 1000, -3})
        EXPECT_TRUE(m.NthString(n).IsEmpty()) << n;

    // Stepping the current pair moves String and the before/after texts with it.
    rgx_ReIterator it = rgx_match("(\\w+)@(\\w+)\\.com", cow_String("mail bob@example.com now"));
    Strings seen;
    for (it.First(); it.NotDone(); it.Next())
        seen.push_back(it.String().c_str());
    EXPECT_EQ(seen, (Strings{"bob@example.com", "bob", "example"}));
    it.First();
    it.Next();
    it.Next();
    EXPECT_STREQ(it.NthString(-2).c_str(), "mail bob@");
    EXPECT_STREQ(it.NthString(-1).c_str(), ".com now");

    // A group that took no part reads as empty; later groups still count.
    const rgx_ReIterator alt = rgx_match("(a)|(b)", "xb");
    EXPECT_EQ(alt.Count(), 3);
    EXPECT_EQ(alt.Start(1), -1);
    EXPECT_TRUE(alt.NthString(1).IsEmpty());
    EXPECT_STREQ(alt.NthString(2).c_str(), "b");
}

TEST(rgx_match, FailedMatchIsEmptyAndMoreThanTenGroupsKeepTen)
{
    const rgx_ReIterator none = rgx_match("z+", "abc");
    EXPECT_FALSE(none.IsMatch());
    EXPECT_EQ(none.Count(), 0);
    EXPECT_TRUE(none.Subject().IsEmpty());
    for (int n = -2; n < 3; ++n)
        EXPECT_TRUE(none.NthString(n).IsEmpty()) << n;
    EXPECT_TRUE(none.String().IsEmpty());
    EXPECT_FALSE(rgx_match("a", static_cast<const char*>(nullptr)).IsMatch());

    const rgx_ReIterator many = rgx_match("(a)(b)(c)(d)(e)(f)(g)(h)(i)(j)(k)(l)", "xabcdefghijkl");
    ASSERT_TRUE(many.IsMatch());
    EXPECT_EQ(many.Count(), rgx_ReIterator::kMaxPairs);
    EXPECT_STREQ(many.String().c_str(), "abcdefghijkl");
    EXPECT_STREQ(many.NthString(9).c_str(), "i");
    EXPECT_TRUE(many.NthString(10).IsEmpty());
}

TEST(rgx_ReIterator, StringAsGroupNumReadsReferences)
{
    const struct {
        const char* text;
        int group;
    } cases[] = {{"&", 0}, {"'", -1}, {"`", -2}, {"12", 12}, {"7x", 7}, {"", 0}, {"abc", 0}, {"&&", 0}};
    for (const auto& c : cases) {
        rgx_ReIterator m = rgx_match("^(.*)$", c.text);
        ASSERT_TRUE(m.IsMatch()) << c.text;
        m.Next();
        EXPECT_EQ(m.StringAsGroupNum(), c.group) << c.text;
    }
    EXPECT_EQ(rgx_ReIterator().StringAsGroupNum(), 0);
}

TEST(rgx_subn, CountsReferencesAndEmptyMatches)
{
    EXPECT_STREQ(rgx_subn("b", "X", "abcb", 0).c_str(), "abcb");
    EXPECT_STREQ(rgx_subn("b", "X", "abcb", 1).c_str(), "aXcb");
    EXPECT_STREQ(rgx_subn("b", "[$&]", "abcb", 5).c_str(), "a[b]c[b]");
    EXPECT_STREQ(rgx_subn("z", "X", "abcb", 5).c_str(), "abcb");
    EXPECT_STREQ(rgx_subn("(b)", "<$2>", "abc", 5).c_str(), "a<>c");
    // References are expanded once, from the first match, and reused for every later match.
    EXPECT_STREQ(rgx_subn("b", "<$`>", "abcb", 5).c_str(), "a<a>c<a>");
    EXPECT_STREQ(rgx_subn("b", "<$'>", "abcb", 5).c_str(), "a<cb>c<cb>");
    EXPECT_STREQ(rgx_subn("(\\w+)=(\\w+)", "$2=$1", "x=1, y=2", 5).c_str(), "1=x, 1=x");
    // Only the digits 1 to 9 and & ` ' follow a reference's dollar; anything else is text.
    EXPECT_STREQ(rgx_subn("(b)", "$0$1$", "abc", 1).c_str(), "a$0b$c");
    EXPECT_STREQ(rgx_subn("(b)", "$11", "abc", 1).c_str(), "ac");
    // Empty matches step over one character each and end with one at the end of the text.
    EXPECT_STREQ(rgx_subn("x*", "-", "abc", 10).c_str(), "-a-b-c-");
    EXPECT_STREQ(rgx_subn("x*", "-", "abc", 2).c_str(), "-a-bc");
    EXPECT_STREQ(rgx_subn("x*", "-", "", 3).c_str(), "-");
    // Each later match is made on the remainder alone, so "^" matches at its start again.
    EXPECT_STREQ(rgx_subn("^a", "X", "aab", 5).c_str(), "XXb");
}

TEST(rgx_split, PiecesBetweenMatches)
{
    EXPECT_EQ(Pieces(rgx_split(",", "a,,b,")), (Strings{"a", "b", ""}));
    EXPECT_EQ(Pieces(rgx_split(",", ",a")), (Strings{"a"}));
    EXPECT_EQ(Pieces(rgx_split(";", "a,b")), (Strings{"a,b"}));
    EXPECT_EQ(Pieces(rgx_split(",", "")), (Strings{""}));
    EXPECT_EQ(Pieces(rgx_split("\\s*,\\s*", "one , two,three")), (Strings{"one", "two", "three"}));
    EXPECT_EQ(Pieces(rgx_split("^a", "aab")), (Strings{"b"}));
    // Empty matches do not stall the walk.
    EXPECT_EQ(Pieces(rgx_split("x*", "abc")), (Strings{"a", "b", "c", ""}));
    EXPECT_EQ(Pieces(rgx_split("x*", "")), (Strings{""}));
    EXPECT_EQ(Pieces(rgx_split("$", "ab")), (Strings{"ab", ""}));
}

TEST(rgx_join, SeparatorBetweenPieces)
{
    cow_1DArrayList<cow_String> pieces;
    EXPECT_TRUE(rgx_join(pieces, ",").IsEmpty());
    pieces.Append("only");
    EXPECT_STREQ(rgx_join(pieces, ", ").c_str(), "only");
    pieces.Append("");
    pieces.Append("last");
    EXPECT_STREQ(rgx_join(pieces, ", ").c_str(), "only, , last");
    EXPECT_STREQ(rgx_join(pieces, "").c_str(), "onlylast");
    EXPECT_STREQ(rgx_join(rgx_split(":", "a:b:c"), ":").c_str(), "a:b:c");
}

TEST(rgx_match, EngineFailuresThrowTheirTexts)
{
    std::string source;
    const std::string compile = ThrownText([] { rgx_match("a(b", "ab"); }, &source);
    EXPECT_EQ(compile.rfind("rgx_match: error in regex at offset 3: ", 0), 0u) << compile;
    EXPECT_NE(compile.find("parenthesis"), std::string::npos) << compile;
    EXPECT_EQ(source, "rgx/impl/rgx_ReCompileCache");
    EXPECT_FALSE(rgx_ReCompileCache::Instance().Contains("a(b"));

    // A match limit set inside the pattern makes the engine give up.
    for (bool jit : {true, false}) {
        rgx_ReCompileCache::Instance().SetJit(jit);
        const std::string exec = ThrownText([] { rgx_match("(*LIMIT_MATCH=5)(a+)+\\d", "aaaaaaaaaaaaaaaac"); }, &source);
        EXPECT_EQ(exec, "rgx_match: exec error: -47");
        EXPECT_EQ(source, "rgx/impl/rgx_funcs");
    }
    rgx_ReCompileCache::Instance().SetJit(true);

    // A pattern that switches UTF-8 on gets the engine's subject check, JIT or not.
    const std::string utf = ThrownText([] { rgx_match("(*UTF)a.", "\xff\xfe a"); }, &source);
    EXPECT_EQ(utf.rfind("rgx_match: exec error: -", 0), 0u) << utf;
    EXPECT_STREQ(rgx_match("(*UTF)a.", "\xc3\xa9" "a\xc3\xa9").String().c_str(), "a\xc3\xa9");
}

TEST(rgx_ReCompileCache, FullCacheDropsTheLowestSortingHalf)
{
    rgx_ReCompileCache& cache = rgx_ReCompileCache::Instance();
    cache.Clear();
    auto name = [](int i) {
        char text[16];
        std::snprintf(text, sizeof text, "p%03d", i);
        return cow_String(text);
    };
    // Newest first among the lowest: eviction goes by sort order, not by age or use.
    for (int i = 99; i >= 0; --i)
        EXPECT_TRUE(rgx_match(name(i), name(i)).IsMatch());
    for (int i = 0; i < 10; ++i)
        rgx_match(name(i), "again");
    EXPECT_EQ(cache.Count(), 100);
    const int compiled = cache.Compilations();

    rgx_match("q", "q");
    EXPECT_EQ(cache.Count(), 51);
    for (int i = 0; i < 100; ++i)
        EXPECT_EQ(cache.Contains(name(i)), i >= 50) << i;
    EXPECT_TRUE(cache.Contains("q"));

    // A dropped pattern is compiled again on its next use; a kept one is not.
    rgx_match(name(70), "x");
    EXPECT_EQ(cache.Compilations(), compiled + 1);
    rgx_match(name(10), "x");
    EXPECT_EQ(cache.Compilations(), compiled + 2);
    EXPECT_TRUE(cache.Contains(name(10)));
    EXPECT_EQ(cache.Count(), 52);
}

TEST(rgx_ReCompileCache, EachThreadHasItsOwnCache)
{
    rgx_ReCompileCache& mine = rgx_ReCompileCache::Instance();
    const int key = thr_ThreadSingleton<rgx_ReCompileCache>::Key();
    const int holdingBefore = thr_ThrSingletonRegistry::ThreadsHolding(key);
    std::atomic<int> arrived{0};
    bool sawOther[2] = {true, true};
    auto body = [&](int t) {
        const cow_String own = t == 0 ? "thread-zero" : "thread-one";
        rgx_match(own, own);
        arrived.fetch_add(1);
        while (arrived.load() < 2)  // both caches alive and filled at once
            std::this_thread::yield();
        sawOther[t] = rgx_ReCompileCache::Instance().Contains(t == 0 ? "thread-one" : "thread-zero");
        arrived.fetch_add(1);
        while (arrived.load() < 4)
            std::this_thread::yield();
    };
    std::thread a(body, 0), b(body, 1);
    a.join();
    b.join();
    EXPECT_FALSE(sawOther[0] || sawOther[1]);  // a shared cache would hold both patterns
    EXPECT_FALSE(mine.Contains("thread-zero") || mine.Contains("thread-one"));
    // The threads' caches went with the threads.
    EXPECT_EQ(thr_ThrSingletonRegistry::ThreadsHolding(key), holdingBefore);
}

TEST(rgx_ReCompileCache, ModuleTearDownReleasesTheThreadsCache)
{
    ASSERT_NE(thr_ThreadSingleton<rgx_ReCompileCache>::Existing(), nullptr);
    int tally = 0;
    rgx_finalize(tally);
    EXPECT_EQ(tally, -1);
    EXPECT_EQ(thr_ThreadSingleton<rgx_ReCompileCache>::Existing(), nullptr);
    rgx_initialize(tally);
    EXPECT_EQ(tally, 0);
    ASSERT_NE(thr_ThreadSingleton<rgx_ReCompileCache>::Existing(), nullptr);
    // Matching after the restart uses the new cache, not the released one.
    EXPECT_EQ(&rgx_ReCompileCache::Instance(), thr_ThreadSingleton<rgx_ReCompileCache>::Existing());
    EXPECT_STREQ(rgx_match("b+", "abbc").String().c_str(), "bb");
    EXPECT_TRUE(rgx_ReCompileCache::Instance().Contains("b+"));
}

TEST(rgx_ReCompileCache, JitAndInterpreterAgree)
{
    const char* patterns[] = {"(\\d+)-(\\d+)", "a|(b)(c)?", "x*", "^\\s*(\\w+)\\s*=\\s*(.*?)\\s*$", "(?i)HELLO", "(a+)+b"};
    const char* subjects[] = {"10-20 and 30-40", "bd", "", "  key = some value  ", "say hello", "aaab", "zzz"};
    auto run = [&](bool jit) {
        rgx_ReCompileCache& cache = rgx_ReCompileCache::Instance();
        const int before = cache.Count();
        cache.SetJit(jit);
        if (!jit) {
            EXPECT_GT(before, 0);
            EXPECT_EQ(cache.Count(), 0);  // switching starts over
        }
        std::string out;
        for (const char* p : patterns) {
            EXPECT_EQ(cache.Lookup(p).GetRef().IsJit(), jit && rgx_ReCompileCache::JitAvailable()) << p;
            for (const char* s : subjects) {
                rgx_ReIterator m = rgx_match(p, s);
                out += std::to_string(m.Count()) + ":";
                for (int n = -2; n < m.Count(); ++n)
                    out += std::string(m.NthString(n).c_str()) + "|";
                out += rgx_join(rgx_split(p, s), "/").c_str();
                out += std::string("#") + rgx_subn(p, "<$1>", s, 3).c_str() + "\n";
            }
        }
        return out;
    };
    rgx_ReCompileCache::Instance().SetJit(true);
    const std::string withJit = run(true);
    const std::string without = run(false);
    rgx_ReCompileCache::Instance().SetJit(true);
    EXPECT_EQ(withJit, without);

    // A match too deep for the JIT's stack still succeeds.
    const cow_String deep = (std::string(50000, 'a') + "c").c_str();
    for (bool jit : {true, false}) {
        rgx_ReCompileCache::Instance().SetJit(jit);
        const rgx_ReIterator m = rgx_match("(a|b)*c", deep);
        EXPECT_EQ(m.Count(), 2) << jit;
        EXPECT_EQ(m.End(0), 50001) << jit;
        EXPECT_EQ(m.Start(1), 49999) << jit;
    }
    rgx_ReCompileCache::Instance().SetJit(true);
    EXPECT_NE(withJit.find("3:| and 30-40|10-20|10|20|"), std::string::npos) << withJit;
}

#include <gtest/gtest.h>

#include <string>

#include "atr/atr_translate.h"

namespace {

std::string R(const atr_translate& t)
{
    const atr_String s = t.Result();
    return std::string(s.c_str(), static_cast<size_t>(s.Length()));
}

}  // namespace

TEST(AtrTranslate, PositionalArgumentsInAnyOrderAndRepeated)
{
    EXPECT_EQ(R(atr_translate("%2$s %1$s").Arg("world").Arg("hello")), "hello world");
    EXPECT_EQ(R(atr_translate("%1$s-%1$s-%2$s-%1$s").Arg("a").Arg("b")), "a-a-b-a");
    EXPECT_EQ(R(atr_translate("*** Error: Seek failed (utl_File: %1$s)\nerror: %2$s\nfile: %3$s")
                    .Arg("SetFilePointer 2")
                    .Arg("Access denied")
                    .Arg("C:\\x.dat")),
              "*** Error: Seek failed (utl_File: SetFilePointer 2)\nerror: Access denied\nfile: C:\\x.dat");
    // An argument that the text does not use is simply left out.
    EXPECT_EQ(R(atr_translate("*** Error: Free disk space depleted\nfile name: %2$s").Arg("step").Arg("f.bin").Arg("x")),
              "*** Error: Free disk space depleted\nfile name: f.bin");
}

TEST(AtrTranslate, MixedConversionsWidthsAndFlags)
{
    EXPECT_EQ(R(atr_translate("%2$5d|%1$-6s|%3$.3f|%2$x").Arg("ab").Arg(255).Arg(3.14159)), "  255|ab    |3.142|ff");
    EXPECT_EQ(R(atr_translate("%1$08.3f %1$e").Arg(-2.5)), "-002.500 -2.500000e+00");
    EXPECT_EQ(R(atr_translate("%1$+d %1$ d %2$#o %2$#X").Arg(5).Arg(8u)), "+5  5 010 0X8");
    EXPECT_EQ(R(atr_translate("%1$.2s|%1$5.1s|").Arg("abcdef")), "ab|    a|");
    EXPECT_EQ(R(atr_translate("%1$c%2$c").Arg(72).Arg(105)), "Hi");
    EXPECT_EQ(R(atr_translate("%1$g %2$G").Arg(0.0001).Arg(1e-10)), "0.0001 1E-10");
}

TEST(AtrTranslate, SequentialSpecsCountOnTheirOwn)
{
    EXPECT_EQ(R(atr_translate("%d + %d = %s").Arg(1).Arg(2).Arg("three")), "1 + 2 = three");
    // Sequential conversions take arguments 1, 2, ... whatever positional conversions stand between them.
    EXPECT_EQ(R(atr_translate("%s %2$s %s").Arg("a").Arg("b")), "a b b");
    EXPECT_EQ(R(atr_translate("[%*d]").Arg(6).Arg(42)), "[    42]");
    EXPECT_EQ(R(atr_translate("[%-*d]").Arg(4).Arg(7)), "[7   ]");
    EXPECT_EQ(R(atr_translate("[%*d]").Arg(-4).Arg(7)), "[7   ]");  // negative width: left-aligned
    EXPECT_EQ(R(atr_translate("[%.*f]").Arg(1).Arg(2.24)), "[2.2]");
    EXPECT_EQ(R(atr_translate("[%2$*1$d]").Arg(5).Arg(3)), "[    3]");
}

TEST(AtrTranslate, LengthModifiersNarrowLikePrintf)
{
    EXPECT_EQ(R(atr_translate("%u").Arg(-1)), "4294967295");
    EXPECT_EQ(R(atr_translate("%hhu %hd").Arg(257).Arg(65537)), "1 1");
    EXPECT_EQ(R(atr_translate("%lld %llu").Arg(-9000000000LL).Arg(18000000000000000000ULL)),
              "-9000000000 18000000000000000000");
    EXPECT_EQ(R(atr_translate("%zu %jd").Arg(static_cast<unsigned long long>(1) << 40).Arg(-5)), "1099511627776 -5");
    EXPECT_EQ(R(atr_translate("%d").Arg(5000000000LL)), "705032704");  // int conversion wraps
    EXPECT_EQ(R(atr_translate("%Lf").Arg(1.5)), "1.500000");
}

TEST(AtrTranslate, MissingOrMismatchedArgumentsRenderAsNothing)
{
    EXPECT_EQ(R(atr_translate("a%1$sb%3$sc").Arg("X")), "aXbc");
    EXPECT_EQ(R(atr_translate("<%s|%d|%f>")), "<||>");
    EXPECT_EQ(R(atr_translate("<%d>").Arg("text")), "<>");
    EXPECT_EQ(R(atr_translate("<%s>").Arg(12)), "<>");
    EXPECT_EQ(R(atr_translate("<%f>").Arg(12)), "<>");
    EXPECT_EQ(R(atr_translate("<%*d>").Arg("w").Arg(1)), "<>");
    EXPECT_EQ(R(atr_translate("<%n>").Arg(1)), "<>");
    EXPECT_EQ(R(atr_translate("<%9$s>").Arg("a")), "<>");
}

TEST(AtrTranslate, PercentSignsAndMalformedConversions)
{
    EXPECT_EQ(R(atr_translate("100%% of %1$s%%").Arg("it")), "100% of it%");
    EXPECT_EQ(R(atr_translate("tail %")), "tail %");
    EXPECT_EQ(R(atr_translate("odd %y here")), "odd %y here");
    EXPECT_EQ(R(atr_translate("%5")), "%5");
    EXPECT_EQ(R(atr_translate("")), "");
    EXPECT_EQ(R(atr_translate(nullptr)), "");
    EXPECT_EQ(R(atr_translate("no conversions")), "no conversions");
    // A huge width is capped rather than allowed to exhaust memory.
    EXPECT_LE(atr_translate("%999999999d").Arg(1).Result().Length(), 100000);
}

TEST(AtrTranslate, SubstituteFormatSetsNumberedPlaces)
{
    atr_translate t("%1$s|%2$s|%3$s");
    atr_SubstituteFormat(t, 3, atr_String("three"));
    EXPECT_EQ(t.ArgCount(), 3);
    EXPECT_EQ(R(t), "||three");
    atr_SubstituteFormat(t, 1, atr_String("one"));
    t.Arg("four");  // the next sequential place is 4
    EXPECT_EQ(R(t), "one||three");
    atr_SubstituteFormat(t, 0, atr_String("ignored"));
    EXPECT_EQ(t.ArgCount(), 4);
    atr_String converted = t;
    EXPECT_TRUE(converted == "one||three");
}

TEST(AtrTranslate, ArgumentsAreCopiedAndTranslatorsCopy)
{
    atr_String arg("before");
    atr_translate t("%1$s %2$p");
    t.Arg(arg).Arg(static_cast<const void*>(nullptr));
    arg.append(" changed");
    atr_translate copy(t);
    t.Arg("x");
    atr_translate assigned("other");
    assigned = copy;
    EXPECT_EQ(R(copy).substr(0, 7), "before ");
    EXPECT_EQ(R(assigned), R(copy));
    EXPECT_EQ(assigned.ArgCount(), 2);
    EXPECT_EQ(R(atr_translate("%s").Arg(static_cast<const char*>(nullptr))), "(null)");
}

TEST(AtrTranslate, LongArgumentsAndManyArguments)
{
    std::string big(5000, 'z');
    EXPECT_EQ(R(atr_translate("<%1$s>").Arg(big.c_str())), "<" + big + ">");
    EXPECT_EQ(R(atr_translate("<%1$6000s>").Arg("r")).size(), 6002u);
    atr_translate t("%12$d %1$d");
    for (int i = 1; i <= 12; ++i)
        t.Arg(i);
    EXPECT_EQ(R(t), "12 1");
}

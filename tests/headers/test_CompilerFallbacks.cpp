// zul_Compiler.h as a compiler without GCC's, clang's or MSVC's extensions sees it: the
// detection macros are removed before the header is read (inside a namespace, so its inline
// functions do not stand beside the ordinary ones of other programs).
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>

#undef __GNUC__
#undef __clang__
#undef _MSC_VER
namespace fallback {
#include "zul_Compiler.h"
}  // namespace fallback

namespace {

// Declared with the attribute macros, which must expand to nothing here.
int Formatted(char* out, const char* format, int value) ZUL_PRINTF_FORMAT(2, 3);
ZUL_COLD int Twice(int value) { return 2 * value; }
int Formatted(char* out, const char* format, int value)
{
    return std::snprintf(out, 16, format, value);
}

TEST(CompilerFallbacks, CountLeadingZerosByTheLoop)
{
    EXPECT_EQ(fallback::zul_CountLeadingZeros32(1u), 31);
    EXPECT_EQ(fallback::zul_CountLeadingZeros32(0x80000000u), 0);
    EXPECT_EQ(fallback::zul_CountLeadingZeros32(0xFFFFFFFFu), 0);
    for (int bit = 0; bit < 32; ++bit) {
        const uint32_t v = uint32_t(1) << bit;
        EXPECT_EQ(fallback::zul_CountLeadingZeros32(v), 31 - bit) << bit;
        EXPECT_EQ(fallback::zul_CountLeadingZeros32(v | (v >> 1) | 1u), 31 - bit) << bit;
    }
}

TEST(CompilerFallbacks, BranchHintsAndAttributesAreThePlainForms)
{
    int calls = 0;
    auto counted = [&calls](int v) {
        ++calls;
        return v;
    };
    EXPECT_TRUE(ZUL_LIKELY(counted(2)));
    EXPECT_FALSE(ZUL_UNLIKELY(counted(0)));
    ZUL_PREFETCH(&calls);  // a plain expression: evaluated, nothing else
    EXPECT_EQ(calls, 2);  // each condition evaluated once
    EXPECT_EQ(Twice(21), 42);
    char out[16];
    EXPECT_EQ(Formatted(out, "<%d>", 42), 4);
    EXPECT_STREQ(out, "<42>");
}

}  // namespace

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}

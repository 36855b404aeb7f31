// The 128-bit flag key: bits by number across word boundaries, combinations, 128-bit order.
#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "cow/cow_LongKey.h"

namespace {

typedef unsigned __int128 U128;

LongKey WithBits(std::initializer_list<unsigned int> bits)
{
    LongKey k;
    const std::vector<unsigned int> list(bits);
    k.setBits(static_cast<unsigned int>(list.size()), list.data());
    return k;
}

U128 AsNumber(const LongKey& k)
{
    U128 n = 0;
    for (int w = 3; w >= 0; --w)
        n = (n << 32) | k.Word(w);
    return n;
}

TEST(CowLongKey, EachBoundaryBitLandsInItsOwnWordAndPlace)
{
    for (unsigned int b : {0u, 31u, 32u, 63u, 64u, 95u, 96u, 127u}) {
        const LongKey k = WithBits({b});
        for (int w = 0; w < 4; ++w)
            EXPECT_EQ(k.Word(w), static_cast<unsigned int>(w) == b / 32 ? 1u << (b % 32) : 0u) << b << " word " << w;
        for (unsigned int other = 0; other < 128; ++other)
            EXPECT_EQ(k.hasBit(other), other == b) << b << " / " << other;
    }
    const LongKey edges = WithBits({0, 31, 32, 63, 64, 127});
    EXPECT_EQ(edges.Word(0), 0x80000001u);
    EXPECT_EQ(edges.Word(1), 0x80000001u);
    EXPECT_EQ(edges.Word(2), 0x00000001u);
    EXPECT_EQ(edges.Word(3), 0x80000000u);
}

TEST(CowLongKey, SetBitsAddsToWhatIsThereAndIgnoresNumbersPastTheKey)
{
    EXPECT_EQ(LongKey(), WithBits({})) << "a new key has no bits";
    EXPECT_EQ(WithBits({128, 1000, 0xFFFFFFFFu}), LongKey());
    EXPECT_FALSE(WithBits({127}).hasBit(128));
    EXPECT_FALSE(WithBits({127}).hasBit(0xFFFFFFFFu));
    LongKey k = WithBits({5, 5, 40});
    const LongKey before = k;
    k.setBits(0, nullptr);
    EXPECT_EQ(k, before);
    const unsigned int more[] = {127, 0, 128};
    k.setBits(3, more);
    EXPECT_EQ(k, WithBits({0, 5, 40, 127}));
}

TEST(CowLongKey, CompoundCombinationsAnswerTheKey)
{
    const LongKey a = WithBits({0, 32, 64, 96, 7});
    const LongKey b = WithBits({0, 63, 64, 127, 7});
    LongKey c = a;
    EXPECT_EQ(&(c &= b), &c);
    EXPECT_EQ(c, WithBits({0, 64, 7}));
    EXPECT_EQ(&(c |= WithBits({100})), &c);
    EXPECT_EQ(c, WithBits({0, 64, 7, 100}));
}

// Order, equality and the binary combinations against 128-bit numbers (which also shows that the
// operators leave their operands alone).
TEST(CowLongKey, OrderAndCombinationsAreThoseOf128BitUnsignedNumbers)
{
    // Across each word boundary the higher word decides, whatever the lower words hold.
    EXPECT_TRUE(WithBits({32}) > WithBits({31, 30, 0}));
    EXPECT_TRUE(WithBits({64}) > WithBits({63, 31}));
    EXPECT_TRUE(WithBits({127}) > WithBits({126, 95, 63, 31}));
    EXPECT_FALSE(WithBits({31}) > WithBits({32}));
    std::mt19937 rng(5);
    for (int i = 0; i < 2000; ++i) {
        LongKey a, b;
        for (int n = 0; n < 4; ++n) {
            const unsigned int x = rng() % 128, y = rng() % 128;
            a.setBits(1, &x);
            b.setBits(1, i % 5 == 0 ? &x : &y);  // often equal in part
        }
        const U128 na = AsNumber(a), nb = AsNumber(b);
        EXPECT_EQ(a > b, na > nb);
        EXPECT_EQ(a < b, na < nb);
        EXPECT_EQ(a == b, na == nb);
        EXPECT_EQ(a != b, na != nb);
        EXPECT_EQ(AsNumber(a | b), na | nb);
        EXPECT_EQ(AsNumber(a & b), na & nb);
    }
}

}  // namespace

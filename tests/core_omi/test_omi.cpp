#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#if defined(_WIN32)
#include <windows.h>
#endif

#include "omi/omi_BlkBitVect.h"
#include "omi/omi_CoreUtils.h"
#include "omi/omi_HashValue.h"
#include "omi/omi_Swapper.h"
#include "omi/omi_SystemErrorCode.h"
#include "omi/omi_Timer.h"
#include "omi/omi_strtoSizeT.h"

TEST(OmiCoreUtils, CountingRuleNestedAndSurplus)
{
    // The test main has brought the library up once.
    ASSERT_EQ(UTI_CoreUtils_useCount(), 1);
    int c = 0;
    UTI_CoreUtils_initialize(c);
    EXPECT_EQ(c, 0);
    EXPECT_EQ(UTI_CoreUtils_useCount(), 2);
    UTI_CoreUtils_finalize(c);
    EXPECT_EQ(c, 0);
    UTI_CoreUtils_finalize(c);  // last use: tear-down
    EXPECT_EQ(c, -1);
    EXPECT_EQ(UTI_CoreUtils_useCount(), 0);
    UTI_CoreUtils_finalize(c);  // surplus: below zero, nothing happens
    EXPECT_EQ(c, -1);
    EXPECT_EQ(UTI_CoreUtils_useCount(), -1);
    UTI_CoreUtils_initialize(c);  // only counts back up to 0
    EXPECT_EQ(c, -1);
    UTI_CoreUtils_initialize(c);  // 0 -> 1: start-up again
    EXPECT_EQ(c, 0);
    EXPECT_EQ(UTI_CoreUtils_useCount(), 1);
}

TEST(OmiSystemErrorCode, RuntimeKindUsesStrerrorNativeKindTheSystemsTextWithoutLineEnd)
{
    const omi_SystemErrorCode crt = omi_SystemErrorCode::FromErrno(ENOENT);
    EXPECT_EQ(crt.m_NativeErrorCode, 0xFFFFFFFFu);  // the mark of the runtime kind
    EXPECT_EQ(crt.Code(), static_cast<uint32_t>(ENOENT));
    EXPECT_STREQ(crt.GetText().c_str(), std::strerror(ENOENT));
    EXPECT_NE(omi_SystemErrorCode(ENOENT), crt);  // same number, native kind
#if defined(_WIN32)
    const omi_SystemErrorCode e(ERROR_FILE_NOT_FOUND);
    SetLastError(ERROR_ACCESS_DENIED);
    EXPECT_EQ(omi_SystemErrorCode::LastSystemError(), omi_SystemErrorCode(ERROR_ACCESS_DENIED));
#else
    const omi_SystemErrorCode e(ENOENT);
    EXPECT_STREQ(e.GetText().c_str(), std::strerror(ENOENT));
    errno = EACCES;
    EXPECT_EQ(omi_SystemErrorCode::LastSystemError(), omi_SystemErrorCode(EACCES));
#endif
    const atr_String text = e.GetText();
    ASSERT_GT(text.Length(), 0);
    const char last = text.c_str()[text.Length() - 1];
    EXPECT_NE(last, '\n');
    EXPECT_NE(last, '\r');
    EXPECT_NE(last, ' ');
    // A code without a message still gives a text.
    EXPECT_GT(omi_SystemErrorCode(0x7FFFABCDu).GetText().Length(), 0);
}

TEST(OmiTimer, MeasuresAccumulatesAndResets)
{
    omi_Timer t;
    EXPECT_EQ(t.ElapsedSeconds(), 0.0);
    t.Start();
    volatile double sink = 0;
    const double until = omi_Timer::WallNow() + 0.05;
    while (omi_Timer::WallNow() < until)
        sink = sink + 1.0;
    t.Stop();
    const double first = t.ElapsedSeconds();
    EXPECT_GE(first, 0.05);
    EXPECT_LT(first, 5.0);
    EXPECT_GT(t.CpuSeconds(), 0.0);
    EXPECT_EQ(t.ElapsedSeconds(), first);  // stopped: frozen
    t.Start();
    t.Start();  // no effect while running
    const double until2 = omi_Timer::WallNow() + 0.02;
    while (omi_Timer::WallNow() < until2)
        sink = sink + 1.0;
    EXPECT_GT(t.ElapsedSeconds(), first);  // running: includes the current interval
    t.Stop();
    EXPECT_GE(t.ElapsedSeconds(), first + 0.02);
    t.Reset();
    EXPECT_EQ(t.ElapsedSeconds(), 0.0);
    EXPECT_EQ(t.CpuSeconds(), 0.0);
}

TEST(OmiStrtoSizeT, PrefixesSignsAndEnds)
{
    struct Case {
        const char* text;
        int base;
        size_t value;
        int used;
    } cases[] = {
        {"123", 10, 123, 3},    {"  +42x", 0, 42, 5},     {"0x1F", 0, 31, 4}, {"0X1f", 16, 31, 4},
        {"0755", 0, 493, 4},    {"z", 36, 35, 1},         {"101", 2, 5, 3},   {"", 10, 0, 0},
        {"abc", 10, 0, 0},      {"  ", 10, 0, 0},          {"-1", 10, SIZE_MAX, 2},
        // "0x" without a hexadecimal digit after it: the number is the "0" alone.
        {"0x", 16, 0, 1},       {"0xg", 0, 0, 1},
    };
    for (const Case& c : cases) {
        char* end = nullptr;
        EXPECT_EQ(omi_strtoSizeT(c.text, &end, c.base), c.value) << '"' << c.text << '"';
        EXPECT_EQ(end - c.text, c.used) << '"' << c.text << '"';
    }
}

#if !defined(_WIN32)
// The C library as an oracle (the Windows runtime's strtoull stops before a bare "0x").
TEST(OmiStrtoSizeT, ParsesLikeStrtoull)
{
    const char* inputs[] = {"123",  "  +42x", "0x1F", "0755", "0x",  "0xg",  "-1", "  -0", "",
                            "abc", "z9",     "077", "18446744073709551615", "1e3", "\t\n7"};
    const int bases[] = {0, 10, 16, 8, 36, 2};
    for (const char* in : inputs) {
        for (int base : bases) {
            char* e1 = nullptr;
            char* e2 = nullptr;
            const unsigned long long want = std::strtoull(in, &e1, base);
            const size_t got = omi_strtoSizeT(in, &e2, base);
            EXPECT_EQ(static_cast<unsigned long long>(got), want) << '"' << in << "\" base " << base;
            EXPECT_EQ(e2 - in, e1 - in) << '"' << in << "\" base " << base;
        }
    }
}
#endif

TEST(OmiStrtoSizeT, SaturatesAndRejectsBadBases)
{
    char* end = nullptr;
    const char* big = "99999999999999999999999";
    errno = 0;
    EXPECT_EQ(omi_strtoSizeT(big, &end, 10), SIZE_MAX);
    EXPECT_EQ(errno, ERANGE);
    EXPECT_EQ(*end, '\0');
    errno = 0;
    EXPECT_EQ(omi_strtoSizeT("12", &end, 1), 0u);
    EXPECT_EQ(errno, EINVAL);
    EXPECT_EQ(omi_strtoSizeT("12", &end, 37), 0u);
    EXPECT_EQ(omi_strtoSizeT(nullptr, &end, 10), 0u);
    EXPECT_EQ(end, nullptr);
    EXPECT_EQ(omi_strtoSizeT("077", nullptr, 0), 63u);
}

TEST(OmiHashValue, ResultsStayInRangeAndRegularKeysSpreadOverBuckets)
{
    const unsigned bucketCounts[] = {1u, 2u, 7u, 16u, 1000u, 65536u, 4294967295u};
    for (unsigned b : bucketCounts) {
        for (unsigned k = 0; k < 2000; k += 7) {
            const unsigned key = k * 2654435761u;
            EXPECT_LT(HashValue(key, b), b);
            void* const p = reinterpret_cast<void*>(static_cast<uintptr_t>(key) << 4);
            EXPECT_LT(HashValue(p, b), b);
        }
    }
    EXPECT_EQ(HashValue(5u, 0u), 0u);
    void* const np = nullptr;
    EXPECT_EQ(HashValue(np, 0u), 0u);

    // Consecutive ids and 16-byte aligned addresses must not pile into few buckets.
    const unsigned buckets = 64;
    std::vector<int> ids(buckets), ptrs(buckets);
    std::vector<char> block(16 * 6400);
    for (unsigned i = 0; i < 6400; ++i) {
        ++ids[HashValue(i * 64u, buckets)];
        void* const p = &block[16 * i];
        ++ptrs[HashValue(p, buckets)];
    }
    for (unsigned b = 0; b < buckets; ++b) {
        EXPECT_GT(ids[b], 50) << "bucket " << b;
        EXPECT_LT(ids[b], 150) << "bucket " << b;
        EXPECT_GT(ptrs[b], 50) << "bucket " << b;
        EXPECT_LT(ptrs[b], 150) << "bucket " << b;
    }
}

TEST(OmiSwapper, OrdersAndSwaps)
{
    const uint32_t probe = 0x01020304u;
    unsigned char first;
    std::memcpy(&first, &probe, 1);
    EXPECT_EQ(omi_Swapper::HostOrder(), first == 4 ? omi_Swapper::Little : omi_Swapper::Big);
    EXPECT_EQ(omi_Swapper::Resolve(omi_Swapper::Native), omi_Swapper::HostOrder());
    EXPECT_FALSE(omi_Swapper::NeedsSwap(omi_Swapper::Native));
    EXPECT_NE(omi_Swapper::NeedsSwap(omi_Swapper::Little), omi_Swapper::NeedsSwap(omi_Swapper::Big));
    EXPECT_EQ(omi_Swapper::Swap16(0x1234), 0x3412);
    EXPECT_EQ(omi_Swapper::Swap32(0x12345678u), 0x78563412u);
    EXPECT_EQ(omi_Swapper::Swap64(0x0102030405060708ULL), 0x0807060504030201ULL);
    unsigned char items[] = {1, 2, 3, 4, 5, 6};
    omi_Swapper::SwapItems(items, 3, 2);
    const unsigned char want[] = {3, 2, 1, 6, 5, 4};
    EXPECT_EQ(std::memcmp(items, want, 6), 0);
}

TEST(OmiBlkBitVect, SetClearTestAcrossBlocks)
{
    omi_BlkBitVect v(70);
    const std::vector<int> bits = {0, 31, 32, 63, 64, 69};
    for (int b : bits)
        v.Set(b);
    v.Set(40);
    v.Clear(40);
    v.Clear(500);  // past the end: nothing
    v.Clear(-1);
    for (int i = -3; i < 80; ++i)
        EXPECT_EQ(v.Test(i), std::count(bits.begin(), bits.end(), i) == 1) << i;
    EXPECT_EQ(v.Count(), 6);
    EXPECT_EQ(v.Size(), 70);
    EXPECT_EQ(v.NextSet(), 0);
    EXPECT_EQ(v.NextSet(1), 31);
    EXPECT_EQ(v.NextSet(33), 63);
    EXPECT_EQ(v.NextSet(65), 69);
    EXPECT_EQ(v.NextSet(70), -1);
    v.ClearAll();
    EXPECT_EQ(v.Count(), 0);
    EXPECT_EQ(v.Size(), 70);
}

TEST(OmiBlkBitVect, GrowShrinkAndRegrowShowsClearBits)
{
    omi_BlkBitVect v;
    v.Set(100);  // grows
    EXPECT_EQ(v.Size(), 101);
    v.Set(40);
    v.Set(45);
    v.Resize(42);
    EXPECT_EQ(v.Size(), 42);
    EXPECT_EQ(v.Count(), 1);
    v.Resize(200);
    EXPECT_FALSE(v.Test(45));
    EXPECT_FALSE(v.Test(100));
    EXPECT_TRUE(v.Test(40));
    v.Resize(-4);
    EXPECT_EQ(v.Size(), 0);
    v.Set(INT_MAX);  // out of the supported range: ignored
    EXPECT_EQ(v.Size(), 0);
}

TEST(OmiBlkBitVect, ValueSemanticsAndEquality)
{
    omi_BlkBitVect a(40);
    a.Set(3);
    a.Set(39);
    omi_BlkBitVect b(a);
    EXPECT_TRUE(a == b);
    b.Clear(3);
    EXPECT_TRUE(a != b);
    EXPECT_TRUE(a.Test(3));
    omi_BlkBitVect c(41);
    c.Set(3);
    c.Set(39);
    EXPECT_FALSE(a == c);  // same bits, different size
    c.Resize(40);
    EXPECT_TRUE(a == c);
    b = a;
    omi_BlkBitVect moved(std::move(b));
    EXPECT_TRUE(moved == a);
    EXPECT_EQ(b.Size(), 0);
    omi_BlkBitVect& self = a;
    a = self;
    EXPECT_EQ(a.Count(), 2);
}

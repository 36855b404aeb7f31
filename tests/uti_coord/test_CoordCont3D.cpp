// Coordinate containers: the two storages, adoption, conversion to the list, Grow, tolerance,
// equality, Remove and failed writes.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "uti/uti_CoordCont3D.h"
#include "zul_TestSupport.h"

namespace {

std::vector<float> Flat(const uti_CoordCont3D& c)
{
    std::vector<float> out;
    for (int i = 0; i < c.Count(); ++i) {
        float x, y, z;
        EXPECT_TRUE(c.GetCoord(i, x, y, z));
        out.insert(out.end(), {x, y, z});
    }
    return out;
}

uti_CoordCont3D ListOf(int n)
{
    uti_CoordCont3D c;
    for (int i = 0; i < n; ++i)
        c.Append(float(i), float(10 * i), float(100 * i));
    return c;
}

TEST(UtiCoordCont3D, AdoptsAFlatArrayWithoutCopying)
{
    float data[10] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10};
    uti_CoordCont3D c(data, 10, 3);
    EXPECT_EQ(c.Count(), 3);  // the tenth float is ignored
    EXPECT_EQ(c.GetCArray(), data);
    EXPECT_TRUE(c.SetCoord(1, 40.0f, 50.0f, 60.0f));
    EXPECT_EQ(data[3], 40.0f);  // written through to the caller's array
    data[8] = -9.0f;
    EXPECT_EQ(c[2], uti_Coord3D(7, 8, -9));
    float x, y;
    EXPECT_FALSE(c.GetCoord(3, x, y));
    EXPECT_FALSE(c.GetCoord(-1, x, y));
    EXPECT_THROW(c[3], uti_CoordException);

    // An append that fits stays in the array; one beyond its length moves the points to the list.
    float room[9] = {1, 1, 1};
    c.SetCArray(room, 9, 3);
    c.Grow(1);
    c.Append(2, 2, 2);
    EXPECT_EQ(c.GetCArray(), room);
    EXPECT_EQ(room[4], 2.0f);
    c.Append(3, 3);
    c.Append(4, 4);
    EXPECT_EQ(c.GetCArray(), nullptr);
    EXPECT_EQ(Flat(c), (std::vector<float>{1, 1, 1, 2, 2, 2, 3, 3, 0, 4, 4, 0}));
    EXPECT_EQ(room[6], 3.0f);  // the array keeps what it held before the move
}

TEST(UtiCoordCont3D, TwoDimensionalInputGetsZeroZ)
{
    float pairs[5] = {1, 2, 3, 4, 99};
    uti_CoordCont3D c(pairs, 5, 2);
    EXPECT_EQ(c.GetCArray(), nullptr);  // copied, not adopted
    const float points[2][2] = {{5, 6}, {7, 8}};
    c.Append(points, 2);
    EXPECT_EQ(Flat(c), (std::vector<float>{1, 2, 0, 3, 4, 0, 5, 6, 0, 7, 8, 0}));
    EXPECT_EQ(Flat(uti_CoordCont3D(points, 2)), (std::vector<float>{5, 6, 0, 7, 8, 0}));

    EXPECT_THROW(c.SetCArray(nullptr, 3, 3), uti_CoordException);
    EXPECT_THROW(c.Append(pairs, -1, 3), uti_CoordException);
    EXPECT_EQ(c.Count(), 4);  // refused input changed nothing
}

TEST(UtiCoordCont3D, GrowShrinksOrConvertsAtOneHundredPoints)
{
    uti_CoordCont3D five = ListOf(5);
    EXPECT_TRUE(five.Grow(2));
    EXPECT_EQ(five.Count(), 2);
    five.Append(7, 7, 7);
    EXPECT_EQ(five[2], uti_Coord3D(7, 7, 7));  // appends follow the points kept

    uti_CoordCont3D empty;
    EXPECT_TRUE(empty.Grow(4));
    ASSERT_NE(empty.GetCArray(), nullptr);  // an owned, zero-filled flat array
    EXPECT_EQ(empty.GetCArrayLength(), 12);
    EXPECT_EQ(Flat(empty), std::vector<float>(12, 0.0f));

    float data[6] = {1, 2, 3, 4, 5, 6};
    uti_CoordCont3D adopted(data, 6, 3);
    EXPECT_TRUE(adopted.Grow(99));
    EXPECT_NE(adopted.GetCArray(), data);  // reallocated, contents kept
    EXPECT_EQ(adopted.GetCArrayLength(), 297);
    EXPECT_EQ(adopted[1], uti_Coord3D(4, 5, 6));
    EXPECT_EQ(adopted[98], uti_Coord3D());
    EXPECT_TRUE(adopted.Grow(100));
    EXPECT_EQ(adopted.GetCArray(), nullptr);  // 100 points go to the list
    EXPECT_EQ(adopted.Count(), 100);
    EXPECT_EQ(adopted[1], uti_Coord3D(4, 5, 6));

    uti_CoordCont3D list = ListOf(2);
    EXPECT_TRUE(list.Grow(3));
    EXPECT_EQ(list.GetCArray(), nullptr);  // a non-empty list stays a list
    EXPECT_FALSE(list.Grow(-1));
}

TEST(UtiCoordCont3D, ToleranceIsAStrictSquaredDistanceTest)
{
    uti_CoordCont3D c;
    c.Append(0, 0, 0);
    c.Append(0, 0, 0);
    c.Append(3, 4, 0);
    EXPECT_FALSE(c.AreCoordsEqual(0, 1, 0.0f));  // identical points, zero tolerance
    EXPECT_TRUE(c.AreCoordsEqual(0, 1, 1e-6f));
    EXPECT_FALSE(c.AreCoordsEqual(0, 2, 5.0f));  // distance 5 is not below 5
    EXPECT_TRUE(c.AreCoordsEqual(0, 2, -5.01f));
    EXPECT_FALSE(c.AreCoordsEqual(0, 3, 100.0f));
}

TEST(UtiCoordCont3D, EqualityAcrossStorages)
{
    float a[6] = {1, 2, 3, 4, 5, 6}, b[7] = {1, 2, 3, 4, 5, 6, 0};
    const uti_CoordCont3D flat(a, 6, 3), longer(b, 7, 3);
    uti_CoordCont3D asList;
    asList.Append(a, 6, 3);
    EXPECT_EQ(asList.GetCArray(), nullptr);
    EXPECT_TRUE(asList == flat && flat == asList);
    EXPECT_FALSE(flat == longer);  // flat arrays compare their whole length
    EXPECT_TRUE(ListOf(3) == ListOf(3));
    EXPECT_FALSE(ListOf(3) == ListOf(2));

    float nan[3] = {std::numeric_limits<float>::quiet_NaN(), 0, 0};
    const uti_CoordCont3D nanFlat(nan, 3, 3);
    EXPECT_TRUE(nanFlat == uti_CoordCont3D(nan, 3, 3));  // identical bytes
    uti_CoordCont3D nanList;
    nanList.Append(nan[0], 0, 0);
    EXPECT_TRUE(nanList != nanFlat);
    EXPECT_TRUE(nanFlat != nanList);

    uti_CoordCont3D copy(flat);
    EXPECT_NE(copy.GetCArray(), flat.GetCArray());  // a copy owns its floats
    copy.SetCoord(0, 9, 9, 9);
    EXPECT_EQ(a[0], 1.0f);
    EXPECT_TRUE(copy != flat);
}

TEST(UtiCoordCont3D, RemoveByIndexArrayTakesTheLeadingPositions)
{
    uti_CoordCont3D six = ListOf(6);
    const int five[] = {5};
    EXPECT_TRUE(six.Remove(five, 1));
    EXPECT_EQ(six.Count(), 5);
    EXPECT_EQ(six[0], uti_Coord3D(1, 10, 100));  // the first point went, not the sixth

    // Each removal shifts the later points: positions 0 then 1 take original points 0 and 2.
    float data[12] = {0, 0, 0, 1, 1, 1, 2, 2, 2, 3, 3, 3};
    uti_CoordCont3D four(data, 12, 3);
    cow_1DArrayList<int> indices;
    indices.Append(3);
    indices.Append(3);
    EXPECT_TRUE(four.Remove(indices));
    EXPECT_EQ(Flat(four), (std::vector<float>{1, 1, 1, 3, 3, 3}));
    EXPECT_EQ(data[0], 0.0f);  // the adopted array is left alone

    const int bad[] = {0, 2};
    EXPECT_FALSE(four.Remove(bad, 2));
    EXPECT_EQ(four.Count(), 2);
    const int repeated[] = {1, 1, 1};
    EXPECT_TRUE(four.Remove(repeated, 3));  // position 2 is past the end after two removals
    EXPECT_EQ(Flat(four), (std::vector<float>{3, 3, 3}));
    EXPECT_TRUE(four.Remove(0));
    EXPECT_FALSE(four.Remove(0));
}

TEST(UtiCoordCont3D, FailedWritesChangeNothing)
{
    float data[6] = {1, 2, 3, 4, 5, 6};
    const std::vector<zul_test::Write<uti_CoordCont3D>> writes = {
        {"append", [](uti_CoordCont3D& c) { c.Append(7, 8, 9); }},
        {"append many", [](uti_CoordCont3D& c) { c.Append(ListOf(40)); }},
        {"remove", [](uti_CoordCont3D& c) { c.Remove(0); }},
        {"set", [](uti_CoordCont3D& c) { c.SetCoord(1, 0, 0, 0); }},
        {"grow", [](uti_CoordCont3D& c) { c.Grow(150); }},
        {"set 2d", [](uti_CoordCont3D& c) {
             static float pairs[4] = {1, 2, 3, 4};
             c.SetCArray(pairs, 4, 2);
         }},
        {"assign", [](uti_CoordCont3D& c) { c = ListOf(3); }},
    };
    zul_test::ExpectFailedWritesChangeNothing(ListOf(20), Flat, writes);
    uti_CoordCont3D adopted(data, 6, 3);
    zul_test::ExpectFailedWritesChangeNothing(adopted, Flat, writes);
}

}  // namespace

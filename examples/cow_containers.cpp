// Copy-on-write values: copying a string, list or map shares its storage, and the first write to
// a copy makes private only what it touches. For a map that is the path from the root to the
// changed entry (path copying): every other node stays shared by both maps.
//
// Output:
// | a and b share their text: yes
// | after the write: a = "shared text", b = "shared text, changed", sharing: no
// | list copy: a[0] = 1, b[0] = 100, a and b count 3 each
// | map of 64 entries copied, then key 37 changed through the copy
// |   original: 37 -> 37, copy: 37 -> 1037
// |   nodes still shared by both maps: 58 of 64
#include <cstdio>

#include "ZULFNDUTI_BasicUtils.h"

int main()
{
    int count = 0;
    UTI_BasicUtils_initialize(count);

    // Strings: a copy costs one increment; the text is the same memory until someone writes.
    cow_String a("shared text");
    cow_String b = a;
    std::printf("a and b share their text: %s\n", a.c_str() == b.c_str() ? "yes" : "no");
    b.append(", changed");  // b gets a private copy first; a is untouched
    std::printf("after the write: a = \"%s\", b = \"%s\", sharing: %s\n", a.c_str(), b.c_str(),
                a.c_str() == b.c_str() ? "yes" : "no");

    // Lists: the same rule, element writes go through Get().
    cow_1DArrayList<int> first;
    for (int i = 1; i <= 3; ++i)
        first.Append(i);
    cow_1DArrayList<int> second = first;
    second.Get(0) = 100;
    std::printf("list copy: a[0] = %d, b[0] = %d, a and b count %d each\n", first[0], second[0], first.Count());

    // Maps: Get() makes the nodes on the search path private, nothing else. ConstGet() never
    // copies, so comparing where two maps keep a value tells whether they share its node.
    cow_Map<int, int> original;
    for (int key = 0; key < 64; ++key)
        original.Insert(key, key);
    cow_Map<int, int> copy = original;
    copy.Get(37) = 1037;
    std::printf("map of %d entries copied, then key 37 changed through the copy\n", original.Count());
    std::printf("  original: 37 -> %d, copy: 37 -> %d\n", original.ConstGet(37), copy.ConstGet(37));
    int shared = 0;
    for (int key = 0; key < 64; ++key)
        if (&original.ConstGet(key) == &copy.ConstGet(key))
            ++shared;
    // Keys take one bit per level, lowest first: 37 lies below 0, 1, 5, 13 and 21, so six nodes
    // were copied.
    std::printf("  nodes still shared by both maps: %d of %d\n", shared, copy.Count());

    UTI_BasicUtils_finalize(count);
    return 0;
}

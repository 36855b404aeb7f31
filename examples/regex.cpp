// Regular expressions (rgx_match, rgx_split, rgx_join, rgx_subn): Perl-compatible patterns on
// cow_String. Each thread keeps a cache of compiled patterns, so using a pattern again is cheap.
//
// Output:
// | match: "bob@example.org" user "bob" domain "example.org"
// | before: "mail ", after: " today"
// | no match: "no address here"
// | split: [a] [b] []
// | join: a+b+
// | subn, every match: x-ray x-ray
// | subn, first match only: [one] two three
// | subn, groups: example.org/bob
// | bad pattern: rgx_match: error in regex at offset 9: missing closing parenthesis
#include <cstdio>

#include "ZULFNDUTI_BasicUtils.h"

int main()
{
    int count = 0;
    UTI_BasicUtils_initialize(count);

    // One match with its groups: pair 0 is the whole match, pair n group n. NthString(-2) and
    // NthString(-1) are the texts before and after the current pair.
    const cow_String mail = "mail bob@example.org today";
    rgx_ReIterator m = rgx_match("(\\w+)@([\\w.]+)", mail);
    if (m.IsMatch()) {
        std::printf("match: \"%s\" user \"%s\" domain \"%s\"\n", m.NthString(0).c_str(), m.NthString(1).c_str(),
                    m.NthString(2).c_str());
        std::printf("before: \"%s\", after: \"%s\"\n", m.NthString(-2).c_str(), m.NthString(-1).c_str());
    }
    if (!rgx_match("(\\w+)@([\\w.]+)", "no address here").IsMatch())
        std::printf("no match: \"no address here\"\n");

    // Splitting: a separator right after another adds no piece, but the text after the last
    // separator is always a piece, even when empty.
    const cow_1DArrayList<cow_String> pieces = rgx_split(",", "a,,b,");
    std::printf("split:");
    for (int i = 0; i < pieces.Count(); ++i)
        std::printf(" [%s]", pieces[i].c_str());
    std::printf("\n");
    std::printf("join: %s\n", rgx_join(pieces, "+").c_str());

    // Substitution: up to `count` matches (below 1: none). The replacement's references ($&, $1..)
    // are taken from the first match and that text replaces every match.
    std::printf("subn, every match: %s\n", rgx_subn("X", "x-", "Xray Xray", 100).c_str());
    std::printf("subn, first match only: %s\n", rgx_subn("\\w+", "[$&]", "one two three", 1).c_str());
    std::printf("subn, groups: %s\n", rgx_subn("(\\w+)@([\\w.]+)", "$2/$1", "bob@example.org", 1).c_str());

    // A pattern that does not compile throws; no match is not a failure.
    try {
        rgx_match("(unclosed", "text");
    } catch (const nex_Exception& e) {
        std::printf("bad pattern: %s\n", e.UserReport().c_str());
    }

    UTI_BasicUtils_finalize(count);
    return 0;
}

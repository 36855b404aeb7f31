/// @file
/// Perl-style regular expressions on cow_String: one match with its groups (rgx_match and
/// rgx_ReIterator), splitting (rgx_split), joining (rgx_join) and substitution with group
/// references (rgx_subn). Patterns go through the calling thread's rgx_ReCompileCache.
///
/// Engine failures throw nex_TextException: "rgx_match: error in regex at offset <n>: <message>"
/// for a pattern that does not compile, "rgx_match: exec error: <code>" for a failing match (for
/// example a match limit set inside the pattern). No match is not a failure.
///
/// Examples:
/// @code
///   rgx_split(",", "a,,b,")                 -> "a", "b", ""
///   rgx_split(",", ",a")                    -> "a"
///   rgx_split(",", "")                      -> ""
///   rgx_split("x*", "abc")                  -> "a", "b", "c", ""
///   rgx_split("^a", "aab")                  -> "b"
///   rgx_subn("b", "[$&]", "abcb", 5)        -> "a[b]c[b]"
///   rgx_subn("b", "[$&]", "abcb", 1)        -> "a[b]cb"
///   rgx_subn("(\\d+)", "<$1>", "a1b22", 5)  -> "a<1>b<1>"   (references from the first match)
///   rgx_subn("b", "$`|$'", "abc", 1)        -> "aa|cc"
///   rgx_subn("x*", "-", "abc", 10)          -> "-a-b-c-"
///   rgx_subn("(a)", "$12", "a", 1)          -> ""           ("$12" is group 12)
/// @endcode
///
/// Thread rule: any thread; each thread's patterns go through its own cache. A rgx_ReIterator
/// shares its subject (cow_String's rule).
#ifndef RGX_FUNCS_H
#define RGX_FUNCS_H

#include <cstdint>

#include "cow/cow_1DArrayList.h"
#include "cow/cow_String.h"
#include "zul_BasicExport.h"

/// The result of one match: the subject (shared, not copied), the offset pairs the engine filled
/// (pair 0 the whole match, pair n group n; a group that took no part has start -1) and a current
/// pair, which starts at pair 0 and is stepped with First/Next/NotDone. At most kMaxPairs pairs are
/// kept: for a pattern with more groups the later ones read as empty.
///
/// An iterator from a failed match is empty: no subject, count 0, not matched; all its texts are
/// empty.
class ZUL_BASIC_API rgx_ReIterator {
public:
    /// The most offset pairs an iterator keeps.
    enum { kMaxPairs = 10 };

    rgx_ReIterator();
    /// `offsets` holds 2 * count values (start, end per pair); count is at most kMaxPairs.
    rgx_ReIterator(const cow_String& subject, const int32_t* offsets, int count);

    bool IsMatch() const { return m_matched != 0; }
    /// The offset pairs filled: 1 for the whole match plus one per group up to the last that matched.
    int Count() const { return m_count; }
    const cow_String& Subject() const { return m_subject; }

    /// Current pair.
    ///@{
    void First() { m_pair = 0; }
    void Next() { ++m_pair; }
    rgx_ReIterator& operator++()
    {
        ++m_pair;
        return *this;
    }
    bool NotDone() const { return m_pair < m_count; }
    int Index() const { return m_pair; }
    ///@}

    /// Offsets of pair n (-1 for a group that took no part or a pair past Count()).
    ///@{
    int Start(int n) const { return n >= 0 && n < m_count ? m_offsets[2 * n] : -1; }
    int End(int n) const { return n >= 0 && n < m_count ? m_offsets[2 * n + 1] : -1; }
    ///@}

    /// The current pair's text: empty unless it has start >= 0 and end > start.
    cow_String String() const;
    /// n = -2: the subject before the current pair; n = -1: the subject after it; 0 <= n < Count():
    /// group n's text; any other n: empty.
    cow_String NthString(int n) const;
    /// The current pair's text read as a group number for NthString: "&" 0, "'" -1, "`" -2, anything
    /// else its leading decimal digits (0 for none or an empty text).
    int StringAsGroupNum() const;

private:
    cow_String PairText(int n) const;

    cow_String m_subject;
    int32_t m_pair;
    int32_t m_count;
    int32_t m_matched;
    /// Held inline: ten pairs copy faster than a shared block is allocated and counted.
    int32_t m_offsets[2 * kMaxPairs];
};

/// Matches the pattern once against the whole subject. A null subject reads as "".
///@{
ZUL_BASIC_API rgx_ReIterator rgx_match(const cow_String& pattern, const char* subject);
ZUL_BASIC_API rgx_ReIterator rgx_match(const cow_String& pattern, const cow_String& subject);
///@}

/// The pieces of the subject between matches. Each match is made on the text after the previous
/// one alone (so "^" anchors at the start of that remainder); a match at the start of the
/// remainder adds no piece, and the remainder after the last match is always added, even when
/// empty. An empty match at the start of the remainder does not split there: the search goes on
/// from the next character. No match gives the subject alone.
/// @code
///   rgx_split(",", "a,,b,")  -> "a", "b", ""
/// @endcode
ZUL_BASIC_API cow_1DArrayList<cow_String> rgx_split(const cow_String& pattern, const cow_String& subject);

/// The pieces with the separator between consecutive ones.
ZUL_BASIC_API cow_String rgx_join(const cow_1DArrayList<cow_String>& pieces, const cow_String& separator);

/// Replaces up to `count` matches (each made on the text after the previous one). References in
/// the replacement ("$&" the match, "$`" the text before it, "$'" the text after it, "$1".."$9" and
/// longer runs of the digits 1 to 9 the groups) are expanded once, from the first match, and that
/// text replaces every match. An empty match at the start of a non-empty remainder is replaced and
/// the walk steps over one character. count < 1 or no match returns the subject.
/// @code
///   rgx_subn("b", "[$&]", "abcb", 5) -> "a[b]c[b]"
/// @endcode
ZUL_BASIC_API cow_String rgx_subn(const cow_String& pattern, const cow_String& replacement,
                                  const cow_String& subject, int count);

#endif

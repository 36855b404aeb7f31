#include "rgx/rgx_funcs.h"

#include <climits>
#include <cstdlib>

#include <pcre2.h>

#include "atr/atr_translate.h"
#include "nex/nex_Exception.h"
#include "rgx/rgx_ReCompileCache.h"

namespace {

typedef rgx_ReCompileCache::Holder Holder;

// One run of the engine on text[0, length) from `from`, with no options. Fills `offsets` (pairs
// relative to text, -1 for groups that took no part) and returns the pairs filled, 0 for no match.
// A full vector (the engine's 0) counts as all ten pairs: later groups are not reported.
int Exec(const Holder& re, rgx_ReCompileCache& cache, const char* text, int length, int from, int32_t* offsets)
{
    const rgx_CompiledRe& compiled = re.GetRef();
    pcre2_match_data* data = cache.MatchData();
    const PCRE2_SPTR subject = reinterpret_cast<PCRE2_SPTR>(text);
    int rc = (compiled.IsDirect() ? pcre2_jit_match : pcre2_match)(compiled.Code(), subject, static_cast<PCRE2_SIZE>(length),
                                                                  static_cast<PCRE2_SIZE>(from), 0, data, cache.MatchContext());
    // The interpreter keeps its backtracking state on the heap and gets further than the JIT's
    // bounded stack.
    if (rc == PCRE2_ERROR_JIT_STACKLIMIT)
        rc = pcre2_match(compiled.Code(), subject, static_cast<PCRE2_SIZE>(length), static_cast<PCRE2_SIZE>(from),
                         PCRE2_NO_JIT, data, cache.MatchContext());
    if (rc == PCRE2_ERROR_NOMATCH)
        return 0;
    if (rc < 0)
        NEX_RAISE(nex_TextException, atr_translate("rgx_match: exec error: %s").Arg(atr_String(rc)).Result());
    const int pairs = rc == 0 ? rgx_ReIterator::kMaxPairs : rc;
    const PCRE2_SIZE* vector = pcre2_get_ovector_pointer(data);
    for (int i = 0; i < 2 * pairs; ++i)
        offsets[i] = vector[i] == PCRE2_UNSET ? -1 : static_cast<int32_t>(vector[i]);
    return pairs;
}

// A piece of a string's text; the whole string shares its representation instead of copying.
cow_String Piece(const cow_String& s, int from, int length)
{
    if (from == 0 && length == s.Length())
        return s;
    return cow_String(s.c_str() + from, length);
}

// The replacement with its references filled in from `match`.
cow_String Expand(const cow_String& replacement, const rgx_ReIterator& match)
{
    if (replacement.Find('$') < 0)
        return replacement;
    rgx_ReCompileCache& cache = rgx_ReCompileCache::Instance();
    const Holder reference = cache.Lookup("\\$([1-9]+|&|`|')");
    const char* text = replacement.c_str();
    const int length = replacement.Length();
    cow_String out;
    int32_t offsets[2 * rgx_ReIterator::kMaxPairs];
    int pos = 0;
    for (int pairs; pos < length && (pairs = Exec(reference, cache, text + pos, length - pos, 0, offsets)) > 0;) {
        out.append(text + pos, offsets[0]);
        for (int i = 0; i < 2 * pairs; ++i)
            offsets[i] += offsets[i] >= 0 ? pos : 0;
        rgx_ReIterator ref(replacement, offsets, pairs);
        ref.Next();  // group 1: the reference without its dollar sign
        out.append(match.NthString(ref.StringAsGroupNum()));
        pos = offsets[1];
    }
    out.append(text + pos, length - pos);
    return out;
}

}  // namespace

rgx_ReIterator::rgx_ReIterator() : m_pair(0), m_count(0), m_matched(0)
{
    for (int32_t& o : m_offsets)
        o = -1;
}

rgx_ReIterator::rgx_ReIterator(const cow_String& subject, const int32_t* offsets, int count)
    : m_pair(0), m_count(count < 0 ? 0 : (count > kMaxPairs ? kMaxPairs : count)), m_matched(1)
{
    m_subject = subject;
    // A fixed-size fill and a short copy: variable-length block moves cost more to start up.
    for (int32_t& o : m_offsets)
        o = -1;
    for (int i = 0; i < 2 * m_count; ++i)
        m_offsets[i] = offsets[i];
}

cow_String rgx_ReIterator::PairText(int n) const
{
    const int start = Start(n);
    const int end = End(n);
    if (start < 0 || end <= start || end > m_subject.Length())
        return cow_String();
    return Piece(m_subject, start, end - start);
}

cow_String rgx_ReIterator::String() const { return PairText(m_pair); }

cow_String rgx_ReIterator::NthString(int n) const
{
    if (n == -2) {
        const int start = Start(m_pair);
        return start > 0 ? Piece(m_subject, 0, start) : cow_String();
    }
    if (n == -1) {
        const int end = End(m_pair);
        return end >= 0 && end < m_subject.Length() ? Piece(m_subject, end, m_subject.Length() - end) : cow_String();
    }
    return PairText(n);
}

int rgx_ReIterator::StringAsGroupNum() const
{
    const cow_String text = String();
    if (text == "&")
        return 0;
    if (text == "'")
        return -1;
    if (text == "`")
        return -2;
    // Leading digits only; a run too long for an int saturates, which NthString reads as no group.
    long value = std::strtol(text.c_str(), nullptr, 10);
    if (value > INT_MAX)
        value = INT_MAX;
    if (value < INT_MIN)
        value = INT_MIN;
    return static_cast<int>(value);
}

rgx_ReIterator rgx_match(const cow_String& pattern, const char* subject)
{
    return rgx_match(pattern, cow_String(subject ? subject : ""));
}

rgx_ReIterator rgx_match(const cow_String& pattern, const cow_String& subject)
{
    rgx_ReCompileCache& cache = rgx_ReCompileCache::Instance();
    const Holder re = cache.Lookup(pattern);
    int32_t offsets[2 * rgx_ReIterator::kMaxPairs];
    const int pairs = Exec(re, cache, subject.c_str(), subject.Length(), 0, offsets);
    return pairs > 0 ? rgx_ReIterator(subject, offsets, pairs) : rgx_ReIterator();
}

cow_1DArrayList<cow_String> rgx_split(const cow_String& pattern, const cow_String& subject)
{
    rgx_ReCompileCache& cache = rgx_ReCompileCache::Instance();
    const Holder re = cache.Lookup(pattern);
    const char* text = subject.c_str();
    const int length = subject.Length();
    cow_1DArrayList<cow_String> pieces;
    int32_t offsets[2 * rgx_ReIterator::kMaxPairs];
    int pos = 0;  // start of the remaining text
    while (Exec(re, cache, text + pos, length - pos, 0, offsets) > 0) {
        if (offsets[1] <= 0) {
            // An empty match at the start of the remainder: look again from its next character.
            if (pos == length || Exec(re, cache, text + pos, length - pos, 1, offsets) == 0 || offsets[1] <= 0)
                break;
        }
        if (offsets[0] > 0)
            pieces.Append(Piece(subject, pos, offsets[0]));
        pos += offsets[1];
    }
    pieces.Append(Piece(subject, pos, length - pos));
    return pieces;
}

cow_String rgx_join(const cow_1DArrayList<cow_String>& pieces, const cow_String& separator)
{
    const int count = pieces.Count();
    if (count == 0)
        return cow_String();
    if (count == 1)
        return pieces[0];
    long long total = static_cast<long long>(separator.Length()) * (count - 1);
    for (int i = 0; i < count; ++i)
        total += pieces[i].Length();
    NEX_ASSERT(total <= INT_MAX);
    cow_String out;
    out.Reserve(static_cast<int>(total));
    for (int i = 0; i < count; ++i) {
        if (i > 0)
            out.append(separator);
        out.append(pieces[i]);
    }
    return out;
}

cow_String rgx_subn(const cow_String& pattern, const cow_String& replacement, const cow_String& subject, int count)
{
    rgx_ReCompileCache& cache = rgx_ReCompileCache::Instance();
    const Holder re = cache.Lookup(pattern);
    const char* text = subject.c_str();
    const int length = subject.Length();
    int32_t offsets[2 * rgx_ReIterator::kMaxPairs];
    const int pairs = Exec(re, cache, text, length, 0, offsets);
    if (pairs == 0 || count < 1)
        return subject;
    const cow_String expanded = Expand(replacement, rgx_ReIterator(subject, offsets, pairs));

    cow_String out;
    int pos = 0;  // start of the remaining text
    for (int done = 0;;) {
        const int rest = length - pos;
        const int start = offsets[0];
        int end = offsets[1];
        if (start >= 1 && rest > 0) {
            out.append(text + pos, start);
            out.append(expanded);
        } else if (end > start || rest == 0 || end == rest) {
            out.append(expanded);
        } else {
            // An empty match at the front of a non-empty remainder: step over one character.
            out.append(expanded);
            out.append(text + pos, 1);
            end = 1;
        }
        if (rest == 0)
            break;
        pos += end;
        if (++done >= count || Exec(re, cache, text + pos, length - pos, 0, offsets) == 0)
            break;
    }
    out.append(text + pos, length - pos);
    return out;
}

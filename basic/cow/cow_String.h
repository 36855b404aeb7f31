/// @class cow_String
/// cow_String: the library's one text type, used at every interface.
///
/// Narrow, zero-terminated characters with a 32-bit signed length in a representation shared
/// between copies (copying costs one increment; a writer makes the text private first). All
/// storage work is done by the lower library's atr_StringBase; this class declares no data and
/// publishes the base's operations (see atr_StringBase.h for the meaning of positions, counts,
/// borrowing and adopting):
/// @code{.unparsed}
///   Find(text, start)            first occurrence at or after start, -1 when none
///   rfind(text, start, n)        last occurrence of n characters of text beginning at or before start
///   Substitute(from, to, max)    replaces up to max occurrences (max < 0: all); returns how many
///   Substr(pos, count)           a copy of part of the string (count < 0: to the end)
///   append/insert(text, n, start, repeat), Erase(pos, count), Replace(pos, count, text, n)
///   Trim/LeftTrim/RightTrim(set), ToLower()
/// @endcode
/// Positions outside the string are clamped: no operation reads or writes outside the text.
///
/// A string without a representation reads as "" of length 0. Comparison is byte-wise over
/// unsigned characters and case-sensitive; case folding is done by changing the text (ToLower).
///
/// Thread rule: the count is a plain integer; strings sharing a representation are used by one
/// thread at a time.
#ifndef COW_STRING_H
#define COW_STRING_H

#include "atr/atr_String.h"
#include "atr/atr_StringOps.h"

class cow_String : public atr_StringOps<cow_String> {
    using Ops = atr_StringOps<cow_String>;

public:
    cow_String() {}
    cow_String(const char* s) : Ops(s) {}
    cow_String(const char* s, int n) : Ops(s, n) {}
    cow_String(const char* s, int n, atr_StringBase::Borrow b) : Ops(s, n, b) {}
    cow_String(char* buf, int n, atr_StringBase::Adopt a) : Ops(buf, n, a) {}
    cow_String(int n, atr_StringBase::PreSizeEnm p) : Ops(n, p) {}
    explicit cow_String(int v) : Ops(v) {}
    explicit cow_String(unsigned v) : Ops(v) {}
    explicit cow_String(float v) : Ops(v) {}
    explicit cow_String(double v) : Ops(v) {}

    /// Shares the representation of any string of the family.
    cow_String(const atr_StringBase& o) : Ops(o) {}
    cow_String(const cow_String& o) = default;
    cow_String(cow_String&& o) noexcept = default;
    cow_String& operator=(const cow_String& o) = default;
    cow_String& operator=(cow_String&& o) noexcept = default;
    cow_String& operator=(const atr_StringBase& o)
    {
        atr_StringBase::operator=(o);
        return *this;
    }
    using Ops::operator=;

    /// The lower library's string with the same representation (shared, not copied).
    atr_String AsAtrString() const { return atr_String(static_cast<const atr_StringBase&>(*this)); }
};

#endif

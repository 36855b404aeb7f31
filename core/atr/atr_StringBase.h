/// @class atr_StringBase
/// atr_StringBase: storage of the family's counted, copy-on-write narrow string.
///
/// Layout (code in the upper library relies on it):
/// @code{.unparsed}
///   char*          m_text;  the zero-terminated characters; never null when m_rep is non-null
///   atr_StringRep* m_rep;   the shared representation, null for the empty string
/// @endcode
/// The representation begins with two plain (non-atomic) 32-bit ints, the reference count and the
/// length; the rest is private to this library. A null representation reads as the empty string:
/// c_str() is then the shared constant atr_EmptyText. An all-zero atr_StringBase is a valid empty
/// string.
///
/// Copying shares the representation (count + 1). Every writer first makes the representation
/// private (detach) when it is shared or borrowed; the new storage is allocated before anything is
/// changed, so a failed allocation leaves the string and all its sharers exactly as they were.
///
/// Lengths are ints: a text that would pass INT_MAX - 64 characters is refused through the
/// memory layer's out-of-memory path, like any failed allocation.
///
/// Positions and counts are ints. Positions outside the string are clamped into 0..Length() and
/// negative counts mean "to the end" (or, for a char pointer with a count, "up to the terminator"),
/// so no operation reads or writes outside the text.
///
/// Kinds of representation:
/// @code{.unparsed}
///   owned    characters stored with the representation (growable);
///   adopted  a caller's buffer from mem_Malloc/mem_OperatorNewThrow, freed with mem_Free;
///   borrowed the caller's characters, used in place; the caller keeps them alive and unchanged
///            while any string refers to them. Any write copies them into owned storage first.
/// @endcode
///
/// Thread rule: the count is a plain int; strings that share a representation may be used by one
/// thread at a time.
#ifndef ATR_STRINGBASE_H
#define ATR_STRINGBASE_H

#include <cstdint>
#include <cstring>

#include "zul_CoreExport.h"

class atr_String;

/// The shared representation. Only the first two members are public knowledge.
struct atr_StringRep {
    int32_t count;   ///< holders of this representation
    int32_t length;  ///< characters, not counting the terminating zero
    int32_t capacity; ///< characters that fit without growing (terminator not counted)
    int32_t kind;     ///< atr_StringBase::RepKind
    char* data;       ///< the characters (== every holder's m_text)
};

/// The shared empty text read by strings without a representation.
extern ZUL_CORE_API const char atr_EmptyText[1];

class ZUL_CORE_API atr_StringBase {
    friend bool operator==(const atr_StringBase& a, const atr_StringBase& b);

public:
    /// Constructor tags.
    ///@{
    enum Borrow { BORROW };
    enum Adopt { ADOPT };
    enum PreSizeEnm { PRESIZE };
    ///@}
    /// Kinds of representation: owned, adopted, borrowed.
    enum RepKind { REP_OWNED = 0, REP_ADOPTED = 1, REP_BORROWED = 2 };

    ~atr_StringBase() { Release(); }

    // --- readers (public: they never change the string) ---
    const char* c_str() const { return m_rep ? m_text : atr_EmptyText; }
    operator const char*() const { return c_str(); }
    int Length() const { return m_rep ? m_rep->length : 0; }
    bool IsEmpty() const { return Length() == 0; }
    /// Characters that fit without reallocation (0 for an empty or borrowed string).
    int Capacity() const;
    /// 0 for a null representation, else the representation's count.
    int RefCount() const { return m_rep ? m_rep->count : 0; }
    bool IsBorrowed() const { return m_rep && m_rep->kind == REP_BORROWED; }
    /// True when both strings hold the same representation (or both none).
    bool SharesWith(const atr_StringBase& o) const { return m_rep == o.m_rep; }

    /// Byte-wise comparison over unsigned chars up to the terminator: <0, 0, >0. Inline: a
    /// comparison is mostly a short memcmp.
    int Compare(const atr_StringBase& o) const
    {
        if (m_rep == o.m_rep)
            return 0;
        const int la = Length();
        const int lb = o.Length();
        const unsigned shorter = static_cast<unsigned>(la < lb ? la : lb);
        const int r = std::memcmp(c_str(), o.c_str(), shorter);
        if (r != 0)
            return r;
        return la < lb ? -1 : (la > lb ? 1 : 0);
    }
    int Compare(const char* s) const;  ///< null reads as ""

protected:
    atr_StringBase() : m_text(nullptr), m_rep(nullptr) {}
    atr_StringBase(const char* s);                    ///< copy of a zero-terminated text; null -> empty
    atr_StringBase(const char* s, int n);             ///< first n bytes, zeros too (n < 0: up to the terminator)
    /// Uses the caller's characters, which must stay alive and be zero-terminated at s[n]
    /// (n < 0: strlen(s)).
    atr_StringBase(const char* s, int n, Borrow);
    /// Takes ownership of buf (from mem_Malloc / mem_OperatorNewThrow, at least n+1 bytes); the
    /// text is its first n characters (n < 0: strlen(buf)); buf[n] is set to zero. A null buf gives
    /// the empty string.
    atr_StringBase(char* buf, int n, Adopt);
    /// An empty string with room for n characters (a representation is made even for n == 0).
    atr_StringBase(int n, PreSizeEnm);
    /// Decimal text of the number: int and unsigned exactly; float as "%.7g", double as "%.15g".
    ///@{
    explicit atr_StringBase(int v);
    explicit atr_StringBase(unsigned v);
    explicit atr_StringBase(float v);
    explicit atr_StringBase(double v);
    ///@}

    atr_StringBase(const atr_StringBase& o) : m_text(o.m_text), m_rep(o.m_rep)
    {
        if (m_rep)
            ++m_rep->count;
    }
    atr_StringBase(atr_StringBase&& o) noexcept : m_text(o.m_text), m_rep(o.m_rep)
    {
        o.m_text = nullptr;
        o.m_rep = nullptr;
    }
    atr_StringBase& operator=(const atr_StringBase& o)
    {
        char* text = o.m_text;
        atr_StringRep* rep = o.m_rep;
        if (rep)
            ++rep->count;  // first, so that self-assignment is safe
        Release();
        m_text = text;
        m_rep = rep;
        return *this;
    }
    atr_StringBase& operator=(atr_StringBase&& o) noexcept
    {
        if (this != &o) {
            Release();
            m_text = o.m_text;
            m_rep = o.m_rep;
            o.m_text = nullptr;
            o.m_rep = nullptr;
        }
        return *this;
    }
    /// Replaces the text by a copy of s (null -> empty). s may point into this string.
    ///@{
    atr_StringBase& operator=(const char* s) { return Assign(s, -1); }
    atr_StringBase& Assign(const char* s, int n = -1);
    ///@}

    // --- writers ---
    /// Character access. The writable form makes the string private first; a position outside
    /// 0..Length()-1 is clamped (an empty string gets an owned, empty representation and the
    /// reference is to its terminator, which must stay zero).
    ///@{
    char operator[](int i) const { return (i >= 0 && i < Length()) ? m_text[i] : '\0'; }
    char& operator[](int i);
    ///@}

    /// Appends `repeat` copies of the n characters at s + start (n < 0: up to the terminator of
    /// s + start). Returns the string. s may point into this string.
    atr_StringBase& append(const char* s, int n = -1, int start = 0, int repeat = 1)
    {
        // The common case inline: a few counted characters into a private string with room for
        // them (borrowed representations have no room). The copy stops at a zero, as the general
        // path does.
        atr_StringRep* r = m_rep;
        if (n >= 0 && n <= 16 && start == 0 && repeat == 1 && s && r && r->count == 1 && n <= r->capacity - r->length) {
            int k = 0;
            while (k < n && s[k] != '\0')
                ++k;
            // A source inside this string ends at its terminator, where the copy starts.
            char* t = r->data + r->length;
            for (int i = 0; i < k; ++i)
                t[i] = s[i];
            t[k] = '\0';
            r->length += k;
            return *this;
        }
        return AppendText(s, n, start, repeat);
    }
    atr_StringBase& append(const atr_StringBase& s) { return append(s.c_str(), s.Length()); }
    atr_StringBase& append(char c, int repeat = 1)
    {
        // The common case inline: one character into a private string with room for it.
        atr_StringRep* r = m_rep;
        if (repeat == 1 && c != '\0' && r && r->count == 1) {
            const int32_t length = r->length;
            if (length < r->capacity) {
                char* t = r->data;
                t[length] = c;
                t[length + 1] = '\0';
                r->length = length + 1;
                return *this;
            }
        }
        return AppendChars(c, repeat);
    }
    atr_StringBase& operator+=(const char* s) { return append(s, -1); }
    atr_StringBase& operator+=(const atr_StringBase& s) { return append(s); }
    atr_StringBase& operator+=(char c) { return append(c, 1); }
    /// Inserts, at position pos, `repeat` copies of the n characters at s + start.
    atr_StringBase& insert(int pos, const char* s, int n = -1, int start = 0, int repeat = 1);
    /// Removes count characters from pos (count < 0: to the end). The capacity is kept.
    atr_StringBase& Erase(int pos = 0, int count = -1);
    /// Replaces count characters at pos (count < 0: to the end) by the n characters of s.
    atr_StringBase& Replace(int pos, int count, const char* s, int n = -1);
    /// Replaces non-overlapping occurrences of `from` by `to`, left to right, at most maxCount of
    /// them (maxCount < 0: all). Returns the number of replacements; an empty `from` replaces
    /// nothing. The string is only made private when something is replaced.
    ///@{
    int Substitute(const atr_StringBase& from, const atr_StringBase& to, int maxCount = -1);
    int Substitute(const char* from, const char* to, int maxCount = -1);
    ///@}
    /// Removes characters of `set` from both ends / the front / the back.
    ///@{
    atr_StringBase& Trim(const char* set = " \t\r\n");
    atr_StringBase& LeftTrim(const char* set = " \t\r\n");
    atr_StringBase& RightTrim(const char* set = " \t\r\n");
    ///@}
    /// ASCII case change in place.
    ///@{
    atr_StringBase& ToLower();
    atr_StringBase& ToUpper();
    ///@}
    /// Makes the string empty; an owned private representation keeps its capacity.
    atr_StringBase& Clear() { return Erase(0, -1); }
    /// Makes room for n characters (private, owned storage).
    void Reserve(int n);
    /// Direct writing: GetWriteBuffer makes the storage private, owned and at least `capacity`
    /// characters large, and returns the text; the caller writes up to capacity characters and
    /// then calls SetLength, which stores the length and the terminator (n < 0: strlen).
    ///@{
    char* GetWriteBuffer(int capacity);
    void SetLength(int n = -1);
    ///@}

    // --- searching (-1 when nothing is found) ---
    /// First occurrence of s at or after position start. An empty s is found at start
    /// (if start <= Length()).
    ///@{
    int Find(const char* s, int start = 0) const;
    int Find(char c, int start = 0) const;
    ///@}
    /// Last occurrence of the first n characters of s (n < 0: all of s) that begins at or before
    /// position start (start < 0 or past the end: anywhere).
    ///@{
    int rfind(const char* s, int start = -1, int n = -1) const;
    int rfind(char c, int start = -1) const;
    ///@}
    /// A copy of count characters from pos (count < 0: to the end), clamped to the string.
    atr_String Substr(int pos, int count = -1) const;

    bool StartsWith(const char* s) const;
    bool EndsWith(const char* s) const;

    void swap(atr_StringBase& o) noexcept
    {
        char* t = m_text;
        m_text = o.m_text;
        o.m_text = t;
        atr_StringRep* r = m_rep;
        m_rep = o.m_rep;
        o.m_rep = r;
    }

    /// Frees the representation whatever its count and leaves the string null. Holders that
    /// manage the count themselves call it when the count reaches 0.
    void Delete();
    /// Drops this holder's reference: count - 1, Delete at 0.
    void Release()
    {
        if (m_rep && --m_rep->count == 0)
            Delete();
        m_text = nullptr;
        m_rep = nullptr;
    }

    char* m_text;
    atr_StringRep* m_rep;

private:
    /// Makes the representation private, owned and able to hold `need` characters, keeping
    /// the current text; growth is geometric. Strong guarantee.
    void MakeWritable(int need);
    /// Builds the text prefix(pos) + [s, n] x repeat + suffix(pos + cut) and installs it.
    void Splice(int pos, int cut, const char* s, int n, int repeat);
    void InitCopy(const char* s, int n);
    atr_StringBase& AppendChars(char c, int repeat);
    atr_StringBase& AppendText(const char* s, int n, int start, int repeat);
    int SubstituteText(const char* from, int flen, const char* to, int tlen, int maxCount);
};

/// Comparisons, byte-wise over unsigned chars; a null pointer reads as "".
///@{
inline bool operator==(const atr_StringBase& a, const atr_StringBase& b)
{
    if (a.m_rep == b.m_rep)
        return true;  // one representation (or both empty)
    const int length = a.Length();
    return length == b.Length() && std::memcmp(a.c_str(), b.c_str(), static_cast<unsigned>(length)) == 0;
}
inline bool operator!=(const atr_StringBase& a, const atr_StringBase& b) { return !(a == b); }
inline bool operator<(const atr_StringBase& a, const atr_StringBase& b) { return a.Compare(b) < 0; }
inline bool operator<=(const atr_StringBase& a, const atr_StringBase& b) { return a.Compare(b) <= 0; }
inline bool operator>(const atr_StringBase& a, const atr_StringBase& b) { return a.Compare(b) > 0; }
inline bool operator>=(const atr_StringBase& a, const atr_StringBase& b) { return a.Compare(b) >= 0; }

inline bool operator==(const atr_StringBase& a, const char* b) { return a.Compare(b) == 0; }
inline bool operator!=(const atr_StringBase& a, const char* b) { return a.Compare(b) != 0; }
inline bool operator<(const atr_StringBase& a, const char* b) { return a.Compare(b) < 0; }
inline bool operator<=(const atr_StringBase& a, const char* b) { return a.Compare(b) <= 0; }
inline bool operator>(const atr_StringBase& a, const char* b) { return a.Compare(b) > 0; }
inline bool operator>=(const atr_StringBase& a, const char* b) { return a.Compare(b) >= 0; }

inline bool operator==(const char* a, const atr_StringBase& b) { return b.Compare(a) == 0; }
inline bool operator!=(const char* a, const atr_StringBase& b) { return b.Compare(a) != 0; }
inline bool operator<(const char* a, const atr_StringBase& b) { return b.Compare(a) > 0; }
inline bool operator<=(const char* a, const atr_StringBase& b) { return b.Compare(a) >= 0; }
inline bool operator>(const char* a, const atr_StringBase& b) { return b.Compare(a) < 0; }
inline bool operator>=(const char* a, const atr_StringBase& b) { return b.Compare(a) <= 0; }
///@}

#endif

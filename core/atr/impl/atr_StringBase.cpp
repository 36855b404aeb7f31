#include "atr/atr_StringBase.h"

#include <climits>
#include <cstdio>
#include <cstring>

#include "atr/atr_String.h"
#include "mem/mem_Memory.h"
#include "mem/mem_OutOfMemory.h"

const char atr_EmptyText[1] = {'\0'};

namespace {

// Longest text a representation may hold; lengths stay well inside int.
const long long kMaxLength = INT_MAX - 64;
// Owned representations up to this many bytes come from the small-block allocator.
const size_t kTinyBlock = 64;

// A text longer than an int can count cannot be stored: reported as the allocation it would
// need failing, through the installed out-of-memory thrower.
[[noreturn]] void TooLong(long long n)
{
    mem_ThrowOutOfMemory(n > 0 ? static_cast<size_t>(n) : static_cast<size_t>(-1));
}

int CheckedLength(long long n)
{
    if (n < 0 || n > kMaxLength)
        TooLong(n);
    return static_cast<int>(n);
}

// Characters of s to use: n, or fewer when a zero comes first; n < 0 means up to the zero.
int TextLength(const char* s, int n)
{
    if (!s)
        return 0;
    if (n < 0)
        return CheckedLength(static_cast<long long>(std::strlen(s)));
    const void* z = std::memchr(s, 0, static_cast<size_t>(n));
    return z ? static_cast<int>(static_cast<const char*>(z) - s) : n;
}

int Clamp(int v, int lo, int hi) { return v < lo ? lo : (v > hi ? hi : v); }

// A fresh owned representation with room for at least cap characters (all the room its block
// gives); count 1, length 0.
atr_StringRep* NewOwned(int cap)
{
    const size_t bytes = mem_GoodSize(sizeof(atr_StringRep) + static_cast<size_t>(cap) + 1);
    void* block = bytes <= kTinyBlock ? mem_OperatorNewTinyThrow(bytes) : mem_OperatorNewThrow(bytes);
    atr_StringRep* rep = static_cast<atr_StringRep*>(block);
    const size_t room = bytes - sizeof(atr_StringRep) - 1;
    rep->count = 1;
    rep->length = 0;
    rep->capacity = room > static_cast<size_t>(kMaxLength) ? static_cast<int>(kMaxLength) : static_cast<int>(room);
    rep->kind = atr_StringBase::REP_OWNED;
    rep->data = reinterpret_cast<char*>(rep + 1);
    rep->data[0] = '\0';
    return rep;
}

atr_StringRep* NewExternal(char* data, int n, int kind)
{
    atr_StringRep* rep = static_cast<atr_StringRep*>(mem_OperatorNewTinyThrow(sizeof(atr_StringRep)));
    rep->count = 1;
    rep->length = n;
    rep->capacity = kind == atr_StringBase::REP_BORROWED ? 0 : n;
    rep->kind = kind;
    rep->data = data;
    return rep;
}

void FreeRep(atr_StringRep* rep)
{
    if (rep->kind == atr_StringBase::REP_ADOPTED)
        mem_Free(rep->data);
    mem_Free(rep);
}

// Capacity for a text that must grow to `need` characters from `current`: geometric, so that
// a loop of appends costs amortised constant time per character; a string that grows starts
// with a 64-byte block (39 characters).
int GrownCapacity(int need, int current)
{
    long long cap = 2LL * current;
    if (cap < 39)
        cap = 39;
    if (cap < need)
        cap = need;
    if (cap > kMaxLength)
        cap = kMaxLength;
    return static_cast<int>(cap);
}

bool InSet(char c, const char* set) { return c != '\0' && std::strchr(set, c) != nullptr; }

}  // namespace

// ---------------------------------------------------------------------------------------------
// Construction

void atr_StringBase::InitCopy(const char* s, int n)
{
    m_text = nullptr;
    m_rep = nullptr;
    // A count is taken as given: zero bytes inside it are part of the text.
    const int len = s && n >= 0 ? CheckedLength(n) : TextLength(s, n);
    if (len == 0)
        return;
    atr_StringRep* rep = NewOwned(len);
    std::memcpy(rep->data, s, static_cast<size_t>(len));
    rep->data[len] = '\0';
    rep->length = len;
    m_rep = rep;
    m_text = rep->data;
}

atr_StringBase::atr_StringBase(const char* s) { InitCopy(s, -1); }

atr_StringBase::atr_StringBase(const char* s, int n) { InitCopy(s, n); }

atr_StringBase::atr_StringBase(const char* s, int n, Borrow)
{
    m_text = nullptr;
    m_rep = nullptr;
    if (!s)
        return;
    if (n < 0)
        n = CheckedLength(static_cast<long long>(std::strlen(s)));
    if (s[n] != '\0') {
        // Not terminated where the caller said: a borrowed text would read past n, so copy.
        InitCopy(s, n);
        return;
    }
    m_rep = NewExternal(const_cast<char*>(s), n, REP_BORROWED);
    m_text = m_rep->data;
}

atr_StringBase::atr_StringBase(char* buf, int n, Adopt)
{
    m_text = nullptr;
    m_rep = nullptr;
    if (!buf)
        return;
    if (n < 0)
        n = static_cast<int>(std::strlen(buf));
    buf[n] = '\0';
    try {
        m_rep = NewExternal(buf, n, REP_ADOPTED);
    } catch (...) {
        mem_Free(buf);  // ownership was handed over: do not leak it
        throw;
    }
    m_text = buf;
}

atr_StringBase::atr_StringBase(int n, PreSizeEnm)
{
    m_rep = NewOwned(CheckedLength(n < 0 ? 0 : n));
    m_text = m_rep->data;
}

atr_StringBase::atr_StringBase(int v)
{
    char buf[32];
    const int len = std::snprintf(buf, sizeof buf, "%d", v);
    InitCopy(buf, len);
}

atr_StringBase::atr_StringBase(unsigned v)
{
    char buf[32];
    const int len = std::snprintf(buf, sizeof buf, "%u", v);
    InitCopy(buf, len);
}

atr_StringBase::atr_StringBase(float v)
{
    char buf[64];
    const int len = std::snprintf(buf, sizeof buf, "%.7g", static_cast<double>(v));
    InitCopy(buf, len);
}

atr_StringBase::atr_StringBase(double v)
{
    char buf[64];
    const int len = std::snprintf(buf, sizeof buf, "%.15g", v);
    InitCopy(buf, len);
}

void atr_StringBase::Delete()
{
    if (m_rep)
        FreeRep(m_rep);
    m_rep = nullptr;
    m_text = nullptr;
}

// ---------------------------------------------------------------------------------------------
// Readers

int atr_StringBase::Capacity() const
{
    return (m_rep && m_rep->kind != REP_BORROWED) ? m_rep->capacity : 0;
}

int atr_StringBase::Compare(const char* s) const
{
    // strcmp compares as unsigned char.
    return std::strcmp(c_str(), s ? s : "");
}

int atr_StringBase::Find(const char* s, int start) const
{
    const int len = Length();
    if (start < 0)
        start = 0;
    if (start > len)
        return -1;
    if (!s || !*s)
        return start;
    const char* text = c_str();
    const char* hit = std::strstr(text + start, s);
    return hit ? static_cast<int>(hit - text) : -1;
}

int atr_StringBase::Find(char c, int start) const
{
    const int len = Length();
    if (start < 0)
        start = 0;
    if (c == '\0' || start >= len)
        return -1;
    const void* hit = std::memchr(m_text + start, static_cast<unsigned char>(c), static_cast<size_t>(len - start));
    return hit ? static_cast<int>(static_cast<const char*>(hit) - m_text) : -1;
}

int atr_StringBase::rfind(const char* s, int start, int n) const
{
    const int len = Length();
    const int slen = TextLength(s, n);
    if (slen > len)
        return -1;
    int last = len - slen;
    if (start >= 0 && start < last)
        last = start;
    const char* text = c_str();
    for (int i = last; i >= 0; --i) {
        if (std::memcmp(text + i, s, static_cast<size_t>(slen)) == 0)
            return i;
    }
    return -1;
}

int atr_StringBase::rfind(char c, int start) const
{
    const int len = Length();
    int last = len - 1;
    if (start >= 0 && start < last)
        last = start;
    for (int i = last; i >= 0; --i) {
        if (m_text[i] == c)
            return i;
    }
    return -1;
}

atr_String atr_StringBase::Substr(int pos, int count) const
{
    const int len = Length();
    pos = Clamp(pos, 0, len);
    if (count < 0 || count > len - pos)
        count = len - pos;
    if (pos == 0 && count == len)
        return atr_String(*this);  // the whole string: share it
    return atr_String(c_str() + pos, count);
}

bool atr_StringBase::StartsWith(const char* s) const
{
    const int n = TextLength(s, -1);
    return n <= Length() && std::memcmp(c_str(), s, static_cast<size_t>(n)) == 0;
}

bool atr_StringBase::EndsWith(const char* s) const
{
    const int n = TextLength(s, -1);
    const int len = Length();
    return n <= len && std::memcmp(c_str() + len - n, s, static_cast<size_t>(n)) == 0;
}

// ---------------------------------------------------------------------------------------------
// Writers

void atr_StringBase::MakeWritable(int need)
{
    const int len = Length();
    if (need < len)
        need = len;
    if (m_rep && m_rep->count == 1 && m_rep->kind != REP_BORROWED && m_rep->capacity >= need)
        return;
    // The new storage is made before the old is touched (strong guarantee).
    const bool grows = m_rep && m_rep->count == 1 && m_rep->kind != REP_BORROWED;
    atr_StringRep* rep = NewOwned(grows ? GrownCapacity(need, m_rep->capacity) : need);
    if (len)
        std::memcpy(rep->data, m_text, static_cast<size_t>(len));
    rep->data[len] = '\0';
    rep->length = len;
    Release();
    m_rep = rep;
    m_text = rep->data;
}

void atr_StringBase::Splice(int pos, int cut, const char* s, int n, int repeat)
{
    const int len = Length();
    pos = Clamp(pos, 0, len);
    if (cut < 0 || cut > len - pos)
        cut = len - pos;
    if (repeat < 0)
        repeat = 0;
    const int slen = (repeat > 0) ? TextLength(s, n) : 0;
    const long long insertLen = static_cast<long long>(slen) * repeat;
    if (cut == 0 && insertLen == 0)
        return;  // nothing changes: do not detach
    const int newLen = CheckedLength(static_cast<long long>(len) - cut + insertLen);

    const bool inPlace = m_rep && m_rep->count == 1 && m_rep->kind != REP_BORROWED;
    if (newLen == 0 && !inPlace) {
        Release();
        return;
    }
    const bool aliases = s && m_rep && s >= m_rep->data && s <= m_rep->data + m_rep->capacity;
    if (inPlace && newLen <= m_rep->capacity && !(aliases && insertLen > 0)) {
        char* t = m_text;
        std::memmove(t + pos + insertLen, t + pos + cut, static_cast<size_t>(len - pos - cut));
        for (int r = 0; r < repeat; ++r)
            std::memcpy(t + pos + static_cast<long long>(r) * slen, s, static_cast<size_t>(slen));
        t[newLen] = '\0';
        m_rep->length = newLen;
        return;
    }

    // Build the new text in fresh storage; the old one (which s may point into) stays intact
    // until the new one is complete.
    const int cap = (inPlace && newLen > len) ? GrownCapacity(newLen, m_rep->capacity)
                                              : (newLen > len ? GrownCapacity(newLen, len) : newLen);
    atr_StringRep* rep = NewOwned(cap);
    char* t = rep->data;
    const char* old = c_str();
    std::memcpy(t, old, static_cast<size_t>(pos));
    for (int r = 0; r < repeat; ++r)
        std::memcpy(t + pos + static_cast<long long>(r) * slen, s, static_cast<size_t>(slen));
    std::memcpy(t + pos + insertLen, old + pos + cut, static_cast<size_t>(len - pos - cut));
    t[newLen] = '\0';
    rep->length = newLen;
    Release();
    m_rep = rep;
    m_text = t;
}

atr_StringBase& atr_StringBase::Assign(const char* s, int n)
{
    const int slen = TextLength(s, n);
    Splice(0, -1, s, slen, 1);
    return *this;
}

char& atr_StringBase::operator[](int i)
{
    MakeWritable(Length());
    if (!m_rep) {
        m_rep = NewOwned(0);
        m_text = m_rep->data;
    }
    return m_text[Clamp(i, 0, m_rep->length)];
}

atr_StringBase& atr_StringBase::AppendText(const char* s, int n, int start, int repeat)
{
    if (!s)
        return *this;
    if (start > 0)
        s += TextLength(s, start);  // never step past the terminator
    if (repeat == 1 && m_rep && m_rep->count == 1 && m_rep->kind != REP_BORROWED) {
        // Fast path: a private string with room. A source inside this string ends at its
        // terminator, before the place written to, so the copy cannot overlap.
        const int len = m_rep->length;
        const int slen = TextLength(s, n);
        if (slen <= m_rep->capacity - len) {
            std::memcpy(m_text + len, s, static_cast<size_t>(slen));
            m_rep->length = len + slen;
            m_text[len + slen] = '\0';
            return *this;
        }
    }
    Splice(Length(), 0, s, n, repeat);
    return *this;
}

atr_StringBase& atr_StringBase::AppendChars(char c, int repeat)
{
    if (c == '\0')
        return *this;
    const char one[2] = {c, '\0'};
    Splice(Length(), 0, one, 1, repeat);
    return *this;
}

atr_StringBase& atr_StringBase::insert(int pos, const char* s, int n, int start, int repeat)
{
    if (s && start > 0)
        s += TextLength(s, start);
    Splice(pos, 0, s, n, repeat);
    return *this;
}

atr_StringBase& atr_StringBase::Erase(int pos, int count)
{
    Splice(pos, count, nullptr, 0, 0);
    return *this;
}

atr_StringBase& atr_StringBase::Replace(int pos, int count, const char* s, int n)
{
    Splice(pos, count, s, n, 1);
    return *this;
}

int atr_StringBase::Substitute(const atr_StringBase& from, const atr_StringBase& to, int maxCount)
{
    return SubstituteText(from.c_str(), from.Length(), to.c_str(), to.Length(), maxCount);
}

int atr_StringBase::Substitute(const char* from, const char* to, int maxCount)
{
    return SubstituteText(from, TextLength(from, -1), to, TextLength(to, -1), maxCount);
}

int atr_StringBase::SubstituteText(const char* f, int flen, const char* to, int tlen, int maxCount)
{
    if (flen == 0 || maxCount == 0)
        return 0;
    if (!to)
        to = atr_EmptyText;
    const int len = Length();
    const char* text = c_str();
    // First pass: count, so that the new text is allocated once.
    int hits = 0;
    for (int i = Find(f, 0); i >= 0; i = Find(f, i + flen)) {
        ++hits;
        if (maxCount > 0 && hits == maxCount)
            break;
    }
    if (hits == 0)
        return 0;
    const int newLen = CheckedLength(static_cast<long long>(len) + static_cast<long long>(hits) * (tlen - flen));
    if (newLen == 0) {
        Release();
        return hits;
    }
    // f and to may point into this string: the old text stays until the new one is complete.
    atr_StringRep* rep = NewOwned(newLen);
    char* out = rep->data;
    int copied = 0;
    int done = 0;
    for (int i = Find(f, 0); i >= 0 && done < hits; i = Find(f, i + flen)) {
        std::memcpy(out, text + copied, static_cast<size_t>(i - copied));
        out += i - copied;
        std::memcpy(out, to, static_cast<size_t>(tlen));
        out += tlen;
        copied = i + flen;
        ++done;
    }
    std::memcpy(out, text + copied, static_cast<size_t>(len - copied));
    rep->data[newLen] = '\0';
    rep->length = newLen;
    Release();
    m_rep = rep;
    m_text = rep->data;
    return hits;
}

atr_StringBase& atr_StringBase::Trim(const char* set)
{
    RightTrim(set);
    return LeftTrim(set);
}

atr_StringBase& atr_StringBase::LeftTrim(const char* set)
{
    if (!set)
        return *this;
    const int len = Length();
    int b = 0;
    while (b < len && InSet(m_text[b], set))
        ++b;
    Splice(0, b, nullptr, 0, 0);
    return *this;
}

atr_StringBase& atr_StringBase::RightTrim(const char* set)
{
    if (!set)
        return *this;
    const int len = Length();
    int e = len;
    while (e > 0 && InSet(m_text[e - 1], set))
        --e;
    Splice(e, len - e, nullptr, 0, 0);
    return *this;
}

atr_StringBase& atr_StringBase::ToLower()
{
    const int len = Length();
    int i = 0;
    while (i < len && !(m_text[i] >= 'A' && m_text[i] <= 'Z'))
        ++i;
    if (i == len)
        return *this;
    MakeWritable(len);
    for (; i < len; ++i) {
        if (m_text[i] >= 'A' && m_text[i] <= 'Z')
            m_text[i] = static_cast<char>(m_text[i] - 'A' + 'a');
    }
    return *this;
}

atr_StringBase& atr_StringBase::ToUpper()
{
    const int len = Length();
    int i = 0;
    while (i < len && !(m_text[i] >= 'a' && m_text[i] <= 'z'))
        ++i;
    if (i == len)
        return *this;
    MakeWritable(len);
    for (; i < len; ++i) {
        if (m_text[i] >= 'a' && m_text[i] <= 'z')
            m_text[i] = static_cast<char>(m_text[i] - 'a' + 'A');
    }
    return *this;
}

void atr_StringBase::Reserve(int n)
{
    MakeWritable(CheckedLength(n < 0 ? 0 : n));
    if (!m_rep) {
        m_rep = NewOwned(0);
        m_text = m_rep->data;
    }
}

char* atr_StringBase::GetWriteBuffer(int capacity)
{
    Reserve(capacity);
    return m_text;
}

void atr_StringBase::SetLength(int n)
{
    if (!m_rep)
        return;
    MakeWritable(Length());
    const int cap = m_rep->capacity;
    if (n < 0) {
        const void* z = std::memchr(m_text, 0, static_cast<size_t>(cap) + 1);
        n = z ? static_cast<int>(static_cast<const char*>(z) - m_text) : cap;
    }
    n = Clamp(n, 0, cap);
    m_text[n] = '\0';
    m_rep->length = n;
}

#include "atr/atr_translate.h"

#include <cstdio>
#include <cstring>
#include <new>
#include <utility>

#include "mem/mem_Memory.h"

namespace {

typedef atr_translate::Argument Argument;

void DestroyArgs(Argument* args, int count)
{
    for (int i = 0; i < count; ++i)
        args[i].~Argument();
    mem_Free(args);
}

// Appends the output of snprintf(fmt, v) to out.
template <class T>
void AppendOne(atr_String& out, const char* fmt, T v)
{
    char local[128];
    const int n = std::snprintf(local, sizeof local, fmt, v);
    if (n <= 0)
        return;
    if (n < static_cast<int>(sizeof local)) {
        out.append(local, n);
        return;
    }
    const int len = out.Length();
    char* t = out.GetWriteBuffer(len + n);
    std::snprintf(t + len, static_cast<size_t>(n) + 1, fmt, v);
    out.SetLength(len + n);
}

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// Reads a decimal number (saturating well below INT_MAX).
int ReadNumber(const char*& p)
{
    long long v = 0;
    while (IsDigit(*p)) {
        if (v < 100000000)
            v = v * 10 + (*p - '0');
        ++p;
    }
    return static_cast<int>(v);
}

// Reads "N$" when it stands at p; returns N (>= 1) and moves p past it, else 0 and leaves p.
int ReadPosition(const char*& p)
{
    const char* q = p;
    if (!IsDigit(*q) || *q == '0')
        return 0;
    const int n = ReadNumber(q);
    if (*q != '$')
        return 0;
    p = q + 1;
    return n;
}

enum Length { LEN_NONE, LEN_HH, LEN_H, LEN_L, LEN_LL, LEN_BIG };

bool AsInteger(const Argument* a, long long& value)
{
    if (!a)
        return false;
    if (a->kind == atr_translate::ARG_SIGNED) {
        value = a->i;
        return true;
    }
    if (a->kind == atr_translate::ARG_UNSIGNED) {
        value = static_cast<long long>(a->u);
        return true;
    }
    return false;
}

}  // namespace

atr_translate::atr_translate(const char* format) : m_format(format), m_args(nullptr), m_count(0), m_capacity(0) {}

atr_translate::atr_translate(const atr_translate& o) : m_format(o.m_format), m_args(nullptr), m_count(0), m_capacity(0)
{
    if (o.m_count == 0)
        return;
    m_args = static_cast<Argument*>(mem_OperatorNewThrow(sizeof(Argument) * static_cast<size_t>(o.m_count)));
    for (int i = 0; i < o.m_count; ++i)
        ::new (&m_args[i]) Argument(o.m_args[i]);  // copies share strings: no allocation, no throw
    m_count = m_capacity = o.m_count;
}

atr_translate& atr_translate::operator=(const atr_translate& o)
{
    if (this != &o) {
        atr_translate copy(o);
        std::swap(m_format, copy.m_format);
        std::swap(m_args, copy.m_args);
        std::swap(m_count, copy.m_count);
        std::swap(m_capacity, copy.m_capacity);
    }
    return *this;
}

atr_translate::~atr_translate()
{
    if (m_args)
        DestroyArgs(m_args, m_count);
}

atr_translate::Argument& atr_translate::Slot(int place)
{
    if (place > m_capacity) {
        int cap = m_capacity ? m_capacity * 2 : 4;
        if (cap < place)
            cap = place;
        Argument* args = static_cast<Argument*>(mem_OperatorNewThrow(sizeof(Argument) * static_cast<size_t>(cap)));
        for (int i = 0; i < m_count; ++i)
            ::new (&args[i]) Argument(std::move(m_args[i]));
        if (m_args)
            DestroyArgs(m_args, m_count);
        m_args = args;
        m_capacity = cap;
    }
    while (m_count < place) {
        Argument* a = ::new (&m_args[m_count]) Argument();
        a->kind = ARG_NONE;
        a->i = 0;
        a->u = 0;
        a->d = 0;
        a->p = nullptr;
        ++m_count;
    }
    return m_args[place - 1];
}

atr_translate& atr_translate::SetArg(int place, const atr_StringBase& s)
{
    if (place < 1)
        return *this;
    Argument& a = Slot(place);
    a.s = atr_String(s);
    a.kind = ARG_TEXT;
    return *this;
}

atr_translate& atr_translate::Arg(const atr_StringBase& s) { return SetArg(m_count + 1, s); }

atr_translate& atr_translate::Arg(const char* s)
{
    if (!s)
        return SetArg(m_count + 1, atr_String("(null)"));
    return SetArg(m_count + 1, atr_String(s));
}

atr_translate& atr_translate::Arg(long long v)
{
    Argument& a = Slot(m_count + 1);
    a.kind = ARG_SIGNED;
    a.i = v;
    return *this;
}

atr_translate& atr_translate::Arg(unsigned long long v)
{
    Argument& a = Slot(m_count + 1);
    a.kind = ARG_UNSIGNED;
    a.u = v;
    return *this;
}

atr_translate& atr_translate::Arg(int v) { return Arg(static_cast<long long>(v)); }
atr_translate& atr_translate::Arg(long v) { return Arg(static_cast<long long>(v)); }
atr_translate& atr_translate::Arg(unsigned v) { return Arg(static_cast<unsigned long long>(v)); }
atr_translate& atr_translate::Arg(unsigned long v) { return Arg(static_cast<unsigned long long>(v)); }

atr_translate& atr_translate::Arg(double v)
{
    Argument& a = Slot(m_count + 1);
    a.kind = ARG_DOUBLE;
    a.d = v;
    return *this;
}

atr_translate& atr_translate::Arg(const void* p)
{
    Argument& a = Slot(m_count + 1);
    a.kind = ARG_POINTER;
    a.p = p;
    return *this;
}

atr_String atr_translate::Result() const
{
    atr_String out(m_format.Length() + 16, atr_StringBase::PRESIZE);
    const char* p = m_format.c_str();
    int seq = 1;  // next argument of a conversion without "N$"
    auto argAt = [this](int n) -> const Argument* { return (n >= 1 && n <= m_count) ? &m_args[n - 1] : nullptr; };

    while (*p) {
        const char* pct = std::strchr(p, '%');
        if (!pct) {
            out.append(p);
            break;
        }
        out.append(p, static_cast<int>(pct - p));
        const char* q = pct + 1;
        if (*q == '%') {
            out.append('%');
            p = q + 1;
            continue;
        }

        // %[N$][flags][width][.precision][length]conv
        const int position = ReadPosition(q);
        char fmt[48];
        int sl = 0;
        fmt[sl++] = '%';
        bool leftAlign = false;
        while (*q && std::strchr("-+ #0", *q)) {
            if (*q == '-')
                leftAlign = true;
            if (sl < 12)
                fmt[sl++] = *q;
            ++q;
        }
        bool bad = false;  // an argument for '*' missing or not an integer
        int width = -1;
        if (*q == '*') {
            ++q;
            int n = ReadPosition(q);
            long long w = 0;
            if (!AsInteger(argAt(n ? n : seq++), w))
                bad = true;
            if (w < 0) {
                if (!leftAlign)
                    fmt[sl++] = '-';
                w = -w;
            }
            width = static_cast<int>(w > 100000 ? 100000 : w);
        } else if (IsDigit(*q)) {
            width = ReadNumber(q);
            if (width > 100000)
                width = 100000;  // keeps a runaway width from eating memory
        }
        int precision = -1;
        if (*q == '.') {
            ++q;
            if (*q == '*') {
                ++q;
                int n = ReadPosition(q);
                long long pr = 0;
                if (!AsInteger(argAt(n ? n : seq++), pr))
                    bad = true;
                precision = pr < 0 ? -1 : static_cast<int>(pr > 100000 ? 100000 : pr);
            } else {
                precision = ReadNumber(q);
                if (precision > 100000)
                    precision = 100000;
            }
        }
        Length len = LEN_NONE;
        if (q[0] == 'h' && q[1] == 'h') {
            len = LEN_HH;
            q += 2;
        } else if (q[0] == 'l' && q[1] == 'l') {
            len = LEN_LL;
            q += 2;
        } else if (*q == 'h') {
            len = LEN_H;
            ++q;
        } else if (*q == 'l') {
            len = LEN_L;
            ++q;
        } else if (*q == 'z' || *q == 'j' || *q == 't') {
            len = LEN_BIG;
            ++q;
        } else if (*q == 'L') {
            ++q;  // long double: printed from the double argument
        }
        const char conv = *q;
        if (conv == '\0' || !std::strchr("diuxXocsfFeEgGpn", conv)) {
            // Not a conversion: copy the text as written.
            const char* stop = conv ? q + 1 : q;
            out.append(pct, static_cast<int>(stop - pct));
            p = stop;
            continue;
        }
        p = q + 1;
        if (conv == 'n')
            continue;  // never writes through an argument
        const Argument* a = argAt(position ? position : seq++);
        if (bad || !a)
            continue;

        if (width >= 0)
            sl += std::snprintf(fmt + sl, sizeof fmt - static_cast<size_t>(sl), "%d", width);
        if (precision >= 0)
            sl += std::snprintf(fmt + sl, sizeof fmt - static_cast<size_t>(sl), ".%d", precision);

        switch (conv) {
        case 'd':
        case 'i': {
            long long v;
            if (!AsInteger(a, v))
                break;
            switch (len) {
            case LEN_HH: v = static_cast<signed char>(v); break;
            case LEN_H: v = static_cast<short>(v); break;
            case LEN_NONE: v = static_cast<int>(v); break;
            case LEN_L: v = static_cast<long>(v); break;
            default: break;
            }
            fmt[sl++] = 'l';
            fmt[sl++] = 'l';
            fmt[sl++] = conv;
            fmt[sl] = '\0';
            AppendOne(out, fmt, v);
            break;
        }
        case 'u':
        case 'x':
        case 'X':
        case 'o': {
            long long s;
            if (!AsInteger(a, s))
                break;
            unsigned long long v = static_cast<unsigned long long>(s);
            switch (len) {
            case LEN_HH: v = static_cast<unsigned char>(v); break;
            case LEN_H: v = static_cast<unsigned short>(v); break;
            case LEN_NONE: v = static_cast<unsigned>(v); break;
            case LEN_L: v = static_cast<unsigned long>(v); break;
            default: break;
            }
            fmt[sl++] = 'l';
            fmt[sl++] = 'l';
            fmt[sl++] = conv;
            fmt[sl] = '\0';
            AppendOne(out, fmt, v);
            break;
        }
        case 'c': {
            long long v;
            if (!AsInteger(a, v))
                break;
            fmt[sl++] = 'c';
            fmt[sl] = '\0';
            AppendOne(out, fmt, static_cast<int>(static_cast<unsigned char>(v)));
            break;
        }
        case 's':
            if (a->kind != ARG_TEXT)
                break;
            if (width < 0 && precision < 0 && sl == 1) {
                out.append(a->s);  // plain %s: no formatting needed
                break;
            }
            fmt[sl++] = 's';
            fmt[sl] = '\0';
            AppendOne(out, fmt, a->s.c_str());
            break;
        case 'p':
            if (a->kind != ARG_POINTER)
                break;
            fmt[sl++] = 'p';
            fmt[sl] = '\0';
            AppendOne(out, fmt, a->p);
            break;
        default:  // f F e E g G
            if (a->kind != ARG_DOUBLE)
                break;
            fmt[sl++] = conv;
            fmt[sl] = '\0';
            AppendOne(out, fmt, a->d);
            break;
        }
    }
    // Give back the slack of the pre-sized buffer only when it is large.
    if (out.Capacity() > 2 * out.Length() + 256)
        return atr_String(out.c_str(), out.Length());
    return out;
}

void atr_SubstituteFormat(atr_translate& t, int place, const atr_StringBase& s) { t.SetArg(place, s); }

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

// The arguments of one Result() run, and the number of the next argument that a conversion or
// a "*" without "N$" takes.
struct ArgumentCursor {
    const Argument* args;
    int count;
    int next;

    const Argument* At(int n) const { return (n >= 1 && n <= count) ? &args[n - 1] : nullptr; }
    // Argument `position` when it is given (>= 1), else the next one in order.
    const Argument* Take(int position) { return At(position ? position : next++); }
};

// One conversion, %[N$][flags][width][.precision][length]conv, as parsed. `format` holds the
// snprintf format being built: '%' and the flags after parsing; AppendConversion adds the width,
// the precision and the conversion letter (after "ll" for integers).
struct Conversion {
    char format[48];
    int used;
    int position;    // N of "N$", 0 without
    bool leftAlign;  // a '-' flag was given
    bool bad;        // an argument for '*' is missing or not an integer
    int width;       // -1: none
    int precision;   // -1: none
    Length length;
    char letter;

    void Add(char c) { format[used++] = c; }
    void AddNumber(const char* form, int n)
    {
        used += std::snprintf(format + used, sizeof format - static_cast<size_t>(used), form, n);
    }
    void AddWidthAndPrecision()
    {
        if (width >= 0)
            AddNumber("%d", width);
        if (precision >= 0)
            AddNumber(".%d", precision);
    }
    void Finish(char c)
    {
        format[used++] = c;
        format[used] = '\0';
    }
};

// Keeps a runaway width or precision from eating memory.
int Clamp(long long v)
{
    return static_cast<int>(v > 100000 ? 100000 : v);
}

void ReadFlags(const char*& q, Conversion& c)
{
    while (*q && std::strchr("-+ #0", *q)) {
        if (*q == '-')
            c.leftAlign = true;
        if (c.used < 12)
            c.Add(*q);
        ++q;
    }
}

// The integer of a "*" or "*M$" (q stands after the '*'); marks the c bad when it is missing.
long long ReadStarValue(const char*& q, Conversion& c, ArgumentCursor& args)
{
    long long v = 0;
    if (!AsInteger(args.Take(ReadPosition(q)), v))
        c.bad = true;
    return v;
}

void ReadWidth(const char*& q, Conversion& c, ArgumentCursor& args)
{
    if (*q == '*') {
        ++q;
        long long w = ReadStarValue(q, c, args);
        if (w < 0) {  // a negative width aligns left
            if (!c.leftAlign)
                c.Add('-');
            w = -w;
        }
        c.width = Clamp(w);
    } else if (IsDigit(*q)) {
        c.width = Clamp(ReadNumber(q));
    }
}

void ReadPrecision(const char*& q, Conversion& c, ArgumentCursor& args)
{
    if (*q != '.')
        return;
    ++q;
    if (*q == '*') {
        ++q;
        const long long pr = ReadStarValue(q, c, args);
        c.precision = pr < 0 ? -1 : Clamp(pr);
    } else {
        c.precision = Clamp(ReadNumber(q));
    }
}

Length ReadLength(const char*& q)
{
    if (q[0] == 'h' && q[1] == 'h') {
        q += 2;
        return LEN_HH;
    }
    if (q[0] == 'l' && q[1] == 'l') {
        q += 2;
        return LEN_LL;
    }
    switch (*q) {
    case 'h': ++q; return LEN_H;
    case 'l': ++q; return LEN_L;
    case 'z':
    case 'j':
    case 't': ++q; return LEN_BIG;
    case 'L': ++q; return LEN_NONE;  // long double: printed from the double argument
    default: return LEN_NONE;
    }
}

// Parses the conversion after its '%' (q stands after it) and leaves q on the conversion
// letter, or on the terminator. "*" widths and precisions take their arguments here. False when
// no known conversion letter follows.
bool ParseConversion(const char*& q, Conversion& c, ArgumentCursor& args)
{
    c.used = 0;
    c.Add('%');
    c.position = ReadPosition(q);
    c.leftAlign = false;
    c.bad = false;
    c.width = -1;
    c.precision = -1;
    ReadFlags(q, c);
    ReadWidth(q, c, args);
    ReadPrecision(q, c, args);
    c.length = ReadLength(q);
    c.letter = *q;
    return c.letter != '\0' && std::strchr("diuxXocsfFeEgGpn", c.letter);
}

// d i narrow the value as a signed number, u x X o as an unsigned one, as printf's length
// modifier would; both print as long long.
void AppendInteger(atr_String& out, Conversion& c, const Argument& a)
{
    long long v;
    if (!AsInteger(&a, v))
        return;
    c.Add('l');
    c.Add('l');
    c.Finish(c.letter);
    if (c.letter == 'd' || c.letter == 'i') {
        switch (c.length) {
        case LEN_HH: v = static_cast<signed char>(v); break;
        case LEN_H: v = static_cast<short>(v); break;
        case LEN_NONE: v = static_cast<int>(v); break;
        case LEN_L: v = static_cast<long>(v); break;
        default: break;
        }
        AppendOne(out, c.format, v);
        return;
    }
    unsigned long long u = static_cast<unsigned long long>(v);
    switch (c.length) {
    case LEN_HH: u = static_cast<unsigned char>(u); break;
    case LEN_H: u = static_cast<unsigned short>(u); break;
    case LEN_NONE: u = static_cast<unsigned>(u); break;
    case LEN_L: u = static_cast<unsigned long>(u); break;
    default: break;
    }
    AppendOne(out, c.format, u);
}

// Appends one parsed conversion of argument a; an argument of another kind appends nothing.
void AppendConversion(atr_String& out, Conversion& c, const Argument& a)
{
    const bool plain = c.width < 0 && c.precision < 0 && c.used == 1;
    c.AddWidthAndPrecision();
    switch (c.letter) {
    case 'd':
    case 'i':
    case 'u':
    case 'x':
    case 'X':
    case 'o':
        AppendInteger(out, c, a);
        break;
    case 'c': {
        long long v;
        if (!AsInteger(&a, v))
            break;
        c.Finish('c');
        AppendOne(out, c.format, static_cast<int>(static_cast<unsigned char>(v)));
        break;
    }
    case 's':
        if (a.kind != atr_translate::ARG_TEXT)
            break;
        if (plain) {
            out.append(a.s);  // plain %s: no formatting needed
            break;
        }
        c.Finish('s');
        AppendOne(out, c.format, a.s.c_str());
        break;
    case 'p':
        if (a.kind != atr_translate::ARG_POINTER)
            break;
        c.Finish('p');
        AppendOne(out, c.format, a.p);
        break;
    default:  // f F e E g G
        if (a.kind != atr_translate::ARG_DOUBLE)
            break;
        c.Finish(c.letter);
        AppendOne(out, c.format, a.d);
        break;
    }
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
    ArgumentCursor args = {m_args, m_count, 1};
    Conversion c;

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
        if (!ParseConversion(q, c, args)) {
            // Not a conversion: copy the text as written.
            const char* stop = *q ? q + 1 : q;
            out.append(pct, static_cast<int>(stop - pct));
            p = stop;
            continue;
        }
        p = q + 1;
        if (c.letter == 'n')
            continue;  // never writes through an argument
        const Argument* a = args.Take(c.position);
        if (!c.bad && a)
            AppendConversion(out, c, *a);
    }
    // Give back the slack of the pre-sized buffer only when it is large.
    if (out.Capacity() > 2 * out.Length() + 256)
        return atr_String(out.c_str(), out.Length());
    return out;
}

void atr_SubstituteFormat(atr_translate& t, int place, const atr_StringBase& s) { t.SetArg(place, s); }

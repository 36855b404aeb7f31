#include "atr/atr_String.h"

#include <cstdio>
#include <cstring>

namespace {

// Appends printf output to s: formats once into a stack buffer, and only when that is too
// small a second time straight into the string's own storage.
void AppendV(atr_String& s, const char* fmt, va_list args)
{
    if (!fmt)
        return;
    char local[256];
    va_list again;
    va_copy(again, args);
    const int n = std::vsnprintf(local, sizeof local, fmt, args);
    if (n <= 0) {
        va_end(again);
        return;
    }
    if (n < static_cast<int>(sizeof local)) {
        va_end(again);
        s.append(local, n);
        return;
    }
    const int len = s.Length();
    try {
        char* t = s.GetWriteBuffer(len + n);
        std::vsnprintf(t + len, static_cast<size_t>(n) + 1, fmt, again);
        s.SetLength(len + n);
    } catch (...) {
        va_end(again);
        throw;
    }
    va_end(again);
}

}  // namespace

atr_String atr_String::Format(const char* fmt, ...)
{
    va_list args;
    va_start(args, fmt);
    atr_String s;
    try {
        AppendV(s, fmt, args);
    } catch (...) {
        va_end(args);
        throw;
    }
    va_end(args);
    return s;
}

atr_String atr_String::FormatV(const char* fmt, va_list args)
{
    atr_String s;
    AppendV(s, fmt, args);
    return s;
}

atr_String& atr_String::AppendFormat(const char* fmt, ...)
{
    va_list args;
    va_start(args, fmt);
    try {
        AppendV(*this, fmt, args);
    } catch (...) {
        va_end(args);
        throw;
    }
    va_end(args);
    return *this;
}

atr_String operator+(const atr_StringBase& a, const atr_StringBase& b)
{
    if (b.Length() == 0)
        return atr_String(a);
    if (a.Length() == 0)
        return atr_String(b);
    atr_String r(a.Length() + b.Length(), atr_StringBase::PRESIZE);
    r.append(a.c_str(), a.Length());
    r.append(b.c_str(), b.Length());
    return r;
}

atr_String operator+(const atr_StringBase& a, const char* b)
{
    const int lb = b ? static_cast<int>(std::strlen(b)) : 0;
    if (lb == 0)
        return atr_String(a);
    atr_String r(a.Length() + lb, atr_StringBase::PRESIZE);
    r.append(a.c_str(), a.Length());
    r.append(b, lb);
    return r;
}

atr_String operator+(const char* a, const atr_StringBase& b)
{
    const int la = a ? static_cast<int>(std::strlen(a)) : 0;
    if (la == 0)
        return atr_String(b);
    atr_String r(la + b.Length(), atr_StringBase::PRESIZE);
    r.append(a, la);
    r.append(b.c_str(), b.Length());
    return r;
}

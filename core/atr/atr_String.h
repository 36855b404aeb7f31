/// @class atr_String
/// atr_String: the public face of atr_StringBase. No data of its own; the operations are the
/// base's, published by atr_StringOps (see atr_StringBase.h for the meaning of positions, counts
/// and sharing).
/// Thread rule: atr_StringBase's: strings that share a representation are used by one thread at a
/// time.
#ifndef ATR_STRING_H
#define ATR_STRING_H

#include <cstdarg>

#include "atr/atr_StringOps.h"
#include "zul_Compiler.h"

class ZUL_CORE_API atr_String : public atr_StringOps<atr_String> {
    using Ops = atr_StringOps<atr_String>;

public:
    atr_String() {}
    atr_String(const char* s) : Ops(s) {}
    atr_String(const char* s, int n) : Ops(s, n) {}
    atr_String(const char* s, int n, atr_StringBase::Borrow b) : Ops(s, n, b) {}
    atr_String(char* buf, int n, atr_StringBase::Adopt a) : Ops(buf, n, a) {}
    atr_String(int n, atr_StringBase::PreSizeEnm p) : Ops(n, p) {}
    explicit atr_String(int v) : Ops(v) {}
    explicit atr_String(unsigned v) : Ops(v) {}
    explicit atr_String(float v) : Ops(v) {}
    explicit atr_String(double v) : Ops(v) {}

    /// Shares the representation of any string of the family (count + 1).
    atr_String(const atr_StringBase& o) : Ops(o) {}
    atr_String(const atr_String& o) : Ops(o) {}
    atr_String(atr_String&& o) noexcept : Ops() { atr_StringBase::operator=(static_cast<atr_StringBase&&>(o)); }
    atr_String& operator=(const atr_String& o)
    {
        atr_StringBase::operator=(o);
        return *this;
    }
    atr_String& operator=(const atr_StringBase& o)
    {
        atr_StringBase::operator=(o);
        return *this;
    }
    atr_String& operator=(atr_String&& o) noexcept
    {
        atr_StringBase::operator=(static_cast<atr_StringBase&&>(o));
        return *this;
    }
    atr_String& operator=(const char* s)
    {
        atr_StringBase::Assign(s, -1);
        return *this;
    }
    atr_String& Assign(const char* s, int n = -1)
    {
        atr_StringBase::Assign(s, n);
        return *this;
    }

    /// printf-style formatting (no positional arguments; see atr_translate for those).
    ///@{
    static atr_String Format(const char* fmt, ...) ZUL_PRINTF_FORMAT(1, 2);
    static atr_String FormatV(const char* fmt, va_list args);
    ///@}
    /// Appends printf-style formatted text; returns the string.
    atr_String& AppendFormat(const char* fmt, ...) ZUL_PRINTF_FORMAT(2, 3);
};

/// Concatenation.
///@{
ZUL_CORE_API atr_String operator+(const atr_StringBase& a, const atr_StringBase& b);
ZUL_CORE_API atr_String operator+(const atr_StringBase& a, const char* b);
ZUL_CORE_API atr_String operator+(const char* a, const atr_StringBase& b);
///@}

#endif

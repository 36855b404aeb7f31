/// @class atr_StringOps
/// atr_StringOps<Self>: the public operations of a string type of the family, written once.
///
/// A public string type (atr_String, cow_String) derives from atr_StringOps<itself>, which
/// derives from atr_StringBase and adds no data: it publishes the base's protected operations,
/// with the chaining ones returning the derived type. See atr_StringBase.h for the meaning of
/// positions, counts and sharing.
///
/// Thread rule: atr_StringBase's: strings that share a representation are used by one thread at a
/// time.
#ifndef ATR_STRINGOPS_H
#define ATR_STRINGOPS_H

#include "atr/atr_StringBase.h"

template <class Self>
class atr_StringOps : public atr_StringBase {
public:
    using atr_StringBase::c_str;
    using atr_StringBase::Length;
    using atr_StringBase::IsEmpty;
    using atr_StringBase::RefCount;
    using atr_StringBase::Compare;
    using atr_StringBase::Reserve;
    using atr_StringBase::GetWriteBuffer;
    using atr_StringBase::SetLength;
    using atr_StringBase::Find;
    using atr_StringBase::rfind;
    using atr_StringBase::StartsWith;
    using atr_StringBase::EndsWith;

    char operator[](int i) const { return atr_StringBase::operator[](i); }
    char& operator[](int i) { return atr_StringBase::operator[](i); }

    Self& Assign(const char* s, int n = -1) { return Me(atr_StringBase::Assign(s, n)); }
    Self& operator=(const char* s) { return Me(atr_StringBase::Assign(s, -1)); }

    Self& append(const char* s, int n = -1, int start = 0, int repeat = 1)
    {
        return Me(atr_StringBase::append(s, n, start, repeat));
    }
    Self& append(const atr_StringBase& s) { return Me(atr_StringBase::append(s)); }
    Self& append(char c, int repeat = 1) { return Me(atr_StringBase::append(c, repeat)); }
    Self& operator+=(const char* s) { return append(s, -1); }
    Self& operator+=(const atr_StringBase& s) { return append(s); }
    Self& operator+=(char c) { return append(c, 1); }
    Self& insert(int pos, const char* s, int n = -1, int start = 0, int repeat = 1)
    {
        return Me(atr_StringBase::insert(pos, s, n, start, repeat));
    }
    Self& Erase(int pos = 0, int count = -1) { return Me(atr_StringBase::Erase(pos, count)); }
    Self& Replace(int pos, int count, const char* s, int n = -1)
    {
        return Me(atr_StringBase::Replace(pos, count, s, n));
    }
    int Substitute(const atr_StringBase& from, const atr_StringBase& to, int maxCount = -1)
    {
        return atr_StringBase::Substitute(from, to, maxCount);
    }
    int Substitute(const char* from, const char* to, int maxCount = -1)
    {
        return atr_StringBase::Substitute(from, to, maxCount);
    }
    Self& Trim(const char* set = " \t\r\n") { return Me(atr_StringBase::Trim(set)); }
    Self& LeftTrim(const char* set = " \t\r\n") { return Me(atr_StringBase::LeftTrim(set)); }
    Self& RightTrim(const char* set = " \t\r\n") { return Me(atr_StringBase::RightTrim(set)); }
    Self& ToLower() { return Me(atr_StringBase::ToLower()); }
    Self& ToUpper() { return Me(atr_StringBase::ToUpper()); }
    Self& Clear() { return Me(atr_StringBase::Clear()); }

    /// A copy of count characters from pos (count < 0: to the end), clamped to the string.
    Self Substr(int pos, int count = -1) const { return Self(atr_StringBase::Substr(pos, count)); }

    void swap(Self& o) noexcept { atr_StringBase::swap(o); }

protected:
    using atr_StringBase::atr_StringBase;
    atr_StringOps() {}
    atr_StringOps(const atr_StringBase& o) : atr_StringBase(o) {}

private:
    Self& Me(atr_StringBase&) { return static_cast<Self&>(*this); }
};

#endif

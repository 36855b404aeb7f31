#include "omi/omi_strtoSizeT.h"

#include <cerrno>
#include <cstdint>

namespace {

bool IsSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f' || c == '\v'; }

int DigitValue(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'z')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'Z')
        return c - 'A' + 10;
    return 99;
}

}  // namespace

size_t omi_strtoSizeT(const char* text, char** end, int base)
{
    if (end)
        *end = const_cast<char*>(text);
    if (!text || base < 0 || base == 1 || base > 36) {
        errno = EINVAL;
        return 0;
    }
    const char* p = text;
    while (IsSpace(*p))
        ++p;
    bool negative = false;
    if (*p == '+' || *p == '-') {
        negative = *p == '-';
        ++p;
    }
    // A "0x" prefix counts only when a hexadecimal digit follows it; otherwise the "0" alone
    // is the number.
    if ((base == 0 || base == 16) && p[0] == '0' && (p[1] == 'x' || p[1] == 'X') && DigitValue(p[2]) < 16) {
        p += 2;
        base = 16;
    } else if (base == 0) {
        base = p[0] == '0' ? 8 : 10;
    }
    const size_t limit = SIZE_MAX;
    size_t value = 0;
    bool overflow = false;
    const char* digits = p;
    for (int d; (d = DigitValue(*p)) < base; ++p) {
        if (!overflow) {
            if (value > (limit - static_cast<size_t>(d)) / static_cast<size_t>(base))
                overflow = true;
            else
                value = value * static_cast<size_t>(base) + static_cast<size_t>(d);
        }
    }
    if (p == digits)
        return 0;  // no digits: *end stays at text
    if (end)
        *end = const_cast<char*>(p);
    if (overflow) {
        errno = ERANGE;
        return SIZE_MAX;
    }
    return negative ? static_cast<size_t>(0) - value : value;
}

#include "typ/typ_DebugFlags.h"

#include <cstring>

namespace {

struct Facility {
    const char* name;
    unsigned number;
};

// The facilities of this library. uti, utl, cio, nex, nexT and cls carry the product's numbers;
// the library's other modules use numbers of their own from 40 up.
const Facility kFacilities[] = {
    {"uti", 2}, {"utl", 3}, {"cio", 26}, {"nex", 31}, {"nexT", 32}, {"cls", 35},
    {"typ", 40}, {"thr", 41}, {"pnt", 42}, {"mrm", 43}, {"bio", 44}, {"cow", 45},
    {"rgx", 46}, {"pdc", 47}, {"mem", 48}, {"omi", 49}, {"aio", 50}, {"atr", 51},
    {nullptr, 0},
};

const char* g_names[typ_DebugFlags::TableSize];
int g_levels[typ_DebugFlags::TableSize];

const size_t kFieldSize = 32;  // a name or a number of at most 31 characters

}  // namespace

void typ_DebugFlags::InitializeTables()
{
    for (const Facility* f = kFacilities; f->name; ++f)
        if (f->number < TableSize)
            g_names[f->number] = f->name;
}

void typ_DebugFlags::ResetTables()
{
    for (unsigned i = 0; i < TableSize; ++i) {
        g_names[i] = nullptr;
        g_levels[i] = 0;
    }
}

bool typ_DebugFlags::SetDebugFlags(const char* name, int level)
{
    if (!name)
        return false;
    for (unsigned i = 0; i < TableSize; ++i) {
        if (g_names[i] && std::strcmp(g_names[i], name) == 0) {
            g_levels[i] = level;
            return true;
        }
    }
    return false;
}

int typ_DebugFlags::GetDebugFlags(const char* name)
{
    if (!name)
        return 0;
    for (unsigned i = 0; i < TableSize; ++i)
        if (g_names[i] && std::strcmp(g_names[i], name) == 0)
            return g_levels[i];
    return 0;
}

int typ_DebugFlags::GetDebugFlags(unsigned facility)
{
    return facility < TableSize ? g_levels[facility] : 0;
}

const char* typ_DebugFlags::GetDebugFacilityName(unsigned facility)
{
    return facility < TableSize ? g_names[facility] : nullptr;
}

bool typ_DebugFlags::ParseDebugFlags(const char* text)
{
    if (!text || !*text)
        return true;
    bool result = true;
    const char* p = text;
    while (*p) {
        char name[kFieldSize];
        size_t n = 0;
        while (*p && *p != '=' && *p != ',') {
            if (n + 1 >= kFieldSize)
                return false;
            name[n++] = *p++;
        }
        name[n] = '\0';
        if (*p != '=')
            return false;
        ++p;
        char digits[kFieldSize];
        size_t d = 0;
        while (*p >= '0' && *p <= '9') {
            if (d + 1 >= kFieldSize)
                return false;
            digits[d++] = *p++;
        }
        digits[d] = '\0';
        if (*p && *p != ',')
            return false;
        long long level = 0;
        for (size_t i = 0; i < d; ++i) {
            level = level * 10 + (digits[i] - '0');
            if (level > 0x7FFFFFFF)
                level = 0x7FFFFFFF;  // saturate rather than overflow
        }
        if (!SetDebugFlags(name, static_cast<int>(level)))
            result = false;
        if (*p == ',')
            ++p;
    }
    return result;
}

// typ_DebugFlags::ParseDebugFlags on arbitrary text, against a model of the documented grammar
// "name=number,...": the result and every facility's level must be what the model says, and
// nothing may be written past the fixed name and number fields.
#include <algorithm>
#include <cstdint>
#include <map>
#include <string>

#include "typ/typ_DebugFlags.h"
#include "zul_FuzzSupport.h"

namespace {

using zul_fuzz::Cow;
using zul_fuzz::Str;

std::map<std::string, int> g_known;  // facility name -> slot

struct Outcome {
    bool ok = true;
    std::map<std::string, int> levels;  // last level given to each known facility
};

// The grammar as documented: fields of at most 31 characters, digits only after "=", fields
// separated by commas; a malformed field ends the parse, an unknown name only spoils the result.
Outcome Model(const std::string& text)
{
    Outcome out;
    size_t p = 0;
    while (p < text.size()) {
        std::string name;
        while (p < text.size() && text[p] != '=' && text[p] != ',') {
            if (name.size() == 31) {
                out.ok = false;
                return out;
            }
            name += text[p++];
        }
        if (p == text.size() || text[p] != '=') {
            out.ok = false;
            return out;
        }
        ++p;
        std::string digits;
        while (p < text.size() && text[p] >= '0' && text[p] <= '9') {
            if (digits.size() == 31) {
                out.ok = false;
                return out;
            }
            digits += text[p++];
        }
        if (p < text.size() && text[p] != ',') {
            out.ok = false;
            return out;
        }
        long long level = 0;
        for (char d : digits)
            level = std::min(level * 10 + (d - '0'), 0x7FFFFFFFLL);
        if (g_known.count(name))
            out.levels[name] = static_cast<int>(level);
        else
            out.ok = false;
        if (p < text.size())
            ++p;
    }
    return out;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    zul_fuzz::Initialize();
    for (unsigned i = 0; i < typ_DebugFlags::TableSize; ++i)
        if (const char* name = typ_DebugFlags::GetDebugFacilityName(i))
            g_known[name] = static_cast<int>(i);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    // The parser reads a zero-terminated text: what follows a zero byte is not seen.
    std::string text(reinterpret_cast<const char*>(data), size);
    text = text.c_str();
    for (const auto& facility : g_known)
        typ_DebugFlags::SetDebugFlags(facility.first.c_str(), 0);

    const Outcome expected = Model(text);
    bool result = false;
    zul_fuzz::Expect<>::Run([&] { result = typ_DebugFlags::ParseDebugFlags(text.c_str()); });
    ZUL_FUZZ_CHECK(result == expected.ok);
    for (const auto& facility : g_known) {
        const auto it = expected.levels.find(facility.first);
        const int level = it == expected.levels.end() ? 0 : it->second;
        ZUL_FUZZ_CHECK(typ_DebugFlags::GetDebugFlags(facility.first.c_str()) == level);
        ZUL_FUZZ_CHECK(typ_DebugFlags::GetDebugFlags(static_cast<unsigned>(facility.second)) == level);
    }
    return 0;
}

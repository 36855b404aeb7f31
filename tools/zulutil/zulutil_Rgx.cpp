// rgx: the library's regular-expression functions on a text argument or standard input.
//   match: the whole match and its groups, one "N: text" line each (status 1 without a match)
//   split: the pieces between matches, one per line
//   subn:  the text with up to -count matches replaced (all without a count)
#include <climits>
#include <cstdlib>
#include <cstdio>
#include <string>

#include "rgx/rgx_funcs.h"
#include "zulutil.h"

namespace {

// The text argument at `index`, or standard input (without one trailing line break).
cow_String Text(const zulutil_Args& args, size_t index)
{
    if (args.Positional().size() > index)
        return cow_String(args.Positional(index).c_str());
    std::string all = zulutil_ReadAll("-");
    if (!all.empty() && all.back() == '\n')
        all.pop_back();
    if (!all.empty() && all.back() == '\r')
        all.pop_back();
    return cow_String(all.c_str(), static_cast<int>(all.size()));
}

}  // namespace

int zulutil_Rgx(const zulutil_Args& args)
{
    const std::string action = args.Positional(1);
    if (args.Positional().size() < 3)
        return zulutil_UsageError("rgx", "rgx needs an action and a PATTERN");
    const cow_String pattern(args.Positional(2).c_str());
    if (action == "match") {
        rgx_ReIterator it = rgx_match(pattern, Text(args, 3));
        if (!it.IsMatch())
            return zulutil_CheckFailed;
        for (int n = 0; n < it.Count(); ++n)
            std::printf("%d: %s\n", n, it.NthString(n).c_str());
        return zulutil_Ok;
    }
    if (action == "split") {
        const cow_1DArrayList<cow_String> pieces = rgx_split(pattern, Text(args, 3));
        for (int i = 0; i < pieces.Count(); ++i)
            std::printf("%s\n", pieces[i].c_str());
        return zulutil_Ok;
    }
    if (action == "subn") {
        if (args.Positional().size() < 4)
            return zulutil_UsageError("rgx", "rgx subn needs PATTERN and REPLACEMENT");
        const std::string countText = args.Value("count");
        int count = INT_MAX;
        if (!countText.empty()) {
            count = std::atoi(countText.c_str());
            if (count < 1 || countText.find_first_not_of("0123456789") != std::string::npos)
                count = countText == "0" ? INT_MAX : -1;
            if (count < 0)
                return zulutil_UsageError("rgx", "-count must be a whole number");
        }
        const cow_String result = rgx_subn(pattern, cow_String(args.Positional(3).c_str()), Text(args, 4), count);
        std::printf("%s\n", result.c_str());
        return zulutil_Ok;
    }
    return zulutil_UsageError("rgx", "unknown rgx action \"" + action + "\"");
}

#include <cstring>

#include "utl/utl_CommandLine.h"
#include "zulutil.h"

namespace {

// Options that stand alone; every other option takes the next argument (unless it begins with
// "-") as its value, as the library's rule does.
const char* const kFlags[] = {"d", "wrap", "force", "h", "help", "-help", "-version", nullptr};

bool IsFlag(const char* name)
{
    for (const char* const* f = kFlags; *f; ++f)
        if (std::strcmp(*f, name) == 0)
            return true;
    return false;
}

}  // namespace

zulutil_Args::zulutil_Args()
{
    const utl_CommandLine& line = utl_CommandLine::Instance();
    const int n = line.Size();
    for (int i = 1; i < n; ++i) {
        const cow_String arg = line.ConstGet(i);
        if (arg.Length() > 1 && arg[0] == '-') {
            if (!IsFlag(arg.c_str() + 1) && i + 1 < n && line.ConstGet(i + 1)[0] != '-')
                ++i;  // the option's value
            continue;
        }
        m_positional.push_back(arg.c_str());
    }
}

bool zulutil_Args::Has(const char* option) const
{
    return utl_CommandLine::Instance().IsMember(option);
}

std::string zulutil_Args::Value(const char* option) const
{
    if (IsFlag(option))
        return std::string();
    return utl_CommandLine::Instance().ConstGetValue(option, cow_String()).c_str();
}

#include "utl/utl_CommandLine.h"

#include <cctype>
#include <cstdlib>
#include <cstring>

#include "atr/atr_translate.h"
#include "omi/omi_strtoSizeT.h"
#include "typ/typ_DebugFlags.h"

utl_MissingCmdLineArgException::utl_MissingCmdLineArgException(const cow_String& option)
    : nex_TextException(atr_translate("Command line argument %s is required.").Arg(option))
{
}

utl_CmdLineArgFormatException::utl_CmdLineArgFormatException(const cow_String& option, const char* type)
    : nex_TextException(atr_translate("Command line argument %1$s must have type %2$s").Arg(option).Arg(type))
{
}

utl_CommandLine& utl_CommandLine::Instance()
{
    return thr_GlobalSingleton<utl_CommandLine>::Instance();
}

utl_CommandLine::utl_CommandLine() : m_mutex(0), m_count(0)
{
    cow_1DArrayList<cow_String> args = utl_ProcessArguments();
    Fill(args, 1);
}

utl_CommandLine::~utl_CommandLine() = default;

void utl_CommandLine::SetArgs(int argc, char** argv)
{
    cow_1DArrayList<cow_String> args;
    for (int i = 0; i < argc; ++i)
        args.Append(cow_String(argv[i] ? argv[i] : ""));
    Fill(args, 1);
}

void utl_CommandLine::SetArgsList(const cow_1DArrayList<cow_String>& args)
{
    Fill(args, 0);
}

void utl_CommandLine::Fill(const cow_1DArrayList<cow_String>& args, int first)
{
    cow_Map<cow_String, cow_String> options;
    const int n = args.Count();
    bool pending = false;
    cow_String pendingName;
    for (int i = first; i < n; ++i) {
        const cow_String& arg = args.ConstGet(i);
        if (arg.Length() > 0 && arg[0] == '-') {
            if (pending)
                options.Insert(pendingName, cow_String());
            pendingName = arg.Substr(1, -1);
            pending = true;
            if (i == n - 1) {
                options.Insert(pendingName, cow_String());
                pending = false;
            }
        } else if (pending) {
            options.Insert(pendingName, arg);
            pending = false;
        }
    }
    {
        thr_MutexGuard guard(m_mutex);
        m_options = options;
        m_args = args;
        m_count = n;
    }
    ApplyErrorOption();
}

void utl_CommandLine::ApplyErrorOption()
{
    if (!IsMember("error"))
        return;
    const cow_Map<cow_String, cow_String> flags = ConstGetValueAsDictionary("error");
    cow_ConstMapIterator<cow_String, cow_String> it(flags);
    for (it.First(); it.NotDone(); it.Next()) {
        const int level = it.Value().Length() == 0 ? 1 : std::atoi(it.Value().c_str());
        if (level >= 1)
            typ_DebugFlags::SetDebugFlags(it.Key().c_str(), level);
    }
}

int utl_CommandLine::Size() const
{
    thr_MutexGuard guard(m_mutex);
    return m_count;
}

cow_String utl_CommandLine::ConstGet(int i) const
{
    thr_MutexGuard guard(m_mutex);
    return i >= 0 && i < m_args.Count() ? m_args.ConstGet(i) : cow_String();
}

bool utl_CommandLine::Lookup(const cow_String& name, cow_String& value) const
{
    thr_MutexGuard guard(m_mutex);
    if (!m_options.IsMember(name))
        return false;
    value = m_options.ConstGet(name);
    return true;
}

bool utl_CommandLine::IsMember(const cow_String& name) const
{
    thr_MutexGuard guard(m_mutex);
    return m_options.IsMember(name);
}

cow_String utl_CommandLine::Required(const cow_String& name) const
{
    cow_String value;
    if (!Lookup(name, value))
        NEX_RAISE(utl_MissingCmdLineArgException, name);
    return value;
}

cow_String utl_CommandLine::ConstGetValue(const cow_String& name) const
{
    return Required(name);
}

cow_String utl_CommandLine::ConstGetValue(const cow_String& name, const cow_String& dflt) const
{
    cow_String value;
    return Lookup(name, value) ? value : dflt;
}

void utl_CommandLine::CheckDigits(const cow_String& name, const cow_String& value)
{
    for (int i = 0; i < value.Length(); ++i) {
        if (!std::isdigit(static_cast<unsigned char>(value[i])))
            NEX_RAISE(utl_CmdLineArgFormatException, name, "integer");
    }
}

int utl_CommandLine::ConstGetValueAsInt(const cow_String& name) const
{
    const cow_String value = Required(name);
    CheckDigits(name, value);
    return std::atoi(value.c_str());
}

int utl_CommandLine::ConstGetValueAsInt(const cow_String& name, int dflt) const
{
    cow_String value;
    if (!Lookup(name, value))
        return dflt;
    CheckDigits(name, value);
    return std::atoi(value.c_str());
}

uint64_t utl_CommandLine::ConstGetValueAsSizeT(const cow_String& name) const
{
    const cow_String value = Required(name);
    CheckDigits(name, value);
    return omi_strtoSizeT(value.c_str(), nullptr, 10);
}

uint64_t utl_CommandLine::ConstGetValueAsSizeT(const cow_String& name, uint64_t dflt) const
{
    cow_String value;
    if (!Lookup(name, value))
        return dflt;
    CheckDigits(name, value);
    return omi_strtoSizeT(value.c_str(), nullptr, 10);
}

cow_Map<cow_String, cow_String> utl_CommandLine::ParseDictionary(const cow_String& text)
{
    cow_Map<cow_String, cow_String> result;
    int start = 0;
    const int n = text.Length();
    while (start <= n) {
        int end = text.Find(",", start);
        if (end < 0)
            end = n;
        const cow_String item = text.Substr(start, end - start);
        const int eq = item.Find("=", 0);
        if (eq < 0)
            result.Insert(item, cow_String());
        else
            result.Insert(item.Substr(0, eq), item.Substr(eq + 1, -1));
        start = end + 1;
    }
    return result;
}

cow_Map<cow_String, cow_String> utl_CommandLine::ConstGetValueAsDictionary(const cow_String& name) const
{
    return ParseDictionary(Required(name));
}

namespace {

// The text of a Fortran character argument without the blanks around it.
cow_String TrimmedName(const char* name, int length)
{
    cow_String text(name, length < 0 ? 0 : length);
    text.Trim(" ");
    return text;
}

}  // namespace

void UTL_COMMANDLINEINTEGER(const char* name, int* result, int nameLength)
{
    const cow_String option = TrimmedName(name, nameLength);
    utl_CommandLine& line = utl_CommandLine::Instance();
    *result = line.IsMember(option) ? line.ConstGetValueAsInt(option) : 0;
}

void UTL_COMMANDLINEISMEMBER(const char* name, int* result, int nameLength)
{
    *result = utl_CommandLine::Instance().IsMember(TrimmedName(name, nameLength)) ? 0 : 1;
}

void UTL_COMMANDLINESTRING(const char* name, char* out, int* length, int nameLength, int outLength)
{
    const cow_String option = TrimmedName(name, nameLength);
    *length = utl_CommandLineStringC(option.c_str(), out, outLength);
}

int utl_CommandLineStringC(const char* name, char* out, int outLength)
{
    cow_String value;
    utl_CommandLine& line = utl_CommandLine::Instance();
    if (!line.IsMember(name))
        return 0;
    value = line.ConstGetValue(name);
    const int n = value.Length();
    if (n > outLength)
        return 0;
    std::memcpy(out, value.c_str(), static_cast<size_t>(n));
    if (outLength > n)
        std::memset(out + n, ' ', static_cast<size_t>(outLength - n));
    return n;
}

int utl_getArgs(const char* name, char* out)
{
    utl_CommandLine& line = utl_CommandLine::Instance();
    if (!line.IsMember(name))
        return 0;
    const cow_String value = line.ConstGetValue(name);
    std::memcpy(out, value.c_str(), static_cast<size_t>(value.Length()) + 1);
    return value.Length();
}

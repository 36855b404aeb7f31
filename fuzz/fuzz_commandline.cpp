// The command-line option rule on an argument list split from the input at newlines and zero
// bytes (arguments are zero-terminated texts). Every
// argument must stay in the list; the options and their values must follow the rule (exactly
// one "-" removed, the next argument is the value unless it is an option, the later of
// repeated options wins); the typed getters must give the value or raise the library's own
// exceptions, nothing else.
#include <cstdint>
#include <cstdlib>
#include <map>
#include <string>
#include <vector>

#include "utl/utl_CommandLine.h"
#include "zul_FuzzSupport.h"

namespace {

using zul_fuzz::Cow;
using zul_fuzz::Str;

std::map<std::string, std::string> ModelOptions(const std::vector<std::string>& args)
{
    std::map<std::string, std::string> options;
    for (size_t i = 0; i < args.size(); ++i) {
        if (args[i].empty() || args[i][0] != '-')
            continue;
        const bool valued = i + 1 < args.size() && (args[i + 1].empty() || args[i + 1][0] != '-');
        options[args[i].substr(1)] = valued ? args[i + 1] : std::string();
        if (valued)
            ++i;
    }
    return options;
}

std::map<std::string, std::string> ModelDictionary(const std::string& text)
{
    std::map<std::string, std::string> result;
    size_t start = 0;
    while (true) {
        size_t end = text.find(',', start);
        if (end == std::string::npos)
            end = text.size();
        const std::string item = text.substr(start, end - start);
        const size_t eq = item.find('=');
        if (eq == std::string::npos)
            result[item] = std::string();
        else
            result[item.substr(0, eq)] = item.substr(eq + 1);
        if (end == text.size())
            break;
        start = end + 1;
    }
    return result;
}

bool AllDigits(const std::string& s)
{
    for (char c : s)
        if (c < '0' || c > '9')
            return false;
    return true;
}

using Guard = zul_fuzz::Expect<utl_MissingCmdLineArgException, utl_CmdLineArgFormatException>;

void CheckOption(const utl_CommandLine& line, const std::string& name, const std::string& value)
{
    const cow_String key = Cow(name);
    ZUL_FUZZ_CHECK(line.IsMember(key));
    ZUL_FUZZ_CHECK(Str(line.ConstGetValue(key)) == value);
    ZUL_FUZZ_CHECK(Str(line.ConstGetValue(key, "default")) == value);

    bool formatError = false;
    try {
        const int v = line.ConstGetValueAsInt(key);
        ZUL_FUZZ_CHECK(v == std::atoi(value.c_str()));
        const uint64_t w = line.ConstGetValueAsSizeT(key, 7);
        ZUL_FUZZ_CHECK(w == std::strtoull(value.c_str(), nullptr, 10));
    } catch (const utl_CmdLineArgFormatException&) {
        formatError = true;
    }
    ZUL_FUZZ_CHECK(formatError == !AllDigits(value));

    std::map<std::string, std::string> dictionary;
    const cow_Map<cow_String, cow_String> got = line.ConstGetValueAsDictionary(key);
    cow_ConstMapIterator<cow_String, cow_String> it(got);
    for (it.First(); it.NotDone(); it.Next())
        dictionary[Str(it.Key())] = Str(it.Value());
    ZUL_FUZZ_CHECK(dictionary == ModelDictionary(value));
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    zul_fuzz::Initialize();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    std::vector<std::string> args;
    const std::string input(reinterpret_cast<const char*>(data), size);
    size_t start = 0;
    while (start <= input.size() && args.size() < 256) {
        size_t end = input.find_first_of(std::string("\n\0", 2), start);
        if (end == std::string::npos)
            end = input.size();
        args.push_back(input.substr(start, end - start));
        start = end + 1;
    }
    cow_1DArrayList<cow_String> list;
    for (const std::string& a : args)
        list.Append(Cow(a));

    Guard::Run([&] {
        utl_CommandLine& line = utl_CommandLine::Instance();
        line.SetArgsList(list);
        ZUL_FUZZ_CHECK(line.Size() == static_cast<int>(args.size()));
        for (size_t i = 0; i < args.size(); ++i)
            ZUL_FUZZ_CHECK(Str(line.ConstGet(static_cast<int>(i))) == args[i]);
        ZUL_FUZZ_CHECK(line.ConstGet(-1).IsEmpty() && line.ConstGet(static_cast<int>(args.size())).IsEmpty());

        const std::map<std::string, std::string> options = ModelOptions(args);
        for (const auto& option : options)
            Guard::Run([&] { CheckOption(line, option.first, option.second); });

        // A name that no argument gives: absent, defaults apply, required reads raise.
        std::string absent = "absent";
        while (options.count(absent))
            absent += "_";
        const cow_String key = Cow(absent);
        ZUL_FUZZ_CHECK(!line.IsMember(key));
        ZUL_FUZZ_CHECK(line.ConstGetValue(key, "d") == "d");
        ZUL_FUZZ_CHECK(line.ConstGetValueAsInt(key, 42) == 42);
        bool missing = false;
        try {
            line.ConstGetValue(key);
        } catch (const utl_MissingCmdLineArgException&) {
            missing = true;
        }
        ZUL_FUZZ_CHECK(missing);
    });
    return 0;
}

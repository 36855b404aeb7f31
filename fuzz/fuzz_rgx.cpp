// rgx_split and rgx_subn with fuzzed subjects, replacements and counts on a fixed set of
// patterns (literal, classes, groups, anchors, alternations and patterns with empty matches).
// Every call must end and may fail only with the library's text exception. For all patterns
// the pieces of a split are disjoint, in order, pieces of the subject, and a subject without a
// match comes back alone or unchanged; for the literal "," both functions must give exactly
// what a plain string model gives.
#include <cstdint>
#include <string>
#include <vector>

#include <fuzzer/FuzzedDataProvider.h>

#include "rgx/rgx_funcs.h"
#include "zul_FuzzSupport.h"

namespace {

using zul_fuzz::Cow;
using zul_fuzz::Str;

const char* const kPatterns[] = {
    ",",         "[0-9]+",      "a*",        "^x",       "(a)(b)?c",  "\\s+",       "x|",
    "(.)\\1",    "$",           "^",         "\\b",      "(?i)ab",    "([a-z]+)=([0-9]*)", "[^,]*",
    "(?m)^.",    "\\d?",        "(a|b)+?",   "\\\\",     "\\.",       "(((((((((((a)))))))))))",
};

std::vector<std::string> SplitModel(const std::string& subject)
{
    std::vector<std::string> pieces;
    size_t start = 0;
    for (size_t comma; (comma = subject.find(',', start)) != std::string::npos; start = comma + 1)
        if (comma > start)
            pieces.push_back(subject.substr(start, comma - start));
    pieces.push_back(subject.substr(start));
    return pieces;
}

std::string SubnModel(const std::string& replacement, const std::string& subject, int count)
{
    std::string out;
    size_t start = 0;
    for (int done = 0; done < count; ++done) {
        const size_t comma = subject.find(',', start);
        if (comma == std::string::npos)
            break;
        out += subject.substr(start, comma - start) + replacement;
        start = comma + 1;
    }
    return out + subject.substr(start);
}

void Check(const std::string& pattern, const std::string& replacement, const std::string& subject, int count)
{
    const cow_String p(pattern.c_str());
    const cow_String s = Cow(subject);

    const cow_1DArrayList<cow_String> pieces = rgx_split(p, s);
    std::vector<std::string> got;
    for (int i = 0; i < pieces.Count(); ++i)
        got.push_back(Str(pieces.ConstGet(i)));
    ZUL_FUZZ_CHECK(!got.empty());
    size_t at = 0;
    for (const std::string& piece : got) {
        const size_t found = subject.find(piece, at);
        ZUL_FUZZ_CHECK(found != std::string::npos);
        at = found + piece.size();
    }
    ZUL_FUZZ_CHECK(subject.size() >= got.back().size() &&
                   subject.compare(subject.size() - got.back().size(), got.back().size(), got.back()) == 0);

    const std::string replaced = Str(rgx_subn(p, Cow(replacement), s, count));
    const bool matched = rgx_match(p, s).IsMatch();
    if (!matched) {
        ZUL_FUZZ_CHECK(got.size() == 1 && got[0] == subject);
        ZUL_FUZZ_CHECK(replaced == subject);
    }
    if (count < 1)
        ZUL_FUZZ_CHECK(replaced == subject);

    if (pattern == ",") {
        ZUL_FUZZ_CHECK(got == SplitModel(subject));
        if (replacement.find('$') == std::string::npos)
            ZUL_FUZZ_CHECK(replaced == SubnModel(replacement, subject, count));
        ZUL_FUZZ_CHECK(Str(rgx_subn(p, "$&", s, count)) == subject);
    }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    zul_fuzz::Initialize();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    FuzzedDataProvider in(data, size);
    const std::string pattern = kPatterns[in.ConsumeIntegralInRange<size_t>(0, sizeof(kPatterns) / sizeof(kPatterns[0]) - 1)];
    const int count = in.ConsumeIntegralInRange(-1, 64);
    // Subjects and replacements are zero-terminated texts.
    const std::string replacement = in.ConsumeRandomLengthString(64).c_str();
    const std::string subject = in.ConsumeRemainingBytesAsString().c_str();
    zul_fuzz::Expect<nex_TextException>::Run([&] { Check(pattern, replacement, subject, count); });
    return 0;
}

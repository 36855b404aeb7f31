// The base64 coder. The first byte picks line breaks; the rest is used twice: as text to
// decode (which must either raise utl_Base64Exception or give bytes that encode to the same
// text, up to where the newlines stand) and as bytes to encode (which must decode back to themselves, through the string and
// the buffer forms, with the exact lengths that utl_base64EncodedLength promises).
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "utl/utl_Base64.h"
#include "zul_FuzzSupport.h"

namespace {

using zul_fuzz::Cow;
using zul_fuzz::Str;

bool IsAlphabet(char c)
{
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '+' || c == '!';
}

void DecodeText(const std::string& text, bool lineBreaks)
{
    cow_String in = Cow(text);
    cow_String bytes;
    const bool decoded = zul_fuzz::Expect<utl_Base64Exception>::Run([&] { bytes = utl_base64Decode(in, lineBreaks); });

    // The buffer form must agree and stay inside its promised bound.
    std::vector<unsigned char> out(3 * (text.size() / 4) + 1);
    size_t written = 0;
    const bool decodedTo = zul_fuzz::Expect<utl_Base64Exception>::Run(
        [&] { written = utl_base64DecodeTo(text.data(), text.size(), lineBreaks, out.data()); });
    ZUL_FUZZ_CHECK(decoded == decodedTo);
    if (!decoded)
        return;
    ZUL_FUZZ_CHECK(written == static_cast<size_t>(bytes.Length()));
    ZUL_FUZZ_CHECK(written <= 3 * (text.size() / 4));
    ZUL_FUZZ_CHECK(written == 0 || std::memcmp(out.data(), bytes.c_str(), written) == 0);

    // Accepted text is exactly what the encoder writes for those bytes, line breaks included.
    cow_String again = utl_base64Encode(bytes, lineBreaks);
    ZUL_FUZZ_CHECK(Str(again) == text);
}

void EncodeBytes(const std::string& data, bool lineBreaks)
{
    cow_String in = Cow(data);
    cow_String text = utl_base64Encode(in, lineBreaks);
    const std::string t = Str(text);
    ZUL_FUZZ_CHECK(t.size() == utl_base64EncodedLength(data.size(), lineBreaks));
    ZUL_FUZZ_CHECK(data.empty() == t.empty());
    ZUL_FUZZ_CHECK(lineBreaks || t.find('\n') == std::string::npos);

    std::vector<char> buffer(t.size() + 1, '\x7f');
    ZUL_FUZZ_CHECK(utl_base64EncodeTo(reinterpret_cast<const unsigned char*>(data.data()), data.size(), lineBreaks,
                                      buffer.data()) == t.size());
    ZUL_FUZZ_CHECK(std::memcmp(buffer.data(), t.data(), t.size()) == 0);
    ZUL_FUZZ_CHECK(buffer[t.size()] == '\x7f');

    cow_String back = utl_base64Decode(text, lineBreaks);
    ZUL_FUZZ_CHECK(Str(back) == data);

    // Text with newlines is not base64 to a decoder that expects none.
    if (t.find('\n') != std::string::npos) {
        bool refused = false;
        try {
            utl_base64Decode(text, false);
        } catch (const utl_Base64Exception&) {
            refused = true;
        }
        ZUL_FUZZ_CHECK(refused);
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
    if (size == 0)
        return 0;
    const bool lineBreaks = (data[0] & 1) != 0;
    const std::string rest(reinterpret_cast<const char*>(data) + 1, size - 1);
    DecodeText(rest, lineBreaks);
    EncodeBytes(rest, lineBreaks);
    EncodeBytes(rest, !lineBreaks);
    return 0;
}

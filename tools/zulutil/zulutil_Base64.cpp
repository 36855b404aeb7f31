// base64: the library's alphabet ("!" in place of "/"), optionally in lines of 76 characters.
#include <string>

#include "utl/utl_Base64.h"
#include "zulutil.h"

int zulutil_Base64(const zulutil_Args& args)
{
    const bool decode = args.Has("d");
    const bool wrap = args.Has("wrap");
    std::string input = zulutil_ReadAll(args.Positional(1));
    std::string output;
    if (decode) {
        // Text written by the encoder ends with a newline when wrapped; a text file without
        // wrapping often has one too.
        if (!wrap)
            while (!input.empty() && (input.back() == '\n' || input.back() == '\r'))
                input.pop_back();
        output.resize(input.size());
        output.resize(utl_base64DecodeTo(input.data(), input.size(), wrap, reinterpret_cast<unsigned char*>(&output[0])));
    } else {
        output.resize(utl_base64EncodedLength(input.size(), wrap));
        output.resize(utl_base64EncodeTo(reinterpret_cast<const unsigned char*>(input.data()), input.size(), wrap, &output[0]));
        if (!wrap && !output.empty())
            output += '\n';
    }
    zulutil_WriteAll("-", output);
    return zulutil_Ok;
}

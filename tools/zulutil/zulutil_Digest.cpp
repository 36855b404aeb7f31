// md5 and crc: digests of files or standard input.
#include <cstdio>
#include <string>

#include "uti/uti_MD5.h"
#include "utl/utl_MultisectionFile.h"
#include "zulutil.h"

namespace {

std::vector<std::string> FilesOrStandardInput(const zulutil_Args& args)
{
    std::vector<std::string> files(args.Positional().begin() + 1, args.Positional().end());
    if (files.empty())
        files.push_back("-");
    return files;
}

}  // namespace

int zulutil_Md5(const zulutil_Args& args)
{
    for (const std::string& file : FilesOrStandardInput(args)) {
        uti_MD5 md5;
        zulutil_ForEachPiece(
            file, [](void* c, const char* data, size_t n) { static_cast<uti_MD5*>(c)->Append(data, static_cast<int>(n)); }, &md5);
        const cow_String digest = md5.Digest();
        for (int i = 0; i < digest.Length(); ++i)
            std::printf("%02x", static_cast<unsigned char>(digest[i]));
        std::printf("  %s\n", file.c_str());
    }
    return zulutil_Ok;
}

int zulutil_Crc(const zulutil_Args& args)
{
    for (const std::string& file : FilesOrStandardInput(args)) {
        uint32_t crc = 0xFFFFFFFFu;
        zulutil_ForEachPiece(
            file, [](void* c, const char* data, size_t n) { *static_cast<uint32_t*>(c) = utl_MultisectionCrc(data, n, *static_cast<uint32_t*>(c)); }, &crc);
        std::printf("%08x  %s\n", crc, file.c_str());
    }
    return zulutil_Ok;
}

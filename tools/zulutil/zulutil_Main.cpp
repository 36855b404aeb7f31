// zulutil: brings the library up, reads its arguments through the library's command line, runs
// one command and reports failures as the library's exception reports.
#include <cstdio>
#include <cstring>
#include <string>

#include "nex/nex_Exception.h"
#include "uti/uti_BasicUtils.h"
#include "zul_Version.h"
#include "zulutil.h"

namespace {

struct Command {
    const char* name;
    const char* usage;
    int (*run)(const zulutil_Args&);
};

int RunEncrypt(const zulutil_Args& args) { return zulutil_Cipher(args, true); }
int RunDecrypt(const zulutil_Args& args) { return zulutil_Cipher(args, false); }
int RunHelp(const zulutil_Args& args) { return zulutil_Usage(args.Positional(1), zulutil_Ok); }

const Command kCommands[] = {
    {"msf",
     "zulutil msf list FILE                    sections with length, CRC and check\n"
     "zulutil msf verify FILE                  status 0 when every section checks, 1 otherwise\n"
     "                                         (both say first when FILE is locked, by whom and\n"
     "                                         whether that writer still runs)\n"
     "zulutil msf get FILE SECTION [-o OUT]    a section's bytes to OUT or standard output\n"
     "zulutil msf put FILE SECTION [INPUT]     sets a section from INPUT or standard input and\n"
     "                                         saves (creates the container when missing)\n"
     "zulutil msf recover FILE                 restores a damaged container from the complete\n"
     "                                         temporary save file beside it\n"
     "zulutil msf unlock FILE [-force]         removes a lock whose writer no longer runs on this\n"
     "                                         host (status 0, also when FILE is not locked);\n"
     "                                         refuses otherwise (status 1); -force removes it anyway\n",
     &zulutil_Msf},
    {"md5", "zulutil md5 [FILE...]                    MD5 digests, in md5sum's format\n", &zulutil_Md5},
    {"crc", "zulutil crc [FILE...]                    the container checksum of each file, in hex\n", &zulutil_Crc},
    {"base64",
     "zulutil base64 [-d] [-wrap] [FILE]       base64 with the library's alphabet (\"!\" for \"/\");\n"
     "                                         -wrap breaks lines at 76 characters, -d decodes\n",
     &zulutil_Base64},
    {"encrypt",
     "zulutil encrypt -cipher blowfish|rotor -keyfile KEYFILE [FILE]\n"
     "                                         the key is read from KEYFILE, never the command line\n",
     &RunEncrypt},
    {"decrypt", "zulutil decrypt -cipher blowfish|rotor -keyfile KEYFILE [FILE]\n", &RunDecrypt},
    {"rgx",
     "zulutil rgx match PATTERN [TEXT]         the match and its groups\n"
     "zulutil rgx split PATTERN [TEXT]         the pieces between matches, one per line\n"
     "zulutil rgx subn PATTERN REPLACEMENT [TEXT] [-count N]\n"
     "                                         substitution (0 or no count: every match); without\n"
     "                                         TEXT the text is standard input\n",
     &zulutil_Rgx},
    {"host", "zulutil host                             date, time, host, user, platform and processor\n", &zulutil_Host},
    {"help",
     "zulutil help [COMMAND]                   usage of one command or of all, on standard output;\n"
     "                                         --help or -h after any command does the same\n",
     &RunHelp},
};

const Command* Find(const std::string& name)
{
    for (const Command& c : kCommands)
        if (name == c.name)
            return &c;
    return nullptr;
}

int Run()
{
    zulutil_Args args;
    const std::string command = args.Positional(0);
    // The command line rule removes one "-": "--help" is the option "-help".
    if (args.Has("-help") || args.Has("h") || args.Has("help"))
        return zulutil_Usage(command, zulutil_Ok);
    if (args.Has("-version")) {
        std::printf("zulutil %s\n", zul_VersionString());
        return zulutil_Ok;
    }
    if (command.empty())
        return zulutil_Usage("", zulutil_BadUsage);
    const Command* c = Find(command);
    if (!c)
        return zulutil_UsageError("", "unknown command \"" + command + "\"");
    return c->run(args);
}

}  // namespace

int zulutil_Usage(const std::string& command, int status)
{
    FILE* out = status == zulutil_Ok ? stdout : stderr;
    const Command* c = command.empty() ? nullptr : Find(command);
    if (c) {
        std::fprintf(out, "usage:\n%s", c->usage);
    } else {
        std::fprintf(out, "usage: zulutil COMMAND ...   (zulutil help COMMAND for one command)\n");
        for (const Command& each : kCommands)
            std::fprintf(out, "%s", each.usage);
        std::fprintf(out, "zulutil --version                        the version of the tool and its library\n");
        std::fprintf(out, "Exit status: 0 success, 1 a check failed, 2 usage or input error or a failed write to\n"
                             "standard output.\n");
    }
    return status;
}

int zulutil_UsageError(const std::string& command, const std::string& message)
{
    std::fprintf(stderr, "zulutil: %s\n", message.c_str());
    return zulutil_Usage(command, zulutil_BadUsage);
}

int main()
{
    int count = 0;
    UTI_BasicUtils_initialize(count);
    zulutil_SetBinaryStandardStreams();
    int status;
    try {
        status = Run();
    } catch (const nex_Exception& e) {
        std::fflush(stdout);
        std::fprintf(stderr, "zulutil: %s\n", e.UserReport().c_str());
        status = zulutil_BadUsage;
    }
    status = zulutil_FinishStandardOutput(status);
    UTI_BasicUtils_finalize(count);
    return status;
}

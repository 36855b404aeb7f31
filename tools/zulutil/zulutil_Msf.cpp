// msf: list, verify, read, write, recover and unlock container files.
#include <cstdio>
#include <string>
#include <vector>

#include "nex/nex_Exception.h"
#include "utl/utl_File.h"
#include "utl/utl_MultisectionFile.h"
#include "utl/utl_Stat.h"
#include "zulutil.h"

namespace {

// A container that cannot be opened at all, or is not a container, is an input error (2);
// one whose table is damaged is a failed check (1).
int StatusOfOpenFailure(const nex_Exception& e)
{
    if (dynamic_cast<const utl_FileExceptionOpen*>(&e) || dynamic_cast<const utl_FileExceptionNoFile*>(&e) ||
        dynamic_cast<const utl_MultisectionFormatException*>(&e))
        return zulutil_BadUsage;
    return zulutil_CheckFailed;
}

// "FILE: locked by <owner>; <whether it runs>", for a container with a lock file.
std::string LockLine(const std::string& path, const utl_MultisectionLockOwner& owner)
{
    std::string line = path + ": locked by " + owner.Describe().c_str();
    switch (owner.State()) {
    case utl_MultisectionLockUnknownOwner:
        return line + " (empty or unreadable lock file)";
    case utl_MultisectionLockLive:
        return line + "; it still runs";
    case utl_MultisectionLockStale:
        return line + "; it no longer runs (stale lock: zulutil msf unlock removes it)";
    case utl_MultisectionLockOtherHost:
        break;
    }
    return line + "; another host: whether it runs cannot be told here";
}

void PrintLock(const std::string& path)
{
    utl_MultisectionLockOwner owner;
    if (utl_MultisectionFile::LockOwner(path.c_str(), owner))
        std::printf("%s\n", LockLine(path, owner).c_str());
}

// Checks every section; prints one line each when `list`, or the corrupt ones otherwise.
// Returns the number of corrupt sections. Sections are reached by position (linear time, repeated
// names each checked); buffers are sized by getSectionLength, which refuses lengths the file
// cannot hold, and the listing shows the table's own length.
int CheckSections(utl_MultisectionFile& msf, bool list)
{
    int corrupt = 0;
    for (int i = 0; i < msf.SectionCount(); ++i) {
        const cow_String name = msf.SectionName(i);
        const int length = msf.SectionLength(i);
        bool ok = true;
        try {
            std::vector<char> data(static_cast<size_t>(msf.getSectionLength(i)) + 1);
            msf.getSectionData(i, data.data());
        } catch (const nex_Exception&) {
            ok = false;
            ++corrupt;
        }
        if (list)
            std::printf("%-32s %12d  %08x  %s\n", name.c_str(), length, msf.SectionCrc(i), ok ? "ok" : "CORRUPT");
        else if (!ok)
            std::printf("CORRUPT section \"%s\"\n", name.c_str());
    }
    return corrupt;
}

int ListOrVerify(const std::string& path, bool list)
{
    int corrupt;
    PrintLock(path);
    try {
        utl_MultisectionFile msf(path.c_str(), utl_FileAccessRead);
        if (list)
            std::printf("%s: %d sections, %lld bytes\n", path.c_str(), msf.SectionCount(),
                        static_cast<long long>(utl_Stat(path.c_str()).Size()));
        corrupt = CheckSections(msf, list);
        if (!list && corrupt == 0)
            std::printf("%s: %d sections ok\n", path.c_str(), msf.SectionCount());
    } catch (const nex_Exception& e) {
        std::fflush(stdout);
        std::fprintf(stderr, "zulutil: %s\n", e.UserReport().c_str());
        return StatusOfOpenFailure(e);
    }
    return corrupt == 0 ? zulutil_Ok : zulutil_CheckFailed;
}

int Get(const zulutil_Args& args)
{
    const std::string path = args.Positional(2), section = args.Positional(3);
    if (path.empty() || section.empty())
        return zulutil_UsageError("msf", "msf get needs FILE and SECTION");
    utl_MultisectionFile msf(path.c_str(), utl_FileAccessRead);
    std::string bytes(static_cast<size_t>(msf.getSectionLength(section.c_str())), '\0');
    msf.getSectionData(section.c_str(), &bytes[0]);
    zulutil_WriteAll(args.Value("o"), bytes);
    return zulutil_Ok;
}

int Put(const zulutil_Args& args)
{
    const std::string path = args.Positional(2), section = args.Positional(3);
    if (path.empty() || section.empty())
        return zulutil_UsageError("msf", "msf put needs FILE and SECTION");
    const std::string bytes = zulutil_ReadAll(args.Positional(4));
    if (bytes.size() > 0x7FFFFFFFu)
        return zulutil_UsageError("msf", "a section holds at most 2 GiB");
    const bool exists = utl_Stat(path.c_str()).Found();
    utl_MultisectionFile msf(path.c_str(), exists ? utl_FileAccessUpdate : utl_FileAccessWrite);
    msf.setSectionData(section.c_str(), bytes.data(), static_cast<int>(bytes.size()));
    msf.saveChanges();
    return zulutil_Ok;
}

int Recover(const std::string& path)
{
    if (path.empty())
        return zulutil_UsageError("msf", "msf recover needs FILE");
    cow_String save;
    switch (utl_MultisectionFile::RestoreFromSaveFile(path.c_str(), save)) {
    case utl_MultisectionFile::RestoreNotNeeded:
        std::printf("%s: verifies; nothing to recover\n", path.c_str());
        return zulutil_Ok;
    case utl_MultisectionFile::RestoreDone:
        std::printf("%s: restored from %s\n", path.c_str(), save.c_str());
        return zulutil_Ok;
    default:
        std::printf("%s: does not verify and no complete save file was found; nothing changed\n", path.c_str());
        return zulutil_CheckFailed;
    }
}

int Unlock(const zulutil_Args& args)
{
    const std::string path = args.Positional(2);
    if (path.empty())
        return zulutil_UsageError("msf", "msf unlock needs FILE");
    utl_MultisectionLockOwner owner;
    switch (utl_MultisectionFile::RemoveLock(path.c_str(), args.Has("force"), owner)) {
    case utl_MultisectionUnlockNotLocked:
        std::printf("%s: not locked\n", path.c_str());
        return zulutil_Ok;
    case utl_MultisectionUnlockRemoved:
        std::printf("%s: removed the lock of %s\n", path.c_str(), owner.Describe().c_str());
        return zulutil_Ok;
    case utl_MultisectionUnlockRefused:
        break;
    }
    std::fflush(stdout);
    std::fprintf(stderr, "zulutil: %s: not removed (-force removes it anyway)\n", LockLine(path, owner).c_str());
    return zulutil_CheckFailed;
}

}  // namespace

int zulutil_Msf(const zulutil_Args& args)
{
    const std::string action = args.Positional(1);
    const std::string path = args.Positional(2);
    if (action == "list" || action == "verify") {
        if (path.empty())
            return zulutil_UsageError("msf", "msf " + action + " needs FILE");
        return ListOrVerify(path, action == "list");
    }
    if (action == "get")
        return Get(args);
    if (action == "put")
        return Put(args);
    if (action == "recover")
        return Recover(path);
    if (action == "unlock")
        return Unlock(args);
    return zulutil_UsageError("msf", action.empty() ? "msf needs an action" : "unknown msf action \"" + action + "\"");
}

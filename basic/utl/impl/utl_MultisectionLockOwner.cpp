#include "utl/utl_MultisectionLockOwner.h"

#include <cstdlib>

#include "atr/atr_translate.h"
#include "nex/nex_Exception.h"
#include "utl/impl/utl_LockFile.h"
#include "utl/utl_HostInfo.h"
#include "utl/utl_MultisectionFile.h"

namespace {

// A decimal process id from 1 to 2^32 - 1; 0 when the text is anything else.
uint32_t ParseProcessId(const cow_String& text)
{
    if (text.Length() == 0 || text.Length() > 10)
        return 0;
    unsigned long long value = 0;
    for (int i = 0; i < text.Length(); ++i) {
        if (text[i] < '0' || text[i] > '9')
            return 0;
        value = value * 10 + static_cast<unsigned>(text[i] - '0');
    }
    return value <= 0xFFFFFFFFull ? static_cast<uint32_t>(value) : 0;
}

cow_String LockPath(const cow_String& path)
{
    cow_String lockPath(path);
    lockPath += ".lock";
    return lockPath;
}

}  // namespace

utl_MultisectionLockOwner utl_MultisectionLockOwner::Current()
{
    utl_MultisectionLockOwner owner;
    owner.known = true;
    owner.processId = sys_ProcessId();
    owner.host = utl_getHostName();
    char started[sys_kStartTimeSize];
    uint32_t error = 0;
    if (sys_ProcessStartTime(owner.processId, started, error))
        owner.started = started;
    return owner;
}

utl_MultisectionLockOwner utl_MultisectionLockOwner::FromText(const cow_String& text)
{
    int end = text.Find('\n');
    if (end < 0)
        end = text.Length();
    if (end > 0 && text[end - 1] == '\r')
        --end;
    utl_MultisectionLockOwner owner;
    bool pid = false, host = false, started = false;
    for (int at = 0; at < end;) {
        int next = at;
        while (next < end && text[next] != ' ')
            ++next;
        const cow_String field = text.Substr(at, next - at);
        const int equals = field.Find('=');
        if (equals <= 0)
            return utl_MultisectionLockOwner();
        const cow_String name = field.Substr(0, equals);
        const cow_String value = field.Substr(equals + 1, field.Length() - equals - 1);
        if (name == "pid") {
            owner.processId = ParseProcessId(value);
            pid = owner.processId != 0;
            if (!pid)
                return utl_MultisectionLockOwner();
        } else if (name == "host") {
            owner.host = value;
            host = true;
        } else if (name == "started") {
            owner.started = value;
            started = true;
        }
        at = next + 1;
    }
    owner.known = pid && host && started;
    return owner.known ? owner : utl_MultisectionLockOwner();
}

cow_String utl_MultisectionLockOwner::Text() const
{
    return atr_translate("pid=%1$u host=%2$s started=%3$s\n").Arg(static_cast<unsigned>(processId)).Arg(host).Arg(started).Result();
}

utl_MultisectionLockStateEnm utl_MultisectionLockOwner::State() const
{
    if (!known)
        return utl_MultisectionLockUnknownOwner;
    if (host.Length() == 0 || host != utl_getHostName())
        return utl_MultisectionLockOtherHost;
    return sys_ProcessRuns(processId, started.c_str()) ? utl_MultisectionLockLive : utl_MultisectionLockStale;
}

cow_String utl_MultisectionLockOwner::Describe() const
{
    if (!known)
        return cow_String("an unknown owner");
    return atr_translate("pid %1$u on host %2$s, started %3$s")
        .Arg(static_cast<unsigned>(processId))
        .Arg(host.Length() ? host : cow_String("(unknown)"))
        .Arg(started.Length() ? started : cow_String("(unknown)"))
        .Result();
}

bool utl_MultisectionFile::LockOwner(const cow_String& path, utl_MultisectionLockOwner& owner)
{
    cow_String text;
    const int found = utl_LockFile::Read(LockPath(path), text);
    owner = found > 0 ? utl_MultisectionLockOwner::FromText(text) : utl_MultisectionLockOwner();
    return found != 0;
}

utl_MultisectionUnlockEnm utl_MultisectionFile::RemoveLock(const cow_String& path, bool force, utl_MultisectionLockOwner& owner)
{
    if (!LockOwner(path, owner))
        return utl_MultisectionUnlockNotLocked;
    if (!force && !owner.IsStale())
        return utl_MultisectionUnlockRefused;
    const cow_String lockPath = LockPath(path);
    cow_String text;
    uint32_t error = 0;
    if (!sys_RemoveFile(lockPath.c_str(), error) && utl_LockFile::Read(lockPath, text) != 0) {
        atr_String message = atr_translate("\"%s\": ").Arg(path).Result();
        message += "Cannot remove the lock file.";
        NEX_RAISE(nex_TextException, message);
    }
    return utl_MultisectionUnlockRemoved;
}

/// @class utl_MultisectionLockOwner
/// utl_MultisectionLockOwner: who holds the lock of a container file, as its lock file says.
///
/// A writer that takes the lock (creates "<path>.lock" exclusively) writes one line into it:
///
/// @code{.unparsed}
///   pid=<process id> host=<host name> started=<start time>\n
/// @endcode
///
/// The process id is decimal; the host name is utl_getHostName's; the start time tells the
/// process from any other that has had or will have the same id on that host: on Linux
/// "<clock ticks since boot>/<boot id>", on Windows the process creation time in 100 ns units
/// since 1601, in decimal. Fields are separated by one blank; fields of other names are ignored.
/// A lock file that is empty, unreadable or holds another text (older writers, a writer that
/// ended between creating the file and writing into it) has an unknown owner.
///
/// A lock is stale when its owner ran on this host and no longer runs: no process has its id,
/// the one that has it has ended, or it started at another time. An unknown owner, one on
/// another host, and one that cannot be looked at are never stale.
///
/// Thread rule: a plain value; the functions may be called from any thread.
#ifndef UTL_MULTISECTIONLOCKOWNER_H
#define UTL_MULTISECTIONLOCKOWNER_H

#include <cstdint>

#include "cow/cow_String.h"
#include "zul_BasicExport.h"

/// What State() finds out about the owner of a lock.
enum utl_MultisectionLockStateEnm {
    utl_MultisectionLockUnknownOwner,  ///< the lock file holds no owner line
    utl_MultisectionLockLive,          ///< the owner runs on this host (or cannot be told to have ended)
    utl_MultisectionLockStale,         ///< the owner ran on this host and no longer runs
    utl_MultisectionLockOtherHost      ///< the owner is on another host (or its host is unknown)
};

/// What utl_MultisectionFile::RemoveLock did.
enum utl_MultisectionUnlockEnm {
    utl_MultisectionUnlockNotLocked,  ///< there was no lock file
    utl_MultisectionUnlockRemoved,
    utl_MultisectionUnlockRefused     ///< the lock is not stale and removal was not forced
};

struct ZUL_BASIC_API utl_MultisectionLockOwner {
    bool known = false;  ///< the fields below come from an owner line
    uint32_t processId = 0;
    cow_String host;
    cow_String started;

    /// This process, as its lock files name it.
    static utl_MultisectionLockOwner Current();
    /// The owner named by the first line of a lock file's text; unknown when there is none.
    static utl_MultisectionLockOwner FromText(const cow_String& text);
    /// The owner line, newline included.
    cow_String Text() const;

    utl_MultisectionLockStateEnm State() const;
    bool IsStale() const { return State() == utl_MultisectionLockStale; }
    /// "pid 4711 on host node7, started <start time>", or "an unknown owner".
    cow_String Describe() const;
};

#endif

// Small operating-system helpers of the container file (one definition per platform).
#ifndef UTL_LOCKFILE_H
#define UTL_LOCKFILE_H

#include "cow/cow_String.h"

namespace utl_LockFile {

// Creates the file exclusively, with write permission, and closes it at once: true when this
// call made it (a descriptor above 0 came back).
bool Create(const cow_String& path);
void Remove(const cow_String& path);
int ProcessId();
void SleepMilliseconds(int ms);

}  // namespace utl_LockFile

#endif

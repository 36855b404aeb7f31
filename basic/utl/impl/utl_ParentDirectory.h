// POSIX systems answer ENOENT both for a missing file and for a missing directory on its way;
// the library tells them apart as Windows does (errors 2 and 3) by looking at the parent.
#ifndef UTL_PARENTDIRECTORY_H
#define UTL_PARENTDIRECTORY_H

#include "cow/cow_String.h"

// Whether the directory holding the path's last component exists (a path without "/" lies in the
// current directory, which does).
bool utl_ParentDirectoryExists(const cow_String& path);

#endif

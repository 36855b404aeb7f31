// What utl_FilePath asks of the platform (one definition per platform).
#ifndef UTL_FILEPATHPLATFORM_H
#define UTL_FILEPATHPLATFORM_H

#include "cow/cow_String.h"

namespace utl_FilePathPlatform {

// The native separator, and whether paths have drives and UNC names.
extern const char kNativeSeparator;
extern const bool kHasDrives;

// The current directory of a drive (Windows); the process's current directory (utl_getcwd)
// elsewhere.
cow_String DriveCurrentDirectory(char drive);

bool CanRead(const cow_String& path);
bool CanWrite(const cow_String& path);
// The platform's executable test for an existing, readable file with this extension.
bool IsExecutable(const cow_String& path, const cow_String& extension);

}  // namespace utl_FilePathPlatform

#endif

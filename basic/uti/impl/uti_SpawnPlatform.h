// What uti_Spawn asks of the platform (one definition per platform).
#ifndef UTI_SPAWNPLATFORM_H
#define UTI_SPAWNPLATFORM_H

#include <cstddef>
#include <cstdint>

#include "cow/cow_String.h"
#include "utl/utl_FilePath.h"

namespace uti_SpawnPlatform {

// The handle of no process.
extern const intptr_t kNoProcess;
// Separator of the PATH list.
extern const char kPathListSeparator;
// Names of the calls whose failures are reported.
extern const char* const kStartCall;
extern const char* const kWaitCall;

// The file name that the command lookup uses for a command.
cow_String CommandFileName(const cow_String& command);
// Whether the name is tried as given before the PATH is searched.
bool TriesNameAsGiven(const cow_String& name);
// Whether a found file can be started.
bool IsStartable(const utl_FilePath& path);

struct StartRequest {
    const char* commandLine;        // the whole command line
    const char* program;            // the file to run (POSIX)
    char* const* argv;              // command and arguments, null-terminated (POSIX)
    const char* environmentBlock;   // KEY=VALUE\0...\0, or null to inherit
    int window;                     // negative: no console window / own session
    int descriptors[3];             // the redirection entries
    bool traceRedirections;
    void (*announce)(const void*);  // called right before the child is created
    const void* announceContext;
};

// Starts the child: true with its handle, or false with the system's error code. Leaves the
// redirected descriptors open and the parent's standard handles as they were.
bool Start(const StartRequest& request, intptr_t& process, uint32_t& error);

enum WaitResult { Exited, Running, Failed };
// seconds < 0: look once; 0: wait without limit; > 0: wait up to that long. On Exited the exit
// status; on Failed the error number.
WaitResult Wait(intptr_t process, int seconds, int& status, uint32_t& error);
// Waits until one of the processes has ended: its index and status, or -1 with the error number.
int WaitAny(const intptr_t* processes, int count, int& status, uint32_t& error);
// The status a process reports while it still runs (Windows' STILL_ACTIVE), or a value that
// never occurs.
extern const int kStillActive;
bool Terminate(intptr_t process);
// Gives up the handle of a process (which goes on running).
void Release(intptr_t process);
void CloseDescriptor(int descriptor);
// The runtime's environment table (KEY=VALUE texts, null-terminated).
char** EnvironmentTable();

}  // namespace uti_SpawnPlatform

// Prints one redirection line of the trace (defined with uti_Spawn).
void uti_SpawnTraceRedirection(int stream, intptr_t handle);

#endif

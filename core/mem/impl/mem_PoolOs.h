// The operating-system services under the small-block pool and the per-thread state of the
// memory layer: address space reserved once and made usable piece by piece, the runtime heap's
// block sizes, and a hook that runs when a thread ends. One implementation per platform
// (mem_Pool_posix.cpp, mem_Pool_win32.cpp); nothing here is exported.
#ifndef MEM_POOLOS_H
#define MEM_POOLOS_H

#include <cstddef>

// The pool's per-thread pointer is read on every allocation and free: on ELF targets it lives in
// the static TLS block (one load), which a library loaded at start-up may use. Elsewhere the
// compiler's default model applies.
#if defined(__ELF__)
#define MEM_TLS_MODEL __attribute__((tls_model("initial-exec")))
#else
#define MEM_TLS_MODEL
#endif

namespace mem_os {

// Reserves `bytes` of address space, not yet readable or writable; null when the system refuses.
void* Reserve(size_t bytes);
// Makes [p, p + bytes) of a reservation readable and writable, zero-filled; false on failure.
bool Commit(void* p, size_t bytes);

// Bytes usable in a block from the runtime's malloc/realloc (at least the size asked for).
size_t RuntimeBlockSize(void* p);

// Sets the function that runs in an ending thread that called WatchThreadExit, with the pointer
// it gave. Set once, before the first WatchThreadExit.
void SetThreadExitHook(void (*hook)(void* data));
// Asks for the hook to run with `data` when the calling thread ends (not for the thread that
// ends the process). False when the system refuses.
bool WatchThreadExit(void* data);

}  // namespace mem_os

#endif

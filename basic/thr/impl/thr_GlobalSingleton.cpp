#include "thr/thr_GlobalSingleton.h"

#include <cstring>

#include "nex/nex_Exception.h"
#include "thr/thr_GlobalLock.h"

namespace {

// Singletons are few (one per type); the tables are fixed so that registering never allocates
// and slots never move.
const int kMaxSingletons = 128;

struct NamedSlot {
    const char* name;
    thr_GlobalSingletonSlot slot;
};

NamedSlot g_slots[kMaxSingletons];
int g_slotCount = 0;

void (*g_finalizers[kMaxSingletons * 4])();
int g_finalizerCount = 0;

}  // namespace

thr_GlobalSingletonSlot& thr_FindGlobalSingletonSlot(const char* typeName)
{
    thr_GlobalLockGuard guard;
    for (int i = 0; i < g_slotCount; ++i)
        if (std::strcmp(g_slots[i].name, typeName) == 0)
            return g_slots[i].slot;
    NEX_ASSERT(g_slotCount < kMaxSingletons);
    NamedSlot& s = g_slots[g_slotCount++];
    s.name = typeName;  // type names are static data of the binary that asked
    s.slot.instance.store(nullptr, std::memory_order_relaxed);
    s.slot.mutex = nullptr;
    return s.slot;
}

thr_Mutex& thr_GlobalSingletonMutex(thr_GlobalSingletonSlot& slot)
{
    thr_GlobalLockGuard guard;
    if (!slot.mutex)
        slot.mutex = new thr_Mutex(0);
    return *slot.mutex;
}

void thr_DestroyGlobalSingletonMutex(thr_GlobalSingletonSlot& slot)
{
    thr_Mutex* m;
    {
        thr_GlobalLockGuard guard;
        m = slot.mutex;
        slot.mutex = nullptr;
    }
    delete m;
}

void thr_RegisterGlobalSingleton(void (*finalize)())
{
    thr_GlobalLockGuard guard;
    for (int i = 0; i < g_finalizerCount; ++i)
        if (g_finalizers[i] == finalize)
            return;
    NEX_ASSERT(g_finalizerCount < kMaxSingletons * 4);
    g_finalizers[g_finalizerCount++] = finalize;
}

void thr_FinalizeGlobalSingletons()
{
    for (;;) {
        void (*finalize)() = nullptr;
        {
            thr_GlobalLockGuard guard;
            if (g_finalizerCount == 0)
                return;
            finalize = g_finalizers[--g_finalizerCount];
        }
        finalize();
    }
}

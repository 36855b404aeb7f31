#include "thr/thr_ThreadSingleton.h"

#include <algorithm>
#include <cstring>

#include "nex/nex_Exception.h"
#include "thr/impl/thr_Os.h"
#include "thr/thr_GlobalLock.h"

namespace {

struct Registration {
    const char* name;
    thr_ThrSingletonRegistry::Destroyer destroy;
    int level;
    std::atomic<int> holders;
};

Registration g_types[thr_ThrSingletonRegistry::kMaxTypes];
std::atomic<int> g_typeCount{0};

// A thread's instances, one pointer per registered type; kept in the system's thread storage so
// that it is still reachable while the thread exits.
struct ThreadSlots {
    void* slot[thr_ThrSingletonRegistry::kMaxTypes];
};

ThreadSlots* CurrentSlots() { return static_cast<ThreadSlots*>(thr_os::ThreadBlock()); }

ThreadSlots& CurrentSlotsMade()
{
    ThreadSlots* s = CurrentSlots();
    if (!s) {
        s = static_cast<ThreadSlots*>(mem_OperatorNewThrow(sizeof(ThreadSlots)));
        for (void*& p : s->slot)
            p = nullptr;
        thr_os::SetThreadBlock(s);
    }
    return *s;
}

bool ValidKey(int key)
{
    return key >= 0 && key < g_typeCount.load(std::memory_order_acquire);
}

void DestroySlot(ThreadSlots& s, int key)
{
    void* p = s.slot[key];
    if (!p)
        return;
    s.slot[key] = nullptr;
    g_types[key].holders.fetch_sub(1, std::memory_order_acq_rel);
    g_types[key].destroy(p);
}

// Destroys a thread's instances, lower levels first, later registrations first within a level.
void DestroyAll(ThreadSlots& s)
{
    const int count = g_typeCount.load(std::memory_order_acquire);
    int keys[thr_ThrSingletonRegistry::kMaxTypes];
    int n = 0;
    for (int k = 0; k < count; ++k)
        if (s.slot[k])
            keys[n++] = k;
    std::sort(keys, keys + n, [](int a, int b) {
        if (g_types[a].level != g_types[b].level)
            return g_types[a].level < g_types[b].level;
        return a > b;
    });
    for (int i = 0; i < n; ++i)
        DestroySlot(s, keys[i]);
}

// Runs in an exiting thread with its slots.
void FinalizeExitingThread(void* block)
{
    ThreadSlots* s = static_cast<ThreadSlots*>(block);
    thr_os::SetThreadBlock(s);  // instances' destructors may look at their own thread's slots
    DestroyAll(*s);
    thr_os::SetThreadBlock(nullptr);
    mem_Free(s);
}

}  // namespace

int thr_ThrSingletonRegistry::Register(const char* typeName, Destroyer destroy)
{
    thr_GlobalLockGuard guard;
    const int key = g_typeCount.load(std::memory_order_relaxed);
    for (int k = 0; k < key; ++k)
        if (std::strcmp(g_types[k].name, typeName) == 0)
            return k;
    NEX_ASSERT(key < kMaxTypes);
    g_types[key].name = typeName;
    g_types[key].destroy = destroy;
    g_types[key].level = 0;
    g_types[key].holders.store(0, std::memory_order_relaxed);
    g_typeCount.store(key + 1, std::memory_order_release);
    thr_os::SetThreadBlockExitHook(&FinalizeExitingThread);
    return key;
}

void thr_ThrSingletonRegistry::SetDestructLevel(int key, int level)
{
    NEX_ASSERT(ValidKey(key));
    thr_GlobalLockGuard guard;
    g_types[key].level = level;
}

void* thr_ThrSingletonRegistry::Get(int key)
{
    if (!ValidKey(key))
        return nullptr;
    ThreadSlots* s = CurrentSlots();
    return s ? s->slot[key] : nullptr;
}

void thr_ThrSingletonRegistry::Set(int key, void* instance)
{
    NEX_ASSERT(ValidKey(key));
    ThreadSlots& s = CurrentSlotsMade();
    thr_GlobalLockGuard guard;
    if (!s.slot[key] && instance)
        g_types[key].holders.fetch_add(1, std::memory_order_acq_rel);
    else if (s.slot[key] && !instance)
        g_types[key].holders.fetch_sub(1, std::memory_order_acq_rel);
    s.slot[key] = instance;
}

void thr_ThrSingletonRegistry::Release(int key)
{
    ThreadSlots* s = CurrentSlots();
    if (s && ValidKey(key))
        DestroySlot(*s, key);
}

void thr_ThrSingletonRegistry::FinalizeThread(int)
{
    ThreadSlots* s = CurrentSlots();
    if (s)
        DestroyAll(*s);
}

int thr_ThrSingletonRegistry::ThreadsHolding(int key)
{
    return ValidKey(key) ? g_types[key].holders.load(std::memory_order_acquire) : 0;
}

void thr_ThrSingletonRegistry::TearDown()
{
    ThreadSlots* s = CurrentSlots();
    if (s) {
        DestroyAll(*s);
        thr_os::SetThreadBlock(nullptr);
        mem_Free(s);
    }
}

int thr_ThreadId::Current()
{
    const thr_ThreadId* id = thr_ThreadSingleton<thr_ThreadId>::Existing();
    return id ? id->Number() : 0;
}

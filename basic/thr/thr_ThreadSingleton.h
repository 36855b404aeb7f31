/// @file
/// Per-thread singletons: each thread gets its own instance of a registered type T, created on
/// first use in a thread-local slot and destroyed when the thread ends (a pool worker's on its way
/// out, any other thread's at its exit), by FinalizeThread, or by Release for one type.
///
/// Slot keys are handed out by thr_ThrSingletonRegistry under the global lock, one per type name,
/// so that the library and the programs using it agree on a type's key even where each binary has
/// its own copy of the template (Windows DLLs).
///
/// Thread rule: each thread reaches only its own instances, without a lock. Registering a type
/// (its first Key()) takes the global lock. Destruct levels are read without the lock by threads
/// as they end: set them during start-up. Get answers null for an unknown key; Set and
/// SetDestructLevel raise nex_AssertException for one.
#ifndef THR_THREADSINGLETON_H
#define THR_THREADSINGLETON_H

#include <atomic>
#include <new>
#include <typeinfo>

#include "mem/mem_Memory.h"
#include "zul_BasicExport.h"

/// The slot keys of the per-thread singleton types, and each thread's instances.
class ZUL_BASIC_API thr_ThrSingletonRegistry {
public:
    typedef void (*Destroyer)(void* instance);
    /// The most types the registry holds.
    enum { kMaxTypes = 64 };

    /// The key of the type with this name, registered on first request with the function that
    /// frees its instances. Keys are never reused.
    static int Register(const char* typeName, Destroyer destroy);
    /// Instances of lower levels are destroyed first when a thread is finalized; the default
    /// level is 0, and within one level the later-registered type goes first.
    static void SetDestructLevel(int key, int level);

    /// The calling thread's instance of the type, or null.
    static void* Get(int key);
    /// Stores the calling thread's instance (the first store of a thread counts it as holding).
    static void Set(int key, void* instance);
    /// Destroys the calling thread's instance of one type, if any.
    static void Release(int key);
    /// Destroys all instances of the calling thread. `threadNumber` names the thread in the pool
    /// (-1 for none) and is used for diagnostics only.
    static void FinalizeThread(int threadNumber);
    /// The number of threads holding an instance of the type.
    static int ThreadsHolding(int key);

    /// Module tear-down: destroys the calling thread's instances. Registrations (a fixed table)
    /// outlive it, so a type keeps its key when the library is brought up again.
    static void TearDown();
};

/// The calling thread's instance of T, made on first use (see thr_ThreadSingleton.h).
template <class T>
class thr_ThreadSingleton {
public:
    static T& Instance()
    {
        const int key = Key();
        void* p = thr_ThrSingletonRegistry::Get(key);
        if (p)
            return *static_cast<T*>(p);
        void* raw = mem_OperatorNewThrow(sizeof(T));
        T* made;
        try {
            made = ::new (raw) T();
        } catch (...) {
            mem_Free(raw);
            throw;
        }
        thr_ThrSingletonRegistry::Set(key, made);
        return *made;
    }

    /// The calling thread's instance if it exists; never creates.
    static T* Existing()
    {
        const int key = s_key.load(std::memory_order_acquire);
        return key < 0 ? nullptr : static_cast<T*>(thr_ThrSingletonRegistry::Get(key));
    }

    /// Destroys the calling thread's instance.
    static void Release()
    {
        const int key = s_key.load(std::memory_order_acquire);
        if (key >= 0)
            thr_ThrSingletonRegistry::Release(key);
    }

    static int Key()
    {
        int key = s_key.load(std::memory_order_acquire);
        if (key < 0) {
            key = thr_ThrSingletonRegistry::Register(typeid(T).name(), &Destroy);
            s_key.store(key, std::memory_order_release);
        }
        return key;
    }

private:
    static void Destroy(void* p)
    {
        static_cast<T*>(p)->~T();
        mem_Free(p);
    }

    static std::atomic<int> s_key;
};

template <class T>
std::atomic<int> thr_ThreadSingleton<T>::s_key{-1};

/// The calling thread's number in the thread pool: 0 for threads that are not pool workers,
/// worker number + 1 for the pool's workers.
class ZUL_BASIC_API thr_ThreadId {
public:
    thr_ThreadId() : m_number(0) {}
    int Number() const { return m_number; }
    void SetNumber(int number) { m_number = number; }

    /// The calling thread's number (0 when it never set one).
    static int Current();

private:
    int m_number;
};

#endif

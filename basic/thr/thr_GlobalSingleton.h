/// @class thr_GlobalSingleton
/// thr_GlobalSingleton<T>: one process-wide instance of T, created on first use by any thread
/// under the singleton's own mutex, and destroyed when the thr module finalizes (or by an explicit
/// thr_GlobalSingletonBase<T>::Finalize()).
///
/// T is default-constructible (it may befriend both templates). The instance pointer and mutex
/// live in a slot that the thr module keeps by the type's name, so that the library and every
/// program or library using it share one instance even where each binary has its own copy of the
/// template's statics (Windows DLLs). Each binary looks its slot up once.
///
/// Thread rule: Instance() and Existing() from any thread (the first Instance() creates under the
/// singleton's mutex, later ones are one atomic load). Finalize(), and the thr module's tear-down,
/// only after every other thread has stopped using the instance, which follows its own type's
/// rule.
#ifndef THR_GLOBALSINGLETON_H
#define THR_GLOBALSINGLETON_H

#include <atomic>
#include <new>
#include <typeinfo>

#include "mem/mem_Memory.h"
#include "thr/thr_Mutex.h"
#include "zul_BasicExport.h"

/// Where a global singleton lives: its instance pointer and its mutex, kept per type name.
struct thr_GlobalSingletonSlot {
    std::atomic<void*> instance;
    thr_Mutex* mutex;  ///< made on first use, under the global lock
};

/// The slot of the type with this name (made on first request; slots live as long as the process).
ZUL_BASIC_API thr_GlobalSingletonSlot& thr_FindGlobalSingletonSlot(const char* typeName);
/// Registration of the created global singletons, so that the thr module can destroy them.
/// Destruction runs in the reverse order of creation.
///@{
ZUL_BASIC_API void thr_RegisterGlobalSingleton(void (*finalize)());
ZUL_BASIC_API void thr_FinalizeGlobalSingletons();
///@}
/// The singleton's mutex, made under the global lock when missing.
ZUL_BASIC_API thr_Mutex& thr_GlobalSingletonMutex(thr_GlobalSingletonSlot& slot);
/// Destroys the slot's mutex under the global lock.
ZUL_BASIC_API void thr_DestroyGlobalSingletonMutex(thr_GlobalSingletonSlot& slot);

/// Finalize and Existing of a global singleton; thr_GlobalSingleton adds the creating Instance().
template <class T>
class thr_GlobalSingletonBase {
public:
    /// Destroys the instance, if any, then destroys the singleton's mutex under the global lock.
    static void Finalize()
    {
        thr_GlobalSingletonSlot& slot = Slot();
        T* p = static_cast<T*>(slot.instance.exchange(nullptr, std::memory_order_acq_rel));
        if (p) {
            p->~T();
            mem_Free(p);
        }
        thr_DestroyGlobalSingletonMutex(slot);
    }

    /// The instance if it exists; never creates.
    static T* Existing() { return static_cast<T*>(Slot().instance.load(std::memory_order_acquire)); }

protected:
    static thr_GlobalSingletonSlot& Slot()
    {
        static thr_GlobalSingletonSlot& slot = thr_FindGlobalSingletonSlot(typeid(T).name());
        return slot;
    }
};

template <class T>
class thr_GlobalSingleton : public thr_GlobalSingletonBase<T> {
    typedef thr_GlobalSingletonBase<T> Base;

public:
    static T& Instance()
    {
        void* p = Base::Slot().instance.load(std::memory_order_acquire);
        return p ? *static_cast<T*>(p) : Create();
    }

private:
    static T& Create()
    {
        thr_GlobalSingletonSlot& slot = Base::Slot();
        thr_MutexGuard guard(thr_GlobalSingletonMutex(slot));
        T* p = static_cast<T*>(slot.instance.load(std::memory_order_acquire));
        if (!p) {
            void* raw = mem_OperatorNewThrow(sizeof(T));
            try {
                p = ::new (raw) T();
            } catch (...) {
                mem_Free(raw);
                throw;
            }
            thr_RegisterGlobalSingleton(&Base::Finalize);
            slot.instance.store(p, std::memory_order_release);
        }
        return *p;
    }
};

#endif

/// @class omi_Singleton
/// omi_Singleton<T>: one process-wide instance of T, made on first use.
///
/// T derives from omi_Singleton<T>; constructing a T registers it as the instance, so a T must
/// only be made through Instance(). Finalize() destroys the instance (if any) and clears the
/// pointer; the next Instance() makes a fresh object.
///
/// Thread rule: creation and Finalize() are not locked: the first Instance() of each type happens
/// before several threads can call it (in practice while its module starts up), and Finalize()
/// after they stop. The instance itself follows its own type's rule.
///
/// Windows DLLs: the static instance pointer exists once per DLL or program that instantiates the
/// template. A singleton type of the library is therefore instantiated once, in its owning
/// module, with its instance pointer defined there; users outside that module reach it through
/// the owner's exported functions (T::Instance() defined out of line) rather than this template.
#ifndef OMI_SINGLETON_H
#define OMI_SINGLETON_H

#include <new>

#include "mem/mem_Memory.h"

/// The instance pointer of omi_Singleton, and Finalize.
template <class T>
class omi_SingletonBase {
public:
    /// Destroys the instance, if any, and frees it; in every case clears the pointer.
    static void Finalize()
    {
        T* p = instance;
        if (p) {
            p->~T();
            mem_Free(p);
        }
        instance = nullptr;
    }

protected:
    omi_SingletonBase() { instance = static_cast<T*>(this); }
    ~omi_SingletonBase() = default;

    /// The current instance, possibly null; never creates.
    static T* Instance() { return instance; }

    static T* instance;
};

template <class T>
T* omi_SingletonBase<T>::instance = nullptr;

template <class T>
class omi_Singleton : public omi_SingletonBase<T> {
public:
    static T& Instance()
    {
        if (!omi_SingletonBase<T>::instance) {
            void* raw = mem_OperatorNewThrow(sizeof(T));
            try {
                ::new (raw) T();  // the constructor registers the instance
            } catch (...) {
                omi_SingletonBase<T>::instance = nullptr;
                mem_Free(raw);
                throw;
            }
        }
        return *omi_SingletonBase<T>::instance;
    }

protected:
    omi_Singleton() : omi_SingletonBase<T>() {}
};

#endif

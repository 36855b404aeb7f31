/// @file
/// Shared storage with a separate reference count, and copy-on-write on top of it.
///
/// cow_CountedHld<T> is a handle of two pointers: a 32-bit count cell of its own (from the tiny
/// allocator) and the shared object. Copying a handle costs one increment and no allocation.
/// cow_COW<T, Policy> adds detach-on-write: Get() makes a private copy (with Policy::Copy) when the
/// object is shared; ConstGet() never copies.
///
/// Thread rule: the count is a plain integer. Handles that share one object must be used by one
/// thread at a time.
///
/// Ownership rule for pointers given to a handle: the handle destroys its object with cow_Destroy
/// below, so a T* must come from cow_New<T>(...) or from the policies' Copy (or, for classes with
/// their own operator new/delete or a virtual destructor, from plain `new`).
#ifndef COW_COW_H
#define COW_COW_H

#include <cstdint>
#include <new>
#include <type_traits>
#include <utility>

#include "mem/mem_Memory.h"

/// Whether T is destroyed with `delete` (its own operator delete or a virtual deleting destructor)
/// rather than by running the destructor and freeing through the memory layer.
template <class T>
struct cow_UsesDelete {
    template <class U>
    static auto HasClassDelete(int) -> decltype(U::operator delete(static_cast<void*>(nullptr)), std::true_type());
    template <class U>
    static std::false_type HasClassDelete(...);
    static constexpr bool value = std::has_virtual_destructor<T>::value || decltype(HasClassDelete<T>(0))::value;
};

/// Makes a heap object that cow_Destroy can release.
template <class T, class... Args>
T* cow_New(Args&&... args)
{
    if constexpr (cow_UsesDelete<T>::value) {
        return new T(std::forward<Args>(args)...);
    } else {
        void* raw = mem_OperatorNewThrow(sizeof(T));
        try {
            return ::new (raw) T(std::forward<Args>(args)...);
        } catch (...) {
            mem_Free(raw);
            throw;
        }
    }
}

template <class T>
void cow_Destroy(T* p)
{
    if (!p)
        return;
    if constexpr (cow_UsesDelete<T>::value) {
        delete p;
    } else {
        p->~T();
        mem_Free(p);
    }
}

/// Copy policy: copy construction into a new heap object.
template <class T>
struct cow_Direct {
    static T* Copy(const T& src) { return cow_New<T>(src); }
};

/// Copy policy: the object's own virtual clone, so the copy keeps the dynamic type.
template <class T>
struct cow_Virtual {
    static T* Copy(const T& src) { return static_cast<T*>(src.Copy()); }
};

/// A counted handle to a shared object (cow_COW.h gives its layout and rules).
template <class T>
class cow_CountedHld {
public:
    /// Adopts the pointer (which may be null); the new count is 1. If the count cell cannot be
    /// made, the object is destroyed: a handle given a pointer never leaks it.
    explicit cow_CountedHld(T* p = nullptr) : m_counter(AdoptingCounter(p)), m_referent(p) {}

    cow_CountedHld(const cow_CountedHld& other) : m_counter(other.m_counter), m_referent(other.m_referent)
    {
        ++*m_counter;
    }

    /// Increment the source first, so that self-assignment is safe.
    cow_CountedHld& operator=(const cow_CountedHld& other)
    {
        ++*other.m_counter;
        DropReference();
        m_counter = other.m_counter;
        m_referent = other.m_referent;
        return *this;
    }

    cow_CountedHld& operator=(T* p)
    {
        if (Exclusive()) {
            DeleteReferent();
        } else {
            int32_t* fresh;
            try {
                fresh = NewCounter();  // before the shared count changes
            } catch (...) {
                cow_Destroy(p);  // the handle was given p: it must not leak
                throw;
            }
            --*m_counter;
            m_counter = fresh;
        }
        m_referent = p;
        return *this;
    }

    ~cow_CountedHld() { DropReference(); }

    T* GetPtr() const { return m_referent; }
    const T& GetRef() const { return *m_referent; }
    bool Exclusive() const { return *m_counter == 1; }

    /// Number of handles sharing the object (diagnostics and tests).
    int32_t UseCount() const { return *m_counter; }

protected:
    void Delete()
    {
        cow_Destroy(m_referent);
        m_referent = nullptr;
        mem_Free(m_counter);
        m_counter = nullptr;
    }

    void DeleteReferent() { cow_Destroy(m_referent); }

    void DropReference()
    {
        if (--*m_counter == 0)
            Delete();
    }

    static int32_t* AdoptingCounter(T* p)
    {
        try {
            return NewCounter();
        } catch (...) {
            cow_Destroy(p);
            throw;
        }
    }

    static int32_t* NewCounter()
    {
        int32_t* cell = static_cast<int32_t*>(mem_OperatorNewTinyThrow(sizeof(int32_t)));
        *cell = 1;
        return cell;
    }

    int32_t* m_counter;
    T* m_referent;
};

/// A counted handle with copy-on-write: Get() makes a private copy when the object is shared.
template <class T, class Policy = cow_Direct<T>>
class cow_COW : public cow_CountedHld<T> {
    using Base = cow_CountedHld<T>;

public:
    explicit cow_COW(T* p = nullptr) : Base(p) {}

    /// Always copies: the handle owns a private copy of `value`.
    explicit cow_COW(const T& value) : Base(nullptr) { this->m_referent = Policy::Copy(value); }

    cow_COW(const cow_COW& other) : Base(other) {}
    cow_COW& operator=(const cow_COW& other)
    {
        Base::operator=(other);
        return *this;
    }
    cow_COW& operator=(T* p)
    {
        Base::operator=(p);
        return *this;
    }

    const T& ConstGet() const { return *this->m_referent; }

    /// The object made private first. The copy is taken before any count changes, so a
    /// failing copy leaves this handle and all its sharers exactly as they were.
    T& Get()
    {
        if (*this->m_counter == 1)
            return *this->m_referent;
        T* copy = Policy::Copy(*this->m_referent);
        if (*this->m_counter == 1) {
            this->DeleteReferent();
        } else {
            int32_t* fresh;
            try {
                fresh = Base::NewCounter();
            } catch (...) {
                cow_Destroy(copy);
                throw;
            }
            --*this->m_counter;
            this->m_counter = fresh;
        }
        this->m_referent = copy;
        return *copy;
    }

    bool HasValue() const { return this->m_referent != nullptr; }
};

#endif

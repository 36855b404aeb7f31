/// @class thr_AtomicType
/// thr_AtomicType<T>: a value with a mutex of its own. Assignment stores the value without taking
/// the mutex (a single aligned store is atomic on the machines the library runs on); callers that
/// read-modify-write take Mutex() around it.
/// Thread rule: stores and reads are plain, unlocked accesses (whole on x86-64, but not atomic to
/// the compiler or the thread sanitizer): a read-modify-write, and a read that must see a finished
/// update, take Mutex().
#ifndef THR_ATOMICTYPE_H
#define THR_ATOMICTYPE_H

#include <cstdint>

#include "thr/thr_Mutex.h"

template <class T>
class thr_AtomicType {
public:
    thr_AtomicType() : m_mutex(0), m_value() {}
    explicit thr_AtomicType(T value) : m_mutex(0), m_value(value) {}
    /// A copy gets a fresh, unheld mutex.
    thr_AtomicType(const thr_AtomicType& other) : m_mutex(0), m_value(other.m_value) {}

    thr_AtomicType& operator=(T value)
    {
        m_value = value;
        return *this;
    }
    thr_AtomicType& operator=(const thr_AtomicType& other)
    {
        m_value = other.m_value;
        return *this;
    }

    operator T() const { return m_value; }
    thr_Mutex& Mutex() { return m_mutex; }

private:
    thr_Mutex m_mutex;
    T m_value;
};

typedef thr_AtomicType<int> thr_AtomicInt;
typedef thr_AtomicType<double> thr_AtomicDouble;
typedef thr_AtomicType<uint64_t> thr_AtomicUInt64;

#endif

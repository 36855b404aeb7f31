/// @class cow_IntrusiveCountedBase
/// Base for objects that carry their own counter (the counter's layout belongs to its owner).
/// Thread rule: one object, one thread at a time (the counter's owner says how the counter
/// itself may be shared).
#ifndef COW_INTRUSIVECOUNTEDBASE_H
#define COW_INTRUSIVECOUNTEDBASE_H

#include "zul_BasicExport.h"

struct cow_Counter;

class ZUL_BASIC_API cow_IntrusiveCountedBase {
public:
    cow_IntrusiveCountedBase() : m_counter(nullptr) {}

    /// Stores the counter. Replacing a counter already set by a different one writes
    /// "ERROR: Resetting counter on cow_IntrusiveCountedBase" to standard error and replaces it
    /// all the same: the warning is not fatal.
    void SetCounter(cow_Counter* counter);
    cow_Counter* GetCounter() const { return m_counter; }

private:
    cow_Counter* m_counter;
};

#endif

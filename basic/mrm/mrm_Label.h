/// @class mrm_Label
/// mrm_Label: the name under which the memory manager keeps a pool.
/// Thread rule: the name is a cow_String: labels that share it (copies) are used by one thread at a
/// time.
#ifndef MRM_LABEL_H
#define MRM_LABEL_H

#include "cow/cow_String.h"

class mrm_Label {
public:
    mrm_Label() {}
    mrm_Label(const char* name) : m_name(name) {}
    mrm_Label(const cow_String& name) : m_name(name) {}

    const cow_String& GetName() const { return m_name; }

    bool operator==(const mrm_Label& o) const { return m_name == o.m_name; }
    bool operator!=(const mrm_Label& o) const { return !(m_name == o.m_name); }

private:
    cow_String m_name;
};

#endif

/// @class cls_Uid
/// cls_Uid: the identity that the persistence layer gives an object (a 64-bit value; 0 is the
/// null identity of an object that has none yet).
/// Thread rule: a plain value; copies are independent.
#ifndef CLS_UID_H
#define CLS_UID_H

#include <cstdint>

class cls_Uid {
public:
    cls_Uid() : m_Value(0) {}
    explicit cls_Uid(uint64_t value) : m_Value(value) {}

    uint64_t Value() const { return m_Value; }
    bool IsNull() const { return m_Value == 0; }

    bool operator==(const cls_Uid& o) const { return m_Value == o.m_Value; }
    bool operator!=(const cls_Uid& o) const { return m_Value != o.m_Value; }

private:
    uint64_t m_Value;
};

#endif

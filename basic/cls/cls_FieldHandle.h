/// @class cls_FieldHandle
/// cls_FieldHandle: names one persistent field of a class (its field id within the class and its
/// key, for example "m_Value"), and the kinds of value a field holds.
///
/// Field ids are small non-negative numbers, unique within one class (a derived class numbers its
/// own fields after those of its bases). The key text is not copied: handles are made from
/// string literals.
///
/// Thread rule: handles are constants; any thread.
#ifndef CLS_FIELDHANDLE_H
#define CLS_FIELDHANDLE_H

#include <cstdint>

/// The kind of value a persistent field holds.
enum cls_AttributeType {
    cls_AttrInt = 1,     ///< signed 32-bit
    cls_AttrUInt = 2,    ///< unsigned 32-bit
    cls_AttrFloat = 3,   ///< 32-bit float
    cls_AttrDouble = 4,  ///< 64-bit float
    cls_AttrString = 5,  ///< cow_String
    cls_AttrUid = 6,     ///< cls_Uid
    cls_AttrObject = 7,  ///< a nested persistent object
};

/// Whether a persistent field holds one value or a collection of them.
enum cls_CollectionType {
    cls_CollNone = 0,   ///< a single value
    cls_CollArray = 1,  ///< an array of values
    cls_CollList = 2,   ///< a list of values
};

class cls_FieldHandle {
public:
    cls_FieldHandle(int32_t id, const char* name) : m_Id(id), m_Name(name) {}

    int32_t Id() const { return m_Id; }
    const char* Name() const { return m_Name; }

private:
    int32_t m_Id;
    const char* m_Name;
};

#endif

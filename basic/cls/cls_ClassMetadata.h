/// @class cls_ClassMetadata
/// cls_ClassMetadata: the description of one version of one persistent class.
///
/// It holds the class name, the class id (1 is the root of the hierarchy), the base class id, the
/// version, the function that builds an object from a read visitor, an optional destructor
/// function for copy-on-write objects, the table extent quantum (4 unless set) and the attributes
/// (one record per persistent field, ordered by field id). The adders return the metadata so that
/// calls chain:
///
/// @code
///   registrar.CreateClassMD("my_Class", id, 2, &Build, baseId)
///       .AddDtor(&Destroy)
///       .AddAttribute(s_fieldA, cls_AttrInt, 0, cls_CollNone);
/// @endcode
///
/// A class id equal to its base class id is a definition error that cannot be recovered from: the
/// constructor prints a three-line message to the standard error stream and aborts the process.
///
/// The base class cannot write or delete an object of a class it does not know: its DBWrite and
/// Delete do nothing. cls_TypedClassMetadata<T, Root> knows T and does both; objects travel as
/// void* made from a Root* (the class's persistent root, e.g. nex_Exception), so that a caller
/// holding the void* can convert it back to Root* whatever the class.
///
/// Heap objects (allocated through the memory layer); shared through cls_ClassMetadataHld.
///
/// Thread rule: made and completed (the adders) on one thread, during registration; afterwards the
/// const members may be read by several threads at once. Holders that share one metadata carry a
/// plain count: copy and drop them on one thread at a time.
#ifndef CLS_CLASSMETADATA_H
#define CLS_CLASSMETADATA_H

#include <cstdint>

#include "cls/cls_FieldHandle.h"
#include "cow/cow_Btree.h"
#include "cow/cow_COW.h"
#include "cow/cow_String.h"
#include "mem/mem_AllocationOperators.h"
#include "zul_BasicExport.h"

class cls_ReadVisitor;
class cls_WriteVisitor;

/// The object kind that destructor functions receive.
typedef cow_COW<int, cow_Direct<int>> cls_CowObject;
typedef void* (*cls_CtorFunction)(cls_ReadVisitor&);
typedef void (*cls_DtorFunction)(cls_CowObject*);

/// One persistent field of a class.
struct cls_AttributeRecord {
    int32_t m_FieldId;
    cow_String m_Name;
    cls_AttributeType m_Type;
    unsigned m_Parameter;
    cls_CollectionType m_Collection;
};

class ZUL_BASIC_API cls_ClassMetadata : public mem_AllocationOperators {
public:
    /// The table extent quantum of a class that sets none.
    enum { DefaultTableExtentQuantum = 4 };

    /// Aborts the process when classId == baseClassId (see above).
    cls_ClassMetadata(const cow_String& name, unsigned classId, int version, cls_CtorFunction ctor,
                      unsigned baseClassId);
    virtual ~cls_ClassMetadata();

    /// Writes the persistent fields of the object (a root pointer of this class).
    virtual void DBWrite(const void* object, const cls_WriteVisitor& writer) const;
    /// Destroys an object of this class (a root pointer).
    virtual void Delete(void* object) const;
    /// Calls the destructor function on the object (nothing when there is none).
    virtual void DeleteCow(cls_CowObject* object) const;
    /// Calls the constructor function; null when the class has none (an abstract class).
    virtual void* Ctor(const cls_ReadVisitor& reader) const;

    cls_ClassMetadata& AddDtor(cls_DtorFunction dtor);
    cls_ClassMetadata& AddTableExtentQuantum(int quantum);
    /// One record per field id: a second record for the same field id is ignored.
    cls_ClassMetadata& AddAttribute(const cls_FieldHandle& field, cls_AttributeType type, unsigned parameter,
                                    cls_CollectionType collection);

    /// The largest field id among the attributes; -1 when there are none.
    int MaxFieldID() const;

    const cow_String& GetName() const { return m_Name; }
    unsigned GetClassID() const { return m_ClassId; }
    unsigned GetBaseClassID() const { return m_BaseClassId; }
    int GetVersion() const { return m_Version; }
    int GetTableExtentQuantum() const { return m_TableExtentQuantum; }
    cls_CtorFunction GetCtor() const { return m_Ctor; }
    cls_DtorFunction GetDtor() const { return m_Dtor; }
    bool HasDtor() const { return m_Dtor != nullptr; }
    const cow_Btree<int, cls_AttributeRecord>& GetAttributes() const { return m_Attributes; }
    /// The record of a field id, or null.
    const cls_AttributeRecord* FindAttribute(int fieldId) const;

    cls_ClassMetadata(const cls_ClassMetadata&) = delete;
    cls_ClassMetadata& operator=(const cls_ClassMetadata&) = delete;

private:
    cow_String m_Name;
    unsigned m_ClassId;
    unsigned m_BaseClassId;
    cls_CtorFunction m_Ctor;
    cls_DtorFunction m_Dtor;
    int m_TableExtentQuantum;
    int m_Version;
    cow_Btree<int, cls_AttributeRecord> m_Attributes;
};

/// Metadata that knows its class T; objects are passed as void* made from a Root*.
template <class T, class Root = T>
class cls_TypedClassMetadata : public cls_ClassMetadata {
public:
    using cls_ClassMetadata::cls_ClassMetadata;

    void DBWrite(const void* object, const cls_WriteVisitor& writer) const override
    {
        static_cast<const T*>(static_cast<const Root*>(object))->DBWrite(writer);
    }
    void Delete(void* object) const override { delete static_cast<T*>(static_cast<Root*>(object)); }

    /// A constructor function for a concrete T (one with a constructor from const cls_ReadVisitor&).
    static void* Construct(cls_ReadVisitor& reader) { return static_cast<Root*>(new T(reader)); }
};

/// A counted holder of one metadata (its count cell from the tiny allocator, starting at 1).
typedef cow_CountedHld<cls_ClassMetadata> cls_ClassMetadataHld;

#endif

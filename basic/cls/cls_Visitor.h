/// @file
/// cls_WriteVisitor / cls_ReadVisitor: how a persistent object writes its fields and reads them
/// back, one field at a time under the field's handle.
///
/// A class writes its fields in DBWrite(const cls_WriteVisitor&) const, base class fields first,
/// and reads them in the same order in its constructor from a const cls_ReadVisitor&. A reader
/// checks that each field it is asked for is the one that comes next in the data (same field id,
/// same kind of value) and raises cls_BadDataException otherwise, so a reader never takes one
/// field's bytes for another's.
///
/// Nested objects are written with WriteObject (class id and the object as its registered root
/// pointer) and come back from ReadObject as a new heap object of the class that was written,
/// built through the class registry.
///
/// Failures of persistence: cls_BadDataException (data that does not match what the reader
/// expects) and cls_UnknownClassException (a class id, or version, that the registrar does not
/// know, or a class that cannot be built because it is abstract).
///
/// Thread rule: the implementations' (cls_BinVisitor.h): one visitor, one thread at a time.
#ifndef CLS_VISITOR_H
#define CLS_VISITOR_H

#include <cstdint>

#include "cls/cls_FieldHandle.h"
#include "cls/cls_Uid.h"
#include "cow/cow_String.h"
#include "nex/nex_Exception.h"
#include "zul_BasicExport.h"

/// How a persistent object writes its fields (see cls_Visitor.h).
class ZUL_BASIC_API cls_WriteVisitor {
public:
    virtual ~cls_WriteVisitor();

    virtual void WriteInt(const cls_FieldHandle& field, int32_t value) const = 0;
    virtual void WriteUInt(const cls_FieldHandle& field, uint32_t value) const = 0;
    virtual void WriteFloat(const cls_FieldHandle& field, float value) const = 0;
    virtual void WriteDouble(const cls_FieldHandle& field, double value) const = 0;
    virtual void WriteString(const cls_FieldHandle& field, const cow_String& value) const = 0;
    virtual void WriteUid(const cls_FieldHandle& field, const cls_Uid& value) const = 0;
    /// A nested object of the registered class classId (object is its root pointer, see
    /// cls_TypedClassMetadata).
    virtual void WriteObject(const cls_FieldHandle& field, unsigned classId, const void* object) const = 0;
};

/// How a persistent object reads its fields back (see cls_Visitor.h).
class ZUL_BASIC_API cls_ReadVisitor {
public:
    virtual ~cls_ReadVisitor();

    virtual int32_t ReadInt(const cls_FieldHandle& field) const = 0;
    virtual uint32_t ReadUInt(const cls_FieldHandle& field) const = 0;
    virtual float ReadFloat(const cls_FieldHandle& field) const = 0;
    virtual double ReadDouble(const cls_FieldHandle& field) const = 0;
    virtual cow_String ReadString(const cls_FieldHandle& field) const = 0;
    virtual cls_Uid ReadUid(const cls_FieldHandle& field) const = 0;
    /// A new heap object (as its class's root pointer); the caller owns it.
    virtual void* ReadObject(const cls_FieldHandle& field) const = 0;
    /// The version of the class whose fields are being read (what the writer had registered).
    virtual int Version() const = 0;
};

/// Persistent data that does not fit what the reader expects.
class ZUL_BASIC_API cls_BadDataException : public nex_TextException {
    NEX_EXCEPTION_CLASS(cls_BadDataException, 0x230001u)
public:
    explicit cls_BadDataException(const atr_String& text) : nex_TextException(text) {}
    explicit cls_BadDataException(const cls_ReadVisitor& reader) : nex_TextException(reader) {}
};

/// A class that the registrar does not know, or cannot build.
class ZUL_BASIC_API cls_UnknownClassException : public nex_TextException {
    NEX_EXCEPTION_CLASS(cls_UnknownClassException, 0x230002u)
public:
    explicit cls_UnknownClassException(const atr_String& text) : nex_TextException(text) {}
    explicit cls_UnknownClassException(const cls_ReadVisitor& reader) : nex_TextException(reader) {}
};

#endif

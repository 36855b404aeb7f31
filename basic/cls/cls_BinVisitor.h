/// @file
/// cls_BinWriteVisitor / cls_BinReadVisitor: persistent objects on the library's binary streams
/// (utl_BinOStream / utl_BinIStream, little-endian, no padding).
///
/// Layout of one object:
/// @code{.unparsed}
///   class id (uint32), version (int32), its fields in the order the class writes them,
///   end mark (int32 -1)
/// @endcode
/// and of one field:
/// @code{.unparsed}
///   field id (int32), value kind (uint8, a cls_AttributeType), the value: int32, uint32, float
///   (4 bytes), double (8 bytes), string (int32 length and bytes), uid (uint64) or a nested object.
/// @endcode
///
/// The writer takes the version from the registrar's latest metadata of the class; the reader
/// builds the object through the registrar's metadata of the (id, version) it finds, and checks
/// each field against the handle the class asks for and the end mark after the last one. Data
/// that does not fit raises cls_BadDataException (the half-built object is destroyed), an unknown
/// class or version, or a class without a constructor function, cls_UnknownClassException; end of
/// data raises the stream's utl_BinStreamEOF.
///
/// Thread rule: one visitor with its stream, one thread at a time. Visitors on streams of their own
/// may run on several threads at once while no thread changes the registrar: they only look
/// classes up (ClassIsPresent, ConstGet, GetClassMetadata).
#ifndef CLS_BINVISITOR_H
#define CLS_BINVISITOR_H

#include "cls/cls_ClassRegistrar.h"
#include "cls/cls_Visitor.h"
#include "utl/utl_BinStream.h"
#include "zul_BasicExport.h"

/// Writes persistent objects to a binary stream (cls_BinVisitor.h gives the layout).
class ZUL_BASIC_API cls_BinWriteVisitor : public cls_WriteVisitor {
public:
    /// Neither the stream nor the registrar is owned.
    cls_BinWriteVisitor(utl_BinOStream& stream, const cls_ClassRegistrar& registrar);

    /// Writes one object of a registered class (object is its root pointer).
    void WriteObject(unsigned classId, const void* object) const;

    void WriteInt(const cls_FieldHandle& field, int32_t value) const override;
    void WriteUInt(const cls_FieldHandle& field, uint32_t value) const override;
    void WriteFloat(const cls_FieldHandle& field, float value) const override;
    void WriteDouble(const cls_FieldHandle& field, double value) const override;
    void WriteString(const cls_FieldHandle& field, const cow_String& value) const override;
    void WriteUid(const cls_FieldHandle& field, const cls_Uid& value) const override;
    void WriteObject(const cls_FieldHandle& field, unsigned classId, const void* object) const override;

private:
    void FieldHeader(const cls_FieldHandle& field, cls_AttributeType type) const;

    utl_BinOStream& m_Stream;
    const cls_ClassRegistrar& m_Registrar;
};

/// Reads persistent objects back from a binary stream (cls_BinVisitor.h gives the layout).
class ZUL_BASIC_API cls_BinReadVisitor : public cls_ReadVisitor {
public:
    /// Neither the stream nor the registrar is owned.
    cls_BinReadVisitor(const utl_BinIStream& stream, const cls_ClassRegistrar& registrar);

    /// Reads one object: a new heap object of the class written (its root pointer); the caller
    /// owns it and may destroy it with the metadata's Delete.
    void* ReadObject() const;

    int32_t ReadInt(const cls_FieldHandle& field) const override;
    uint32_t ReadUInt(const cls_FieldHandle& field) const override;
    float ReadFloat(const cls_FieldHandle& field) const override;
    double ReadDouble(const cls_FieldHandle& field) const override;
    cow_String ReadString(const cls_FieldHandle& field) const override;
    cls_Uid ReadUid(const cls_FieldHandle& field) const override;
    void* ReadObject(const cls_FieldHandle& field) const override;
    int Version() const override { return m_Version; }

private:
    void ExpectField(const cls_FieldHandle& field, cls_AttributeType type) const;

    const utl_BinIStream& m_Stream;
    const cls_ClassRegistrar& m_Registrar;
    /// The object being read (nested reads save and restore them).
    mutable const cls_ClassMetadata* m_Class;
    mutable int m_Version;
};

#endif

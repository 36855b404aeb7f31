#include "cls/cls_BinVisitor.h"

#include "atr/atr_translate.h"

namespace {

const int32_t kEndMark = -1;

const char* ClassName(const cls_ClassMetadata* metadata)
{
    return metadata ? metadata->GetName().c_str() : "";
}

}  // namespace

cls_WriteVisitor::~cls_WriteVisitor() {}
cls_ReadVisitor::~cls_ReadVisitor() {}

cls_BinWriteVisitor::cls_BinWriteVisitor(utl_BinOStream& stream, const cls_ClassRegistrar& registrar)
    : m_Stream(stream), m_Registrar(registrar)
{
}

void cls_BinWriteVisitor::WriteObject(unsigned classId, const void* object) const
{
    if (!m_Registrar.ClassIsPresent(classId))
        NEX_RAISE(cls_UnknownClassException,
                  atr_translate("Persistent class %u is not registered").Arg(classId).Result());
    const cls_ClassMetadata& metadata = m_Registrar.ConstGet(classId);
    m_Stream.WriteUInt(classId);
    m_Stream.WriteInt(metadata.GetVersion());
    metadata.DBWrite(object, *this);
    m_Stream.WriteInt(kEndMark);
}

void cls_BinWriteVisitor::FieldHeader(const cls_FieldHandle& field, cls_AttributeType type) const
{
    m_Stream.WriteInt(field.Id());
    m_Stream.WriteUchar(static_cast<unsigned char>(type));
}

void cls_BinWriteVisitor::WriteInt(const cls_FieldHandle& field, int32_t value) const
{
    FieldHeader(field, cls_AttrInt);
    m_Stream.WriteInt(value);
}

void cls_BinWriteVisitor::WriteUInt(const cls_FieldHandle& field, uint32_t value) const
{
    FieldHeader(field, cls_AttrUInt);
    m_Stream.WriteUInt(value);
}

void cls_BinWriteVisitor::WriteFloat(const cls_FieldHandle& field, float value) const
{
    FieldHeader(field, cls_AttrFloat);
    m_Stream.WriteFloatArray(&value, 1);
}

void cls_BinWriteVisitor::WriteDouble(const cls_FieldHandle& field, double value) const
{
    FieldHeader(field, cls_AttrDouble);
    m_Stream.WriteDoubleArray(&value, 1);
}

void cls_BinWriteVisitor::WriteString(const cls_FieldHandle& field, const cow_String& value) const
{
    FieldHeader(field, cls_AttrString);
    m_Stream.WriteString(value);
}

void cls_BinWriteVisitor::WriteUid(const cls_FieldHandle& field, const cls_Uid& value) const
{
    FieldHeader(field, cls_AttrUid);
    m_Stream.WriteUInt64(value.Value());
}

void cls_BinWriteVisitor::WriteObject(const cls_FieldHandle& field, unsigned classId, const void* object) const
{
    FieldHeader(field, cls_AttrObject);
    WriteObject(classId, object);
}

cls_BinReadVisitor::cls_BinReadVisitor(const utl_BinIStream& stream, const cls_ClassRegistrar& registrar)
    : m_Stream(stream), m_Registrar(registrar), m_Class(nullptr), m_Version(-1)
{
}

void* cls_BinReadVisitor::ReadObject() const
{
    const unsigned classId = m_Stream.ReadUInt();
    const int version = m_Stream.ReadInt();
    const cls_ClassMetadata& metadata = m_Registrar.GetClassMetadata(classId, version);
    if (metadata.GetClassID() != classId || metadata.GetVersion() != version)
        NEX_RAISE(cls_UnknownClassException,
                  atr_translate("Persistent class %u version %d is not registered").Arg(classId).Arg(version).Result());
    if (!metadata.GetCtor())
        NEX_RAISE(cls_UnknownClassException,
                  atr_translate("Persistent class %s cannot be built").Arg(metadata.GetName()).Result());

    // The fields read from here on belong to this object; a nested read restores the outer one.
    struct Scope {
        const cls_ClassMetadata*& cls;
        int& ver;
        const cls_ClassMetadata* savedClass;
        int savedVersion;
        ~Scope()
        {
            cls = savedClass;
            ver = savedVersion;
        }
    } scope{m_Class, m_Version, m_Class, m_Version};
    m_Class = &metadata;
    m_Version = version;

    void* object = metadata.Ctor(*this);
    int32_t end;
    try {
        end = m_Stream.ReadInt();
    } catch (...) {
        metadata.Delete(object);
        throw;
    }
    if (end != kEndMark) {
        metadata.Delete(object);
        NEX_RAISE(cls_BadDataException, atr_translate("Persistent data of class %s continues after its last field")
                                            .Arg(metadata.GetName())
                                            .Result());
    }
    return object;
}

void cls_BinReadVisitor::ExpectField(const cls_FieldHandle& field, cls_AttributeType type) const
{
    const int32_t id = m_Stream.ReadInt();
    if (id != field.Id())
        NEX_RAISE(cls_BadDataException,
                  atr_translate("Persistent data of class %s: field %s (id %d) expected, field id %d found")
                      .Arg(ClassName(m_Class))
                      .Arg(field.Name())
                      .Arg(static_cast<int>(field.Id()))
                      .Arg(static_cast<int>(id))
                      .Result());
    const int kind = m_Stream.ReadUchar();
    if (kind != type)
        NEX_RAISE(cls_BadDataException,
                  atr_translate("Persistent data of class %s: field %s holds value kind %d, not %d")
                      .Arg(ClassName(m_Class))
                      .Arg(field.Name())
                      .Arg(kind)
                      .Arg(static_cast<int>(type))
                      .Result());
}

int32_t cls_BinReadVisitor::ReadInt(const cls_FieldHandle& field) const
{
    ExpectField(field, cls_AttrInt);
    return m_Stream.ReadInt();
}

uint32_t cls_BinReadVisitor::ReadUInt(const cls_FieldHandle& field) const
{
    ExpectField(field, cls_AttrUInt);
    return m_Stream.ReadUInt();
}

float cls_BinReadVisitor::ReadFloat(const cls_FieldHandle& field) const
{
    ExpectField(field, cls_AttrFloat);
    float value = 0;
    m_Stream.ReadFloatArray(&value, 1);
    return value;
}

double cls_BinReadVisitor::ReadDouble(const cls_FieldHandle& field) const
{
    ExpectField(field, cls_AttrDouble);
    double value = 0;
    m_Stream.ReadDoubleArray(&value, 1);
    return value;
}

cow_String cls_BinReadVisitor::ReadString(const cls_FieldHandle& field) const
{
    ExpectField(field, cls_AttrString);
    return m_Stream.ReadString();
}

cls_Uid cls_BinReadVisitor::ReadUid(const cls_FieldHandle& field) const
{
    ExpectField(field, cls_AttrUid);
    return cls_Uid(m_Stream.ReadUInt64());
}

void* cls_BinReadVisitor::ReadObject(const cls_FieldHandle& field) const
{
    ExpectField(field, cls_AttrObject);
    return ReadObject();
}

#include "cls/cls_ClassMetadata.h"

#include <cstdio>
#include <cstdlib>

#include "cls/cls_Visitor.h"

cls_ClassMetadata::cls_ClassMetadata(const cow_String& name, unsigned classId, int version, cls_CtorFunction ctor,
                                     unsigned baseClassId)
    : m_Name(name), m_ClassId(classId), m_BaseClassId(baseClassId), m_Ctor(ctor), m_Dtor(nullptr),
      m_TableExtentQuantum(DefaultTableExtentQuantum), m_Version(version)
{
    if (classId == baseClassId) {
        // A class that is its own base would send every hierarchy walk round in circles.
        std::fprintf(stderr, "QRB metadat for class: %s\n", m_Name.c_str());
        std::fprintf(stderr, "  Is incorrectly defined.  The base class ID is\n");
        std::fprintf(stderr, "  the same as the class ID.  Please correct this.\n");
        std::fflush(stderr);
        std::abort();
    }
}

cls_ClassMetadata::~cls_ClassMetadata() {}

void cls_ClassMetadata::DBWrite(const void*, const cls_WriteVisitor&) const {}

void cls_ClassMetadata::Delete(void*) const {}

void cls_ClassMetadata::DeleteCow(cls_CowObject* object) const
{
    if (m_Dtor)
        m_Dtor(object);
}

void* cls_ClassMetadata::Ctor(const cls_ReadVisitor& reader) const
{
    // Constructor functions take the reader by plain reference; reading moves only the reader's
    // own position, which its const operations already do.
    return m_Ctor ? m_Ctor(const_cast<cls_ReadVisitor&>(reader)) : nullptr;
}

cls_ClassMetadata& cls_ClassMetadata::AddDtor(cls_DtorFunction dtor)
{
    m_Dtor = dtor;
    return *this;
}

cls_ClassMetadata& cls_ClassMetadata::AddTableExtentQuantum(int quantum)
{
    m_TableExtentQuantum = quantum;
    return *this;
}

cls_ClassMetadata& cls_ClassMetadata::AddAttribute(const cls_FieldHandle& field, cls_AttributeType type,
                                                   unsigned parameter, cls_CollectionType collection)
{
    const cls_AttributeRecord record = {field.Id(), cow_String(field.Name()), type, parameter, collection};
    m_Attributes.InsertUnlessMember(field.Id(), record);
    return *this;
}

int cls_ClassMetadata::MaxFieldID() const
{
    int result = -1;
    cow_BtreeIterator<int, cls_AttributeRecord> it(m_Attributes);
    for (it.First(); it.NotDone(); it.Next())
        if (it.Key() > result)
            result = it.Key();
    return result;
}

const cls_AttributeRecord* cls_ClassMetadata::FindAttribute(int fieldId) const
{
    const auto* node = m_Attributes.ConstFind(fieldId);
    return node ? &node->value : nullptr;
}

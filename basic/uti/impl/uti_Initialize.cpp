#include "uti/uti_Initialize.h"

#include "cls/cls_MetadataRegistrar.h"
#include "cls/cls_Visitor.h"
#include "nex/nex_TypeTable.h"
#include "typ/typ_Module.h"
#include "uti/impl/uti_PersistentFields.h"
#include "uti/uti_CoordCont3D.h"
#include "uti/uti_FileUtils.h"
#include "uti/uti_Spawn.h"

namespace {

int g_useCount = 0;

// Slot 2 of the architecture-compatibility table. The module's classes (the coordinates among
// them) and their metadata come with the modules that build them.
const typ_Entry kUtiTypes[] = {
    {0, typ_none, "uti"},
};

// Metadata of the module's persistent classes (version 1).
void RegisterPreCheckFileException(cls_ClassRegistrar& registrar)
{
    typedef cls_TypedClassMetadata<uti_PreCheckFileException, nex_Exception> Metadata;
    registrar
        .AddClassMD(new Metadata("uti_PreCheckFileException", uti_PreCheckFileException::TypeId(), 1,
                                 &Metadata::Construct, nex_TextException::TypeId()))
        .AddAttribute(cls_FieldHandle(0, "m_Value"), cls_AttrString, 0, cls_CollNone)
        .AddAttribute(uti_PreCheckFileException::ReasonField(), cls_AttrInt, 0, cls_CollNone);
}

// The command exceptions of process spawning: the call's name and error, or the message.
template <class T>
cls_ClassMetadata& AddCommandException(cls_ClassRegistrar& registrar, const char* name, unsigned baseId)
{
    typedef cls_TypedClassMetadata<T, nex_Exception> Metadata;
    return registrar.AddClassMD(new Metadata(name, T::TypeId(), 1, &Metadata::Construct, baseId));
}

void RegisterIOErrorException(cls_ClassRegistrar& registrar)
{
    AddCommandException<uti_IOErrorException>(registrar, "uti_IOErrorException", nex_CommandException::TypeId())
        .AddAttribute(uti_fields::Call, cls_AttrString, 0, cls_CollNone)
        .AddAttribute(uti_fields::Error, cls_AttrInt, 0, cls_CollNone);
}

void RegisterCmdFailedException(cls_ClassRegistrar& registrar)
{
    AddCommandException<uti_CmdFailedException>(registrar, "uti_CmdFailedException", nex_CommandException::TypeId())
        .AddAttribute(uti_fields::Message, cls_AttrString, 0, cls_CollNone);
}

void RegisterInterruptedException(cls_ClassRegistrar& registrar)
{
    AddCommandException<uti_InterruptedException>(registrar, "uti_InterruptedException", nex_CommandException::TypeId())
        .AddAttribute(uti_fields::Message, cls_AttrString, 0, cls_CollNone);
}

void RegisterCommandNotFoundException(cls_ClassRegistrar& registrar)
{
    AddCommandException<uti_CommandNotFoundException>(registrar, "uti_CommandNotFoundException", uti_CmdFailedException::TypeId())
        .AddAttribute(uti_fields::Message, cls_AttrString, 0, cls_CollNone)
        .AddAttribute(uti_fields::Command, cls_AttrString, 0, cls_CollNone);
}

// The coordinates: a point of three floats, and a container written as its count and points.
void RegisterCoord3D(cls_ClassRegistrar& registrar)
{
    typedef cls_TypedClassMetadata<uti_Coord3D, uti_Coord3D> Metadata;
    registrar.AddClassMD(new Metadata("uti_Coord3D", uti_Coord3D::TypeId(), 1, &Metadata::Construct, 1u))
        .AddAttribute(uti_fields::X, cls_AttrFloat, 0, cls_CollNone)
        .AddAttribute(uti_fields::Y, cls_AttrFloat, 0, cls_CollNone)
        .AddAttribute(uti_fields::Z, cls_AttrFloat, 0, cls_CollNone);
}

void RegisterCoordCont3D(cls_ClassRegistrar& registrar)
{
    typedef cls_TypedClassMetadata<uti_CoordCont3D, uti_CoordCont3D> Metadata;
    registrar.AddClassMD(new Metadata("uti_CoordCont3D", uti_CoordCont3D::TypeId(), 1, &Metadata::Construct, 1u))
        .AddAttribute(uti_fields::NumCoords, cls_AttrInt, 0, cls_CollNone)
        .AddAttribute(uti_fields::Coords, cls_AttrFloat, 0, cls_CollArray);
}

void StartUp()
{
    typ_ArchCompTable::InsertEntry(2, typ_ArchCompEntry(kUtiTypes, sizeof(kUtiTypes) / sizeof(kUtiTypes[0])));

    cls_MetadataRegistrar& registrar = cls_MetadataRegistrar::Instance();
    registrar.initClassMetadata(&RegisterPreCheckFileException, cls_RegisterThird);
    registrar.initClassMetadata(&RegisterIOErrorException, cls_RegisterThird);
    registrar.initClassMetadata(&RegisterCmdFailedException, cls_RegisterThird);
    registrar.initClassMetadata(&RegisterInterruptedException, cls_RegisterThird);
    registrar.initClassMetadata(&RegisterCommandNotFoundException, cls_RegisterThird);
    registrar.initClassMetadata(&RegisterCoord3D, cls_RegisterThird | cls_RegisterSecond);
    registrar.initClassMetadata(&RegisterCoordCont3D, cls_RegisterPrimary | cls_RegisterThird | cls_RegisterSecond);
}

}  // namespace


void uti_initialize(int& count)
{
    typ_InitializeModule("uti", g_useCount, count, &StartUp);
}

void uti_finalize(int& count)
{
    typ_FinalizeModule("uti", g_useCount, count, nullptr);
}

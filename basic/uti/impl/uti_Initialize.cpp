#include "uti/uti_Initialize.h"

#include "cls/cls_MetadataRegistrar.h"
#include "cls/cls_Visitor.h"
#include "nex/nex_TypeTable.h"
#include "typ/typ_Module.h"
#include "uti/uti_FileUtils.h"

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

void StartUp()
{
    typ_ArchCompTable::InsertEntry(2, typ_ArchCompEntry(kUtiTypes, sizeof(kUtiTypes) / sizeof(kUtiTypes[0])));

    cls_MetadataRegistrar& registrar = cls_MetadataRegistrar::Instance();
    // The command exceptions of process spawning (uti_IOErrorException, uti_CmdFailedException,
    // uti_InterruptedException) register here, with cls_RegisterThird, once they exist.
    registrar.initClassMetadata(&RegisterPreCheckFileException, cls_RegisterThird);

    // COORDINATES: the module's registrations end with the two coordinate classes, in this order:
    //   registrar.initClassMetadata(<uti_Coord3D's registration>, cls_RegisterThird | cls_RegisterSecond);  // 6
    //   registrar.initClassMetadata(<uti_CoordCont3D's registration>,
    //                               cls_RegisterPrimary | cls_RegisterThird | cls_RegisterSecond);   // 7
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

#include "cls/cls_Initialize.h"

#include "cls/cls_MetadataRegistrar.h"
#include "cls/cls_Visitor.h"
#include "nex/nex_TypeTable.h"
#include "typ/typ_Module.h"

namespace {

int g_useCount = 0;

// The module's type list (slot 35), by class number.
const typ_Entry kClsTypes[] = {
    {0, typ_none, "cls"},
    {1, 0x1F0002u, "cls_BadDataException"},
    {1, 0x1F0002u, "cls_UnknownClassException"},
};

// The persistence failures are persistent themselves, like every exception of the library
// (version 1, based on nex_TextException, travelling as nex_Exception pointers).
const cls_FieldHandle kValue(0, "m_Value");

template <class T>
void RegisterException(cls_ClassRegistrar& registrar, const char* name)
{
    typedef cls_TypedClassMetadata<T, nex_Exception> Metadata;
    registrar.AddClassMD(new Metadata(name, T::TypeId(), 1, &Metadata::Construct, nex_TextException::TypeId()))
        .AddAttribute(kValue, cls_AttrString, 0, cls_CollNone);
}

void RegisterBadData(cls_ClassRegistrar& registrar)
{
    RegisterException<cls_BadDataException>(registrar, "cls_BadDataException");
}

void RegisterUnknownClass(cls_ClassRegistrar& registrar)
{
    RegisterException<cls_UnknownClassException>(registrar, "cls_UnknownClassException");
}

void StartUp()
{
    typ_ArchCompTable::InsertEntry(35, typ_ArchCompEntry(kClsTypes, sizeof(kClsTypes) / sizeof(kClsTypes[0])));
    cls_MetadataRegistrar& registrar = cls_MetadataRegistrar::Instance();
    registrar.initClassMetadata(&RegisterBadData, cls_RegisterThird);
    registrar.initClassMetadata(&RegisterUnknownClass, cls_RegisterThird);
}

// The registry's clean-ups: the three lookup hooks, then the process's registrars with every
// metadata that only they still hold.
void TearDown()
{
    cls_ClassRegistrar::SetIdLookupHook(nullptr);
    cls_ClassRegistrar::SetVersionLookupHook(nullptr);
    cls_ClassRegistrar::SetNameLookupHook(nullptr);
    cls_MetadataRegistrar::Finalize();
}

}  // namespace


void cls_initialize(int& count)
{
    typ_InitializeModule("cls", g_useCount, count, &StartUp);
}

void cls_finalize(int& count)
{
    typ_FinalizeModule("cls", g_useCount, count, &TearDown);
}

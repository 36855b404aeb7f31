#include "nex/nex_Initialize.h"

#include "cls/cls_MetadataRegistrar.h"
#include "nex/impl/nex_PersistentFields.h"
#include "nex/nex_OutOfMemoryException.h"
#include "nex/nex_TypeTable.h"
#include "typ/typ_Module.h"

namespace {

int g_useCount = 0;

// Slot 31 of the architecture-compatibility table, by class number.
const typ_Entry kNexTypes[] = {
    {0, typ_none, "nex"},
    {1, typ_obj, "nex_Exception"},
    {1, 0x1F0001u, "nex_TextException"},
    {1, 0x1F0001u, "nex_CommandException"},
    {1, 0x1F0001u, "nex_AssertException"},
    {1, 0x1F0001u, "nex_BadCastException"},
    {1, 0x1F0001u, "nex_ExitException"},
    {1, 0x1F0001u, "nex_InvalidObjException"},
    {1, 0x1F0001u, "nex_SystemErrorException"},
    {1, 0x1F0001u, "nex_OutOfMemoryException"},
};

// Class metadata: class id = type id, version 1; objects travel as nex_Exception pointers.
const int kVersion = 1;

template <class T>
cls_ClassMetadata& AddConcrete(cls_ClassRegistrar& registrar, const char* name, unsigned baseId)
{
    typedef cls_TypedClassMetadata<T, nex_Exception> Metadata;
    return registrar.AddClassMD(new Metadata(name, T::TypeId(), kVersion, &Metadata::Construct, baseId));
}

template <class T>
cls_ClassMetadata& AddAbstract(cls_ClassRegistrar& registrar, const char* name, unsigned baseId)
{
    typedef cls_TypedClassMetadata<T, nex_Exception> Metadata;
    return registrar.AddClassMD(new Metadata(name, T::TypeId(), kVersion, nullptr, baseId));
}

const unsigned kRoot = 1u;
const unsigned kBase = 0x1F0001u;

void RegisterException(cls_ClassRegistrar& r)
{
    AddAbstract<nex_Exception>(r, "nex_Exception", kRoot);
}
// The classes whose one field is the text m_Value.
template <class T>
void AddTextClass(cls_ClassRegistrar& r, const char* name)
{
    AddConcrete<T>(r, name, kBase).AddAttribute(nex_fields::Value, cls_AttrString, 0, cls_CollNone);
}

void RegisterTextException(cls_ClassRegistrar& r)
{
    AddTextClass<nex_TextException>(r, "nex_TextException");
}
void RegisterCommandException(cls_ClassRegistrar& r)
{
    AddAbstract<nex_CommandException>(r, "nex_CommandException", kBase);
}
void RegisterAssertException(cls_ClassRegistrar& r)
{
    AddTextClass<nex_AssertException>(r, "nex_AssertException");
}
void RegisterBadCastException(cls_ClassRegistrar& r)
{
    AddTextClass<nex_BadCastException>(r, "nex_BadCastException");
}
void RegisterExitException(cls_ClassRegistrar& r)
{
    AddConcrete<nex_ExitException>(r, "nex_ExitException", kBase)
        .AddAttribute(nex_fields::ExitMsg, cls_AttrString, 0, cls_CollNone)
        .AddAttribute(nex_fields::ExitErr, cls_AttrInt, 0, cls_CollNone);
}
void RegisterInvalidObjException(cls_ClassRegistrar& r)
{
    AddTextClass<nex_InvalidObjException>(r, "nex_InvalidObjException");
}
void RegisterSystemErrorException(cls_ClassRegistrar& r)
{
    AddConcrete<nex_SystemErrorException>(r, "nex_SystemErrorException", kBase)
        .AddAttribute(nex_fields::NativeErrorCode, cls_AttrUInt, 0, cls_CollNone)
        .AddAttribute(nex_fields::CRTErrorCode, cls_AttrUInt, 0, cls_CollNone);
}
void RegisterOutOfMemoryException(cls_ClassRegistrar& r)
{
    AddConcrete<nex_OutOfMemoryException>(r, "nex_OutOfMemoryException", kBase)
        .AddAttribute(nex_fields::Msg, cls_AttrString, 0, cls_CollNone)
        .AddAttribute(nex_fields::Err, cls_AttrInt, 0, cls_CollNone)
        .AddAttribute(nex_fields::Uid, cls_AttrUid, 0, cls_CollNone);
}

// In class-number order.
const cls_RegistrationFunction kRegistrations[] = {
    &RegisterException,          &RegisterTextException,      &RegisterCommandException,
    &RegisterAssertException,    &RegisterBadCastException,   &RegisterExitException,
    &RegisterInvalidObjException, &RegisterSystemErrorException, &RegisterOutOfMemoryException,
};

void StartUp()
{
    typ_ArchCompTable::InsertEntry(31, typ_ArchCompEntry(kNexTypes, sizeof(kNexTypes) / sizeof(kNexTypes[0])));
    cls_MetadataRegistrar& registrar = cls_MetadataRegistrar::Instance();
    for (cls_RegistrationFunction fn : kRegistrations)
        registrar.initClassMetadata(fn, cls_RegisterThird);
    nex_OutOfMemoryException::BuildMessages();
}

void TearDown()
{
    nex_OutOfMemoryException::FreeMessages();
}

}  // namespace


void nex_initialize(int& count)
{
    typ_InitializeModule("nex", g_useCount, count, &StartUp);
}

void nex_finalize(int& count)
{
    typ_FinalizeModule("nex", g_useCount, count, &TearDown);
}

#include "cls/cls_MetadataRegistrar.h"

namespace {
cls_MetadataRegistrar* g_instance = nullptr;
}

cls_MetadataRegistrar::cls_MetadataRegistrar() {}

cls_MetadataRegistrar::~cls_MetadataRegistrar() {}

void cls_MetadataRegistrar::initClassMetadata(cls_RegistrationFunction fn, unsigned flags)
{
    if (flags & cls_RegisterPrimary) {
        m_ListA.Append(fn);
        fn(m_Primary);
    }
    if (flags & cls_RegisterThird)
        fn(m_Third);
    if (flags & cls_RegisterSecond) {
        m_ListB.Append(fn);
        fn(m_Second);
    }
}

void cls_MetadataRegistrar::initMetadata(cls_ClassRegistrar* registrar, unsigned flags) const
{
    if (flags & cls_RegisterPrimary)
        for (int i = 0; i < m_ListA.Count(); ++i)
            m_ListA[i](*registrar);
    if (flags & cls_RegisterSecond)
        for (int i = 0; i < m_ListB.Count(); ++i)
            m_ListB[i](*registrar);
}

cls_MetadataRegistrar& cls_MetadataRegistrar::Instance()
{
    if (!g_instance)
        g_instance = new cls_MetadataRegistrar();
    return *g_instance;
}

void cls_MetadataRegistrar::Finalize()
{
    cls_MetadataRegistrar* instance = g_instance;
    g_instance = nullptr;
    delete instance;
}

bool cls_MetadataRegistrar::Exists()
{
    return g_instance != nullptr;
}

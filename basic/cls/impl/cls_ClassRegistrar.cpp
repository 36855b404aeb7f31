#include "cls/cls_ClassRegistrar.h"

#include <cstdio>
#include <cstdlib>

namespace {

cls_IdLookupHook g_idHook = nullptr;
cls_VersionLookupHook g_versionHook = nullptr;
cls_NameLookupHook g_nameHook = nullptr;

cls_ClassMetadata* NewDefaultMetadata()
{
    return new cls_ClassMetadata(cow_String(), cls_ClassRegistrar::UnknownId, -1, nullptr, 1u);
}

template <class K>
cow_1DArray<cls_ClassMetadataHld> HolderList(const cow_Btree<K, cls_ClassMetadataHld>& map)
{
    cow_1DArray<cls_ClassMetadataHld> list;
    cow_BtreeIterator<K, cls_ClassMetadataHld> it(map);
    int i = 0;
    for (it.First(); it.NotDone(); it.Next())
        list.Get(i++) = it.Value();
    return list;
}

}  // namespace

cls_ClassRegistrar::cls_ClassRegistrar()
    : m_Default(NewDefaultMetadata()), m_DefaultHistory(NewDefaultMetadata()), m_UnknownId(UnknownId)
{
}

cls_ClassRegistrar::~cls_ClassRegistrar() {}

cls_ClassMetadata& cls_ClassRegistrar::CreateClassMD(const cow_String& name, unsigned classId, int version,
                                                     cls_CtorFunction ctor, unsigned baseClassId)
{
    return Register(new cls_ClassMetadata(name, classId, version, ctor, baseClassId));
}

cls_ClassMetadata& cls_ClassRegistrar::AddClassMD(cls_ClassMetadata* metadata)
{
    return Register(metadata);
}

cls_ClassMetadata& cls_ClassRegistrar::Register(cls_ClassMetadata* metadata)
{
    const cls_ClassMetadataHld holder(metadata);  // owns it from here on, also when dropped
    const unsigned id = metadata->GetClassID();
    const int version = metadata->GetVersion();
    const cls_ClassVersionKey key = {id, version};
    const cls_ClassIdKey idKey = {id};

    // The maps change on working copies (sharing their nodes) that replace them together at the
    // end, so that a failed allocation leaves the registrar as it was.
    cow_Btree<cls_ClassVersionKey, cls_ClassMetadataHld> history(m_History);
    cow_Btree<cls_ClassIdKey, cls_ClassMetadataHld> current(m_Current);
    cow_Btree<cow_String, unsigned> names(m_Names);

    if (history.IsMember(key)) {
        if (std::getenv("TAVRIN_SITE")) {
            std::fprintf(stderr, "WARNING: Metadata for class %s version %d has been initialized more than once.\n",
                         metadata->GetName().c_str(), version);
            std::fflush(stderr);
        }
    } else {
        history.InsertUnlessMember(key, holder);
    }

    if (const auto* node = current.ConstFind(idKey)) {
        if (version > node->value.GetRef().GetVersion()) {
            current.Remove(idKey);
            current.InsertUnlessMember(idKey, holder);
        }
    } else {
        current.InsertUnlessMember(idKey, holder);
        if (!names.IsMember(metadata->GetName()))
            names.InsertUnlessMember(metadata->GetName(), id);
    }

    m_History.swap(history);
    m_Current.swap(current);
    m_Names.swap(names);

    const auto* kept = m_History.ConstFind(key);
    return kept ? *kept->value.GetPtr() : *m_DefaultHistory.GetPtr();
}

const cls_ClassMetadata* cls_ClassRegistrar::FindCurrent(unsigned id) const
{
    const cls_ClassIdKey key = {id};
    const auto* node = m_Current.ConstFind(key);
    return node ? node->value.GetPtr() : nullptr;
}

unsigned cls_ClassRegistrar::GetClassID(const cow_String& name) const
{
    if (g_nameHook)
        g_nameHook(name);
    const auto* node = m_Names.ConstFind(name);
    return node ? node->value : m_UnknownId;
}

const cls_ClassMetadata& cls_ClassRegistrar::ConstGet(const unsigned& id) const
{
    if (g_idHook)
        g_idHook(id);
    const cls_ClassMetadata* found = FindCurrent(id);
    return found ? *found : m_Default.GetRef();
}

const cls_ClassMetadata& cls_ClassRegistrar::GetClassMetadata(unsigned id, int version) const
{
    if (g_versionHook)
        g_versionHook(id, version);
    const cls_ClassVersionKey key = {id, version};
    const auto* node = m_History.ConstFind(key);
    return node ? node->value.GetRef() : m_DefaultHistory.GetRef();
}

bool cls_ClassRegistrar::ClassIsPresent(const unsigned& id) const
{
    if (g_idHook)
        g_idHook(id);
    return FindCurrent(id) != nullptr;
}

int cls_ClassRegistrar::GetLastClassVersionNumber(const unsigned& id) const
{
    return ConstGet(id).GetVersion();
}

int cls_ClassRegistrar::GetFirstClassVersionNumberGREQ(const unsigned& id, int version) const
{
    return VersionWalk(id, version, true);
}

int cls_ClassRegistrar::GetPreviousClassVersionNumber(const unsigned& id, int version) const
{
    return VersionWalk(id, version, false);
}

int cls_ClassRegistrar::VersionWalk(unsigned id, int version, bool atOrAbove) const
{
    // The whole history in order, no shortcut by key: the nearest qualifying version wins.
    int result = -1;
    bool found = false;
    cow_BtreeIterator<cls_ClassVersionKey, cls_ClassMetadataHld> it(m_History);
    for (it.First(); it.NotDone(); it.Next()) {
        const cls_ClassVersionKey& key = it.Key();
        if (key.m_Id != id || (atOrAbove ? key.m_Version < version : key.m_Version >= version))
            continue;
        if (!found || (atOrAbove ? key.m_Version < result : key.m_Version > result)) {
            result = key.m_Version;
            found = true;
        }
    }
    return result;
}

bool cls_ClassRegistrar::InheritanceCheck(const unsigned& id, const unsigned& baseId) const
{
    if (id == baseId)
        return true;
    unsigned current = id;
    for (int steps = 0; steps <= m_Current.Count(); ++steps) {
        if (!ClassIsPresent(current))
            return false;
        current = ConstGet(current).GetBaseClassID();
        if (current == baseId)
            return true;
    }
    return false;  // the base ids run in a circle
}

bool cls_ClassRegistrar::DeleteCow(unsigned id, cls_CowObject* object) const
{
    unsigned current = id;
    for (int steps = 0; steps <= m_Current.Count() + 1; ++steps) {
        if (current == 1u)
            return false;
        const cls_ClassMetadata& metadata = ConstGet(current);
        if (metadata.HasDtor()) {
            metadata.DeleteCow(object);
            return true;
        }
        current = metadata.GetBaseClassID();
    }
    return false;  // the base ids run in a circle
}

void cls_ClassRegistrar::DeleteClass(const cow_String& name, unsigned id)
{
    if (!m_Names.IsMember(name))
        m_Names.InsertUnlessMember(name, id);
}

cow_1DArray<cls_ClassMetadataHld> cls_ClassRegistrar::GetMDList()
{
    return HolderList(m_Current);
}

cow_1DArray<cls_ClassMetadataHld> cls_ClassRegistrar::GetHistoryMDList()
{
    return HolderList(m_History);
}

cls_IdLookupHook cls_ClassRegistrar::SetIdLookupHook(cls_IdLookupHook hook)
{
    cls_IdLookupHook previous = g_idHook;
    g_idHook = hook;
    return previous;
}

cls_VersionLookupHook cls_ClassRegistrar::SetVersionLookupHook(cls_VersionLookupHook hook)
{
    cls_VersionLookupHook previous = g_versionHook;
    g_versionHook = hook;
    return previous;
}

cls_NameLookupHook cls_ClassRegistrar::SetNameLookupHook(cls_NameLookupHook hook)
{
    cls_NameLookupHook previous = g_nameHook;
    g_nameHook = hook;
    return previous;
}

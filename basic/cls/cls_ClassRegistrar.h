/// @class cls_ClassRegistrar
/// cls_ClassRegistrar: the persistent classes by id, by (id, version) and by name.
///
/// Three maps: the current map (class id -> the class's latest version), the history map
/// ((id, version) -> every version ever registered, ordered by unsigned id then signed version)
/// and the name map (class name -> id). Registration (CreateClassMD, AddClassMD):
///   - history: the first registration of an (id, version) stays; a later one is dropped, with
///     "WARNING: Metadata for class <name> version <v> has been initialized more than once." on
///     the standard error stream when the environment variable TAVRIN_SITE is set;
///   - current: a known id is replaced only by a greater version; a new id is inserted and its
///     name mapped to it unless the name is already taken (a name is never taken over);
///   - the result is the metadata that the history now holds for (id, version), so that chained
///     adders always reach the metadata that is kept.
///
/// Lookups never throw: an unknown id or (id, version) answers the registrar's default metadata
/// (class id 0, base 1, version -1, no constructor), an unknown name the unknown id 0. Callers
/// test with ClassIsPresent. Before each lookup the process-wide hook for its kind (id, id and
/// version, name), when set, is called with the lookup's arguments.
///
/// Walks up the hierarchy (InheritanceCheck, DeleteCow) stop after as many steps as there are
/// classes, so that a cycle among registered base ids ends the walk instead of looping.
///
/// Thread rule: no locking. Registration (CreateClassMD, AddClassMD, DeleteClass) and the hook
/// setters run on one thread, before readers start. After that GetClassID, ConstGet,
/// GetClassMetadata, ClassIsPresent, GetLastClassVersionNumber, InheritanceCheck and DeleteCow may
/// run on several threads at once; the version walks (GetFirstClassVersionNumberGREQ,
/// GetPreviousClassVersionNumber) and the two lists copy counted handles, whose counts are plain
/// integers, and run one at a time.
#ifndef CLS_CLASSREGISTRAR_H
#define CLS_CLASSREGISTRAR_H

#include "cls/cls_ClassMetadata.h"
#include "cow/cow_1DArray.h"
#include "cow/cow_Btree.h"
#include "cow/cow_String.h"
#include "zul_BasicExport.h"

/// Map keys: class ids order as unsigned numbers, then versions as signed numbers.
struct cls_ClassIdKey {
    unsigned m_Id;
};
/// Map key of the history: a class id and a version.
struct cls_ClassVersionKey {
    unsigned m_Id;
    int m_Version;
};

inline int cow_BtreeCompare(const cls_ClassIdKey& sought, const cls_ClassIdKey& key)
{
    return sought.m_Id < key.m_Id ? -1 : (key.m_Id < sought.m_Id ? 1 : 0);
}

inline int cow_BtreeCompare(const cls_ClassVersionKey& sought, const cls_ClassVersionKey& key)
{
    if (sought.m_Id != key.m_Id)
        return sought.m_Id < key.m_Id ? -1 : 1;
    return sought.m_Version < key.m_Version ? -1 : (key.m_Version < sought.m_Version ? 1 : 0);
}

typedef void (*cls_IdLookupHook)(const unsigned& id);
typedef void (*cls_VersionLookupHook)(unsigned id, int version);
typedef void (*cls_NameLookupHook)(const cow_String& name);

class ZUL_BASIC_API cls_ClassRegistrar : public mem_AllocationOperators {
public:
    /// The id that an unknown name answers.
    enum { UnknownId = 0 };

    cls_ClassRegistrar();
    ~cls_ClassRegistrar();

    /// Builds the metadata on the heap and registers it.
    cls_ClassMetadata& CreateClassMD(const cow_String& name, unsigned classId, int version, cls_CtorFunction ctor,
                                     unsigned baseClassId);
    /// Registers metadata made by the caller (with new); the registrar owns it from the call on,
    /// also when it is dropped as a repeated registration.
    cls_ClassMetadata& AddClassMD(cls_ClassMetadata* metadata);

    unsigned GetClassID(const cow_String& name) const;
    /// The latest version of the class.
    const cls_ClassMetadata& ConstGet(const unsigned& id) const;
    const cls_ClassMetadata& GetClassMetadata(unsigned id, int version) const;
    bool ClassIsPresent(const unsigned& id) const;
    int GetLastClassVersionNumber(const unsigned& id) const;
    /// The smallest registered version >= version of the class; -1 when none.
    int GetFirstClassVersionNumberGREQ(const unsigned& id, int version) const;
    /// The largest registered version < version of the class; -1 when none.
    int GetPreviousClassVersionNumber(const unsigned& id, int version) const;
    /// Whether baseId is id or one of its registered ancestors.
    bool InheritanceCheck(const unsigned& id, const unsigned& baseId) const;
    /// Destroys the object with the destructor function of the class or its nearest ancestor that
    /// has one; false (nothing done) for the root id 1 or when no class on the way has one.
    bool DeleteCow(unsigned id, cls_CowObject* object) const;
    /// Maps the name to the id unless the name is already known (old data naming a class that is
    /// gone still resolves).
    void DeleteClass(const cow_String& name, unsigned id);

    /// Holders of the current metadata in ascending class id, and of every version in (id, version)
    /// order; each holder shares its metadata.
    ///@{
    cow_1DArray<cls_ClassMetadataHld> GetMDList();
    cow_1DArray<cls_ClassMetadataHld> GetHistoryMDList();
    ///@}

    /// Number of classes (current map) and of registered versions (history map).
    ///@{
    int ClassCount() const { return m_Current.Count(); }
    int VersionCount() const { return m_History.Count(); }
    ///@}

    /// Installs a process-wide hook (null removes it) and returns the previous one.
    ///@{
    static cls_IdLookupHook SetIdLookupHook(cls_IdLookupHook hook);
    static cls_VersionLookupHook SetVersionLookupHook(cls_VersionLookupHook hook);
    static cls_NameLookupHook SetNameLookupHook(cls_NameLookupHook hook);
    ///@}

    cls_ClassRegistrar(const cls_ClassRegistrar&) = delete;
    cls_ClassRegistrar& operator=(const cls_ClassRegistrar&) = delete;

private:
    cls_ClassMetadata& Register(cls_ClassMetadata* metadata);
    const cls_ClassMetadata* FindCurrent(unsigned id) const;
    /// The smallest version >= version (atOrAbove) or the largest version < version; -1 when none.
    int VersionWalk(unsigned id, int version, bool atOrAbove) const;

    cow_Btree<cls_ClassIdKey, cls_ClassMetadataHld> m_Current;
    cls_ClassMetadataHld m_Default;
    cow_Btree<cls_ClassVersionKey, cls_ClassMetadataHld> m_History;
    cls_ClassMetadataHld m_DefaultHistory;
    cow_Btree<cow_String, unsigned> m_Names;
    unsigned m_UnknownId;
};

#endif

/// @file
/// The library's own run-time type ids and the architecture-compatibility table.
///
/// A type id has the module number in the high 16 bits and the class number in the low 16 bits
/// (the class number has the bits 0xF000 clear). Ids 1-4 are built in: "typ_none", "typ_any",
/// "typ_obj", "typ_ado". Each module registers, at start-up, the list of its classes (kind,
/// parent id, name) in the slot of its module number; lists are indexed by class number.
/// Ids that cannot be resolved answer one of three fixed entries (kind 0, parent 1):
/// "INVALID FACILITY", "MISSING TYPE TABLES" and "INVALID TYPE".
///
/// The table is made by the typ module's start-up and freed by its tear-down.
/// Thread rule: written (InsertEntry, Create, Destroy) only during start-up and tear-down, on one
/// thread; read by any thread in between.
#ifndef NEX_TYPETABLE_H
#define NEX_TYPETABLE_H

#include <cstdint>

#include "zul_BasicExport.h"

/// The built-in type ids.
enum : unsigned {
    typ_none = 1,
    typ_any = 2,
    typ_obj = 3,
    typ_ado = 4,
};

/// Kind of a type that is not compatible with typ_any.
enum : unsigned { typ_KindNotAny = 7 };

/// One class of a module's list: its kind, the type id of its parent and its name.
struct typ_Entry {
    uint32_t kind;
    uint32_t parent;  ///< type id of the parent
    const char* name;
};

/// A module's list of classes, indexed by class number.
struct typ_ArchCompEntry {
    typ_ArchCompEntry() : entries(nullptr), count(0) {}
    typ_ArchCompEntry(const typ_Entry* e, uint32_t n) : entries(e), count(n) {}
    const typ_Entry* entries;  ///< indexed by class number
    uint32_t count;
};

/// The architecture-compatibility table: every module's list of classes, by module number.
class ZUL_BASIC_API typ_ArchCompTable {
public:
    /// The number of module slots.
    enum { TableSize = 1024 };

    /// Stores a module's list in its slot (modules below the table size only).
    static void InsertEntry(unsigned short module, typ_ArchCompEntry entry);
    /// The type's name; one of the built-in or fixed names when it cannot be resolved. Never null.
    static const char* GetName(unsigned id);
    /// Whether `ancestor` is `id` or one of its ancestors (typ_any and typ_obj count as ancestors
    /// of every type whose kind is not 7).
    static bool IsParent(unsigned id, unsigned ancestor);

    /// Start-up and tear-down of the table (the typ module).
    ///@{
    static void Create();
    static void Destroy();
    ///@}
    static bool Exists();
};

/// The target is the actual type or one of its ancestors.
ZUL_BASIC_API bool nex_canDynamicCastPtr(unsigned target, unsigned actual);
/// The same test; instead of answering false it throws nex_BadCastException
/// ("Bad Cast: From `<actual>' To '<target>'.") from file and line.
ZUL_BASIC_API bool nex_canDynamicCastRef(unsigned target, unsigned actual, const char* file, int line);

#endif

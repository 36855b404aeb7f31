#include "nex/nex_TypeTable.h"

#include "atr/atr_translate.h"
#include "mem/mem_Memory.h"
#include "nex/nex_Exception.h"

namespace {

typ_ArchCompEntry* g_table = nullptr;
unsigned g_tableSize = 0;

const typ_Entry kInvalidFacility = {0, typ_none, "INVALID FACILITY"};
const typ_Entry kMissingTables = {0, typ_none, "MISSING TYPE TABLES"};
const typ_Entry kInvalidType = {0, typ_none, "INVALID TYPE"};
const typ_Entry kAnyOrObj = {1, typ_any, nullptr};  // kind and parent of ids 2 and 3

const char* const kBuiltInNames[] = {nullptr, "typ_none", "typ_any", "typ_obj", "typ_ado"};

// A malformed table (a parent cycle) must not hang a walk.
const int kMaxDepth = 4096;

const typ_Entry& Resolve(unsigned id)
{
    if (id == typ_any || id == typ_obj)
        return kAnyOrObj;
    const unsigned module = id >> 16;
    const unsigned cls = id & 0xFFFFu;
    if (id < 0x10000u || module >= g_tableSize)
        return kInvalidFacility;
    const typ_ArchCompEntry& slot = g_table[module];
    if (!slot.entries)
        return kMissingTables;
    if (cls >= slot.count || (cls & 0xF000u))
        return kInvalidType;
    return slot.entries[cls];
}

bool WalkUp(unsigned id, unsigned ancestor)
{
    for (int depth = 0; depth < kMaxDepth; ++depth) {
        if (id == typ_obj)
            return false;
        id = Resolve(id).parent;
        if (id == ancestor)
            return true;
        if (id == typ_none || id == typ_any)
            return false;
    }
    return false;
}

}  // namespace

void typ_ArchCompTable::Create()
{
    if (g_table)
        return;
    typ_ArchCompEntry* table = static_cast<typ_ArchCompEntry*>(mem_OperatorNewThrow(sizeof(typ_ArchCompEntry) * TableSize));
    for (unsigned i = 0; i < TableSize; ++i)
        new (table + i) typ_ArchCompEntry();
    g_table = table;
    g_tableSize = TableSize;
}

void typ_ArchCompTable::Destroy()
{
    mem_Free(g_table);
    g_table = nullptr;
    g_tableSize = 0;
}

bool typ_ArchCompTable::Exists()
{
    return g_table != nullptr;
}

void typ_ArchCompTable::InsertEntry(unsigned short module, typ_ArchCompEntry entry)
{
    if (module >= g_tableSize)
        return;
    typ_ArchCompEntry& slot = g_table[module];
    if (&slot != &entry)
        slot = entry;
}

const char* typ_ArchCompTable::GetName(unsigned id)
{
    if (id >= typ_none && id <= typ_ado)
        return kBuiltInNames[id];
    const char* name = Resolve(id).name;
    return name ? name : "INVALID TYPE";
}

bool typ_ArchCompTable::IsParent(unsigned id, unsigned ancestor)
{
    if (id == ancestor)
        return true;
    if (id != typ_any && id != typ_obj && Resolve(id).kind == typ_KindNotAny) {
        if (ancestor == typ_any)
            return false;
        return WalkUp(id, ancestor);
    }
    if (ancestor == typ_any || ancestor == typ_obj)
        return true;
    return WalkUp(id, ancestor);
}

bool nex_canDynamicCastPtr(unsigned target, unsigned actual)
{
    return actual == target || typ_ArchCompTable::IsParent(actual, target);
}

bool nex_canDynamicCastRef(unsigned target, unsigned actual, const char* file, int line)
{
    if (nex_canDynamicCastPtr(target, actual))
        return true;
    const atr_String text = atr_translate("Bad Cast: From `%s' To '%s'.")
                                .Arg(typ_ArchCompTable::GetName(actual))
                                .Arg(typ_ArchCompTable::GetName(target))
                                .Result();
    nex_Raise<nex_BadCastException>(file, line, text);
}

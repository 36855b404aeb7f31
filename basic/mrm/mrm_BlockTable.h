/// @class mrm_BlockTable
/// mrm_BlockTable: the one table of large blocks behind all large-block pools of a manager, so
/// that block ids are unique in the process and a block can move between pools.
///
/// Each declared block has a record in a slot; slots freed by released blocks are reused (last
/// freed, first reused) before the slot array grows. Ids rise by one per declaration, skip 0 and
/// ids still present when they wrap around, and are never handed out twice while present. An
/// ordered map (a sorted array of id and slot) finds the slot of an id.
///
/// The table keeps the process-wide tallies; the pools change records and tallies (the table's
/// and their own together) through their block operations.
///
/// Thread rule: the memory manager takes no locks: the manager, its block table and every pool are
/// used by one thread at a time between them (pool operations change the shared table).
#ifndef MRM_BLOCKTABLE_H
#define MRM_BLOCKTABLE_H

#include <cstdint>

#include "mem/mem_AllocationOperators.h"
#include "mrm/mrm_Consumption.h"
#include "zul_BasicExport.h"

typedef uint32_t mrm_MemBlockID;

class mrm_LargeBlockPool;

/// The record of one declared block.
struct mrm_BlockRecord : public mem_AllocationOperatorsTiny {
    mrm_MemBlockID id;
    mrm_LargeBlockPool* pool;    ///< the pool charged for the block
    void* data;                  ///< null while the block holds no memory
    int32_t size;                ///< a multiple of 65536
    bool resident;               ///< memory allocated (or, for a reserve, counted as if it were)
    bool pinned;                 ///< in use: GetPointer answers its memory only now
    mrm_ReleaseType releaseType; ///< given at the last Unpin; none at creation and on every Pin
    bool released;
};

class ZUL_BASIC_API mrm_BlockTable : public mem_AllocationOperators {
public:
    mrm_BlockTable();
    /// Frees whatever records and memory are left.
    ~mrm_BlockTable();
    mrm_BlockTable(const mrm_BlockTable&) = delete;
    mrm_BlockTable& operator=(const mrm_BlockTable&) = delete;

    /// The record of an id, or null.
    const mrm_BlockRecord* Find(mrm_MemBlockID id) const;
    const mrm_Consumption& GetConsumption() const { return m_tally; }
    mrm_MemBlockID GetLastId() const { return m_lastId; }
    /// The next declaration takes the first free id after `id` (for restarting a numbering).
    void SetLastId(mrm_MemBlockID id) { m_lastId = id; }
    int GetBlockCount() const { return m_mapCount; }
    int GetSlotCount() const { return m_slotCount; }
    /// The slot holding an id, or -1.
    int GetSlotOf(mrm_MemBlockID id) const;
    /// The record in a slot; null for a free slot or a slot number out of range.
    const mrm_BlockRecord* GetSlot(int slot) const;

private:
    friend class mrm_LargeBlockPool;

    struct Entry {
        mrm_MemBlockID id;
        int32_t slot;
    };

    mrm_BlockRecord* FindRecord(mrm_MemBlockID id) const;
    /// A new record (not resident, not pinned, release type none) for `pool`, all or nothing.
    /// The declared tallies are the caller's.
    mrm_BlockRecord* Declare(mrm_LargeBlockPool* pool, int32_t size);
    /// Takes the record out of the map and its slot and deletes it; its memory is the caller's.
    /// Never fails.
    void Remove(mrm_BlockRecord* record);
    /// Index of the first map entry whose id is not below `id`.
    int LowerBound(mrm_MemBlockID id) const;
    mrm_MemBlockID NextFreeId() const;

    Entry* m_map;
    int32_t m_mapCount;
    int32_t m_mapCapacity;
    mrm_BlockRecord** m_slots;
    int32_t m_slotCount;
    int32_t m_slotCapacity;
    int32_t* m_freeSlots;  ///< a stack, as large as the slot array, so pushing never allocates
    int32_t m_freeCount;
    mrm_MemBlockID m_lastId;
    mrm_Consumption m_tally;
};

#endif

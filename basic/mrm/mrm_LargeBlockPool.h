/// @class mrm_LargeBlockPool
/// mrm_LargeBlockPool: hands out large blocks, named by id, and keeps the tallies of what is
/// charged to it.
///
/// A block is declared without memory, acquired (memory allocated and pinned), unpinned (memory
/// kept, marked releasable with a release type), pinned again, and released. Sizes are rounded
/// up to multiples of 64 KiB. All blocks live in the block table the pool was made with; an
/// operation on a block updates the table's tallies and those of the pool charged for the block.
///
/// Block operations answer true when they fail (an unknown id, or a block not in the state the
/// operation needs) and then change nothing. Capacities are recorded and reported, not enforced.
///
/// Thread rule: the memory manager takes no locks: the manager, its block table and every pool are
/// used by one thread at a time between them (pool operations change the shared table).
#ifndef MRM_LARGEBLOCKPOOL_H
#define MRM_LARGEBLOCKPOOL_H

#include "mrm/mrm_BlockTable.h"
#include "mrm/mrm_Capacity.h"
#include "mrm/mrm_Consumption.h"
#include "mrm/mrm_Label.h"
#include "zul_BasicExport.h"

class ZUL_BASIC_API mrm_LargeBlockPool : public mem_AllocationOperators {
public:
    /// The block granularity (64 KiB) and the largest block size.
    enum { BlockSize = 65536, MaxBlockSize = 0x7FFF0000 };

    mrm_LargeBlockPool(mrm_BlockTable& table, const mrm_Label& label, const mrm_Capacity& capacity,
                       int altNumber = 0);
    /// Releases every block still charged to the pool.
    ~mrm_LargeBlockPool();
    mrm_LargeBlockPool(const mrm_LargeBlockPool&) = delete;
    mrm_LargeBlockPool& operator=(const mrm_LargeBlockPool&) = delete;

    /// The next multiple of 65536 at or above n (for 0 <= n <= MaxBlockSize).
    static int RoundToBlock(int n) { return static_cast<int>((static_cast<unsigned>(n) + 65535u) & 0xFFFF0000u); }

    /// A new block of RoundToBlock(size) bytes, without memory. A size outside
    /// 0 .. MaxBlockSize raises mrm_Exception.
    mrm_MemBlockID Declare(int size);
    /// Allocates the memory of a declared block and pins it. Fails for a block that already
    /// holds memory. The memory layer raises nex_OutOfMemoryException when it has none left;
    /// the block then stays as it was.
    [[nodiscard]] bool Acquire(mrm_MemBlockID id);
    /// Marks a pinned block releasable; type is mrm_ReleaseType0 or mrm_ReleaseType1.
    bool Unpin(mrm_MemBlockID id, mrm_ReleaseType type);
    /// Pins an unpinned block with memory again.
    [[nodiscard]] bool Pin(mrm_MemBlockID id);
    /// Frees the block's memory (if any) and its record, and sets id to 0.
    bool Release(mrm_MemBlockID& id);
    /// Frees the block's memory and takes it off the tallies, keeping the record (it can be
    /// acquired again).
    bool Discard(mrm_MemBlockID id);
    /// The block's memory while it is pinned, else null (also for an unknown id).
    void* GetPointer(mrm_MemBlockID id) const;
    /// The rounded size; mrm_Exception for an unknown id.
    int GetSize(mrm_MemBlockID id) const;

    /// Moves the charge for a block of `from` to `to` (pools of one block table) and answers
    /// true. An unknown id, a block not charged to `from` or pools of different tables raise
    /// mrm_Exception.
    static bool TransferMemory(mrm_MemBlockID id, mrm_LargeBlockPool& from, mrm_LargeBlockPool& to);

    /// The number given at construction (the manager numbers its pools).
    int GetAltNumber() const { return m_altNumber; }
    const mrm_Label& GetLabel() const { return m_label; }
    const mrm_Capacity& GetCapacity() const { return m_capacity; }
    void SetCapacity(const mrm_Capacity& capacity) { m_capacity = capacity; }
    const mrm_Consumption& GetConsumption() const { return m_tally; }
    const mrm_BlockTable& GetBlockTable() const { return *m_table; }

private:
    friend class mrm_Pool;

    /// Applies a pinned-state change to the table's and the block's pool's tallies.
    void CountPinned(const mrm_BlockRecord& r, mrm_ReleaseType type, int sign) const;
    void CountUnpinned(const mrm_BlockRecord& r, int sign) const;
    void CountDeclared(const mrm_BlockRecord& r, int delta) const;
    /// A reserve block: declared, resident and pinned, without memory of its own.
    mrm_MemBlockID DeclareReserve(int size);
    /// Counts `extra` more bytes pinned on the reserve block and enlarges it by them; false when
    /// the block is gone.
    bool GrowReserve(mrm_MemBlockID id, int extra);
    /// Gives up a reserve block that owns no memory; nothing when id is 0 or unknown. Sets id to 0.
    void FakeRelease(mrm_MemBlockID& id);

    mrm_BlockTable* m_table;
    mrm_Consumption m_tally;
    mrm_Capacity m_capacity;
    mrm_Label m_label;
    int m_altNumber;
};

ZUL_BASIC_API mrm_Consumption mrm_GetConsumption(const mrm_LargeBlockPool& pool);
ZUL_BASIC_API mrm_Capacity mrm_GetCapacity(const mrm_LargeBlockPool& pool);

#endif

/// @class mrm_Pool
/// mrm_Pool: a small-block pool. Its blocks come from the general heap, but it charges a reserve
/// to a large-block pool, its provider, so that all consumption shows in one place.
///
/// Each allocation carries an 8-byte header holding its size. The reserve, a block in the
/// provider that owns no memory, grows in 64 KiB steps to cover the larger of the minimum
/// reservation and the bytes out times the overhead factor, whenever that exceeds what the
/// provider has pinned. Freeing never shrinks the reserve; the pool gives it back when it ends.
/// The pool must end before its provider, and every block must be freed before the pool ends.
///
/// Thread rule: the memory manager takes no locks: the manager, its block table and every pool are
/// used by one thread at a time between them (pool operations change the shared table).
#ifndef MRM_POOL_H
#define MRM_POOL_H

#include <cstdint>

#include "mrm/mrm_Capacity.h"
#include "mrm/mrm_Consumption.h"
#include "mrm/mrm_Label.h"
#include "mrm/mrm_LargeBlockPool.h"
#include "zul_BasicExport.h"

class ZUL_BASIC_API mrm_Pool : public mem_AllocationOperators {
public:
    /// The bytes of the header in front of each allocation.
    enum { HeaderSize = 8 };

    mrm_Pool(mrm_LargeBlockPool& provider, const mrm_Label& label, const mrm_SmallBlockCapacity& capacity);
    ~mrm_Pool();
    mrm_Pool(const mrm_Pool&) = delete;
    mrm_Pool& operator=(const mrm_Pool&) = delete;

    /// At least `size` bytes; a size outside 0..2^31 - 9 raises mrm_Exception, exhaustion
    /// nex_OutOfMemoryException. A failure changes nothing.
    [[nodiscard]] void* Alloc(int64_t size);
    /// Frees a block of this pool; null is ignored.
    void Free(void* p);

    const mrm_LargeBlockPool& ConstGetProvider() const { return *m_provider; }
    const mrm_Label& ConstGetLabel() const { return m_label; }
    const mrm_SmallBlockCapacity& GetCapacity() const { return m_capacity; }
    mrm_SmallBlockConsumption GetConsumption() const;
    /// The reserve block's id in the provider, 0 while there is none.
    mrm_MemBlockID GetReserveId() const { return m_reserveId; }

private:
    mrm_LargeBlockPool* m_provider;
    mrm_Label m_label;
    double m_overheadFactor;
    double m_minReservation;
    double m_outToClient;
    int32_t m_allocations;
    mrm_MemBlockID m_reserveId;
    mrm_SmallBlockCapacity m_capacity;
};

ZUL_BASIC_API mrm_SmallBlockCapacity mrm_GetCapacity(const mrm_Pool& pool);
ZUL_BASIC_API mrm_SmallBlockConsumption mrm_GetConsumption(const mrm_Pool& pool);

#endif

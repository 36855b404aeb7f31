#include "mrm/mrm_LargeBlockPool.h"

#include "atr/atr_translate.h"
#include "mem/mem_Memory.h"
#include "mrm/mrm_Exception.h"

namespace {

atr_String BlockErrorText(const char* what, mrm_MemBlockID id)
{
    return atr_translate("Memory manager: %1$s (block %2$s)").Arg(what).Arg(atr_String(unsigned(id))).Result();
}

}  // namespace

mrm_LargeBlockPool::mrm_LargeBlockPool(mrm_BlockTable& table, const mrm_Label& label, const mrm_Capacity& capacity,
                                       int altNumber)
    : m_table(&table), m_capacity(capacity), m_label(label), m_altNumber(altNumber)
{
}

mrm_LargeBlockPool::~mrm_LargeBlockPool()
{
    for (int s = 0; s < m_table->GetSlotCount(); ++s) {
        const mrm_BlockRecord* r = m_table->GetSlot(s);
        if (r && r->pool == this) {
            mrm_MemBlockID id = r->id;
            Release(id);
        }
    }
}

void mrm_LargeBlockPool::CountPinned(const mrm_BlockRecord& r, mrm_ReleaseType type, int sign) const
{
    m_table->m_tally.CountPinned(r.size, type, sign);
    r.pool->m_tally.CountPinned(r.size, type, sign);
}

void mrm_LargeBlockPool::CountUnpinned(const mrm_BlockRecord& r, int sign) const
{
    m_table->m_tally.CountUnpinned(r.size, r.releaseType, sign);
    r.pool->m_tally.CountUnpinned(r.size, r.releaseType, sign);
}

void mrm_LargeBlockPool::CountDeclared(const mrm_BlockRecord& r, int delta) const
{
    m_table->m_tally.CountDeclared(delta);
    r.pool->m_tally.CountDeclared(delta);
}

mrm_MemBlockID mrm_LargeBlockPool::Declare(int size)
{
    if (size < 0 || size > MaxBlockSize)
        NEX_RAISE(mrm_Exception, BlockErrorText("block size out of range", mrm_MemBlockID(size)));
    const mrm_BlockRecord* r = m_table->Declare(this, RoundToBlock(size));
    CountDeclared(*r, 1);
    return r->id;
}

bool mrm_LargeBlockPool::Acquire(mrm_MemBlockID id)
{
    mrm_BlockRecord* r = m_table->FindRecord(id);
    if (!r || r->resident)
        return true;
    void* data = mem_OperatorNewThrowBuiltin(static_cast<size_t>(r->size));
    if (!data)
        return true;
    r->data = data;
    r->resident = true;
    r->pinned = true;
    CountPinned(*r, r->releaseType, +1);
    return false;
}

bool mrm_LargeBlockPool::Unpin(mrm_MemBlockID id, mrm_ReleaseType type)
{
    mrm_BlockRecord* r = m_table->FindRecord(id);
    if (!r || !r->pinned || (type != mrm_ReleaseType0 && type != mrm_ReleaseType1))
        return true;
    r->pinned = false;
    r->releaseType = type;
    CountPinned(*r, type, -1);
    return false;
}

bool mrm_LargeBlockPool::Pin(mrm_MemBlockID id)
{
    mrm_BlockRecord* r = m_table->FindRecord(id);
    if (!r || r->pinned || !r->resident)
        return true;
    r->pinned = true;
    CountPinned(*r, r->releaseType, +1);
    r->releaseType = mrm_ReleaseTypeNone;
    return false;
}

bool mrm_LargeBlockPool::Release(mrm_MemBlockID& id)
{
    mrm_BlockRecord* r = m_table->FindRecord(id);
    if (!r)
        return true;
    if (r->resident) {
        if (!r->pinned) {
            CountPinned(*r, r->releaseType, +1);
            r->releaseType = mrm_ReleaseTypeNone;
            r->pinned = true;
        }
        CountPinned(*r, mrm_ReleaseTypeNone, -1);
        mem_Free(r->data);
    }
    CountDeclared(*r, -1);
    m_table->Remove(r);
    id = 0;
    return false;
}

bool mrm_LargeBlockPool::Discard(mrm_MemBlockID id)
{
    mrm_BlockRecord* r = m_table->FindRecord(id);
    if (!r)
        return true;
    if (r->resident) {
        if (r->pinned)
            CountPinned(*r, mrm_ReleaseTypeNone, -1);
        else
            CountUnpinned(*r, -1);
        mem_Free(r->data);
    }
    r->data = nullptr;
    r->resident = false;
    r->pinned = false;
    r->releaseType = mrm_ReleaseTypeNone;
    return false;
}

void mrm_LargeBlockPool::FakeRelease(mrm_MemBlockID& id)
{
    if (id == 0)
        return;
    mrm_BlockRecord* r = m_table->FindRecord(id);
    if (r) {
        if (r->pinned)
            CountPinned(*r, mrm_ReleaseTypeNone, -1);
        else if (r->resident)
            CountUnpinned(*r, -1);
        CountDeclared(*r, -1);
        m_table->Remove(r);
    }
    id = 0;
}

void* mrm_LargeBlockPool::GetPointer(mrm_MemBlockID id) const
{
    const mrm_BlockRecord* r = m_table->Find(id);
    return r && r->pinned ? r->data : nullptr;
}

int mrm_LargeBlockPool::GetSize(mrm_MemBlockID id) const
{
    const mrm_BlockRecord* r = m_table->Find(id);
    if (!r)
        NEX_RAISE(mrm_Exception, BlockErrorText("unknown block", id));
    return r->size;
}

bool mrm_LargeBlockPool::TransferMemory(mrm_MemBlockID id, mrm_LargeBlockPool& from, mrm_LargeBlockPool& to)
{
    if (from.m_table != to.m_table)
        NEX_RAISE(mrm_Exception, BlockErrorText("pools of different block tables", id));
    mrm_BlockRecord* r = from.m_table->FindRecord(id);
    if (!r)
        NEX_RAISE(mrm_Exception, BlockErrorText("unknown block", id));
    if (r->pool != &from)
        NEX_RAISE(mrm_Exception, BlockErrorText("block not charged to the pool it is moved from", id));
    if (r->pinned) {
        from.m_tally.CountPinned(r->size, mrm_ReleaseTypeNone, -1);
        to.m_tally.CountPinned(r->size, mrm_ReleaseTypeNone, +1);
    } else if (r->resident) {
        from.m_tally.CountUnpinned(r->size, r->releaseType, -1);
        to.m_tally.CountUnpinned(r->size, r->releaseType, +1);
    }
    from.m_tally.CountDeclared(-1);
    to.m_tally.CountDeclared(+1);
    r->pool = &to;
    return true;
}

mrm_MemBlockID mrm_LargeBlockPool::DeclareReserve(int size)
{
    mrm_BlockRecord* r = m_table->Declare(this, size);
    CountDeclared(*r, 1);
    r->resident = true;
    r->pinned = true;
    CountPinned(*r, mrm_ReleaseTypeNone, +1);
    return r->id;
}

bool mrm_LargeBlockPool::GrowReserve(mrm_MemBlockID id, int extra)
{
    mrm_BlockRecord* r = m_table->FindRecord(id);
    if (!r)
        return false;
    m_table->m_tally.CountPinnedBytes(extra);
    r->pool->m_tally.CountPinnedBytes(extra);
    r->size += extra;
    return true;
}

mrm_Consumption mrm_GetConsumption(const mrm_LargeBlockPool& pool)
{
    return pool.GetConsumption();
}

mrm_Capacity mrm_GetCapacity(const mrm_LargeBlockPool& pool)
{
    return pool.GetCapacity();
}

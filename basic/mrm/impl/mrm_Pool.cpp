#include "mrm/mrm_Pool.h"

#include <cmath>
#include <cstring>

#include "atr/atr_translate.h"
#include "mem/mem_Memory.h"
#include "mrm/mrm_Exception.h"

namespace {

atr_String PoolErrorText(const char* what, int64_t value)
{
    return atr_translate("Memory manager: %1$s (%2$s)").Arg(what).Arg(atr_String(double(value))).Result();
}

}  // namespace

mrm_Pool::mrm_Pool(mrm_LargeBlockPool& provider, const mrm_Label& label, const mrm_SmallBlockCapacity& capacity)
    : m_provider(&provider), m_label(label), m_overheadFactor(capacity.GetOverheadFactor()),
      m_minReservation(capacity.GetOutToClientLo()), m_outToClient(0.0), m_allocations(0), m_reserveId(0),
      m_capacity(capacity)
{
}

mrm_Pool::~mrm_Pool()
{
    m_provider->FakeRelease(m_reserveId);
}

void* mrm_Pool::Alloc(int64_t size)
{
    if (size < 0 || size > int64_t(INT32_MAX) - HeaderSize)
        NEX_RAISE(mrm_Exception, PoolErrorText("allocation size out of range", size));

    // What the reserve must cover once this block is out, in whole 64 KiB steps.
    const double out = m_outToClient + double(size);
    double needed = out * m_overheadFactor;
    if (needed < m_minReservation)
        needed = m_minReservation;
    needed = std::ceil(needed / mrm_LargeBlockPool::BlockSize) * mrm_LargeBlockPool::BlockSize;
    const double pinned = m_provider->GetConsumption().GetPinnedBytes();
    const bool hasReserve = m_reserveId != 0 && m_provider->m_table->Find(m_reserveId) != nullptr;
    double grow = needed > pinned ? needed - pinned : 0.0;
    if (grow > 0.0) {
        const double reserveSize = hasReserve ? double(m_provider->GetSize(m_reserveId)) : 0.0;
        if (reserveSize + grow > double(mrm_LargeBlockPool::MaxBlockSize))
            NEX_RAISE(mrm_Exception, PoolErrorText("reserve beyond the largest block", int64_t(reserveSize + grow)));
    }

    char* raw = static_cast<char*>(mem_OperatorNewThrowBuiltin(static_cast<size_t>(size) + HeaderSize));
    if (grow > 0.0) {
        if (hasReserve) {
            m_provider->GrowReserve(m_reserveId, int(grow));
        } else {
            try {
                m_reserveId = m_provider->DeclareReserve(int(grow));
            } catch (...) {
                mem_Free(raw);
                throw;
            }
        }
    }
    const int32_t header = int32_t(size);
    std::memcpy(raw, &header, sizeof header);
    ++m_allocations;
    m_outToClient = out;
    return raw + HeaderSize;
}

void mrm_Pool::Free(void* p)
{
    if (!p)
        return;
    char* raw = static_cast<char*>(p) - HeaderSize;
    int32_t size;
    std::memcpy(&size, raw, sizeof size);
    --m_allocations;
    m_outToClient -= size;
    mem_Free(raw);
}

mrm_SmallBlockConsumption mrm_Pool::GetConsumption() const
{
    const mrm_BlockRecord* reserve = m_reserveId ? m_provider->GetBlockTable().Find(m_reserveId) : nullptr;
    return mrm_SmallBlockConsumption(m_outToClient, m_allocations, reserve ? reserve->size : 0.0);
}

mrm_SmallBlockCapacity mrm_GetCapacity(const mrm_Pool& pool)
{
    return pool.GetCapacity();
}

mrm_SmallBlockConsumption mrm_GetConsumption(const mrm_Pool& pool)
{
    return pool.GetConsumption();
}

#include "mrm/mrm_BlockTable.h"

#include <cstring>

#include "mem/mem_Memory.h"
#include "mem/mem_OutOfMemory.h"

namespace {

// Grows a plain array to `capacity` elements; the old array stays valid when this throws.
template <class T>
void GrowArray(T*& array, int32_t capacity)
{
    const size_t bytes = sizeof(T) * static_cast<size_t>(capacity);
    T* grown = static_cast<T*>(mem_Realloc(array, bytes));
    if (!grown)
        mem_ThrowOutOfMemory(bytes);
    array = grown;
}

int32_t NextCapacity(int32_t capacity)
{
    return capacity < 16 ? 16 : capacity + capacity / 2;
}

}  // namespace

mrm_BlockTable::mrm_BlockTable()
    : m_map(nullptr), m_mapCount(0), m_mapCapacity(0), m_slots(nullptr), m_slotCount(0), m_slotCapacity(0),
      m_freeSlots(nullptr), m_freeCount(0), m_lastId(0)
{
}

mrm_BlockTable::~mrm_BlockTable()
{
    for (int32_t s = 0; s < m_slotCount; ++s) {
        if (m_slots[s]) {
            mem_Free(m_slots[s]->data);
            delete m_slots[s];
        }
    }
    mem_Free(m_map);
    mem_Free(m_slots);
    mem_Free(m_freeSlots);
}

int mrm_BlockTable::LowerBound(mrm_MemBlockID id) const
{
    int lo = 0, hi = m_mapCount;
    while (lo < hi) {
        const int mid = lo + (hi - lo) / 2;
        if (m_map[mid].id < id)
            lo = mid + 1;
        else
            hi = mid;
    }
    return lo;
}

int mrm_BlockTable::GetSlotOf(mrm_MemBlockID id) const
{
    const int i = LowerBound(id);
    return i < m_mapCount && m_map[i].id == id ? m_map[i].slot : -1;
}

mrm_BlockRecord* mrm_BlockTable::FindRecord(mrm_MemBlockID id) const
{
    const int slot = GetSlotOf(id);
    return slot < 0 ? nullptr : m_slots[slot];
}

const mrm_BlockRecord* mrm_BlockTable::Find(mrm_MemBlockID id) const
{
    return FindRecord(id);
}

const mrm_BlockRecord* mrm_BlockTable::GetSlot(int slot) const
{
    return slot >= 0 && slot < m_slotCount ? m_slots[slot] : nullptr;
}

mrm_MemBlockID mrm_BlockTable::NextFreeId() const
{
    mrm_MemBlockID id = m_lastId + 1;
    while (id == 0 || GetSlotOf(id) >= 0)
        ++id;
    return id;
}

mrm_BlockRecord* mrm_BlockTable::Declare(mrm_LargeBlockPool* pool, int32_t size)
{
    const mrm_MemBlockID id = NextFreeId();
    mrm_BlockRecord* record = new mrm_BlockRecord;
    try {
        if (m_mapCount == m_mapCapacity) {
            const int32_t capacity = NextCapacity(m_mapCapacity);
            GrowArray(m_map, capacity);
            m_mapCapacity = capacity;
        }
        if (m_freeCount == 0 && m_slotCount == m_slotCapacity) {
            const int32_t capacity = NextCapacity(m_slotCapacity);
            GrowArray(m_slots, capacity);
            GrowArray(m_freeSlots, capacity);
            m_slotCapacity = capacity;
        }
    } catch (...) {
        delete record;
        throw;
    }
    record->id = id;
    record->pool = pool;
    record->data = nullptr;
    record->size = size;
    record->resident = false;
    record->pinned = false;
    record->releaseType = mrm_ReleaseTypeNone;
    record->released = false;

    const int32_t slot = m_freeCount > 0 ? m_freeSlots[--m_freeCount] : m_slotCount++;
    m_slots[slot] = record;
    const int at = LowerBound(id);
    std::memmove(m_map + at + 1, m_map + at, sizeof(Entry) * static_cast<size_t>(m_mapCount - at));
    m_map[at].id = id;
    m_map[at].slot = slot;
    ++m_mapCount;
    m_lastId = id;
    return record;
}

void mrm_BlockTable::Remove(mrm_BlockRecord* record)
{
    const int at = LowerBound(record->id);
    const int32_t slot = m_map[at].slot;
    std::memmove(m_map + at, m_map + at + 1, sizeof(Entry) * static_cast<size_t>(m_mapCount - at - 1));
    --m_mapCount;
    m_slots[slot] = nullptr;
    m_freeSlots[m_freeCount++] = slot;
    record->released = true;
    delete record;
}

/// @class HashTable
/// HashTable<K, V>: a small, plain (not shared) hash table with separate chaining and a bucket
/// count fixed at construction. Used as HashTable<unsigned int, void*> and
/// HashTable<void*, unsigned int>.
///
/// Every call may pass its own hash function (key, bucket count) -> bucket index and equality
/// function; without them the lower library's HashValue and the key's == are used. Keys are
/// unique: inserting a present key overwrites its value. A new entry goes to the head of its
/// chain. There is no removal of single entries and no rehashing: chains grow without bound.
///
/// Iteration positions are (bucket, place in the chain counted from 1); (0, 0) means none.
/// FirstPosition is the head of the first non-empty bucket; NextPosition walks the chain, then
/// the next non-empty bucket, and answers (0, 0) after the last entry.
/// A table without buckets, or a hash function answering outside 0 .. count-1, raises
/// nex_AssertException rather than touching memory outside the bucket array. So does a call
/// without a hash function for a key type that has no HashValue overload.
/// Thread rule: one table, one thread at a time.
///
/// The class carries no module prefix; it is a container and lives with the containers (cow),
/// as does LongKey (cow/cow_LongKey.h). Entries come from mem_OperatorNewThrow and go back with
/// mem_Free; the bucket array comes from mem_Malloc. A failed Insert (allocation or a throwing
/// key/value copy) leaves the table as it was.
#ifndef COW_HASHTABLE_H
#define COW_HASHTABLE_H

#include <new>
#include <type_traits>
#include <utility>

#include "mem/mem_Memory.h"
#include "mem/mem_OutOfMemory.h"
#include "nex/nex_Exception.h"
#include "omi/omi_HashValue.h"

template <class K, class V>
class HashTable;

/// Whether the lower library has a default hash for K.
template <class K, class = void>
struct HashTableHasDefaultHash : std::false_type {
};
/// True for a K that has a HashValue overload.
template <class K>
struct HashTableHasDefaultHash<K, decltype(void(HashValue(std::declval<const K&>(), 1u)))> : std::true_type {
};

/// An entry of a table: key, value and the next entry of its chain.
template <class K, class V>
class HashTableEntry {
public:
    const K& Key() const { return m_key; }
    const V& Value() const { return m_value; }
    const HashTableEntry* Next() const { return m_next; }

private:
    friend class HashTable<K, V>;
    HashTableEntry(const K& key, const V& value, HashTableEntry* next) : m_key(key), m_value(value), m_next(next) {}

    K m_key;
    V m_value;
    HashTableEntry* m_next;
};

/// An iteration position: (bucket, place in the chain counted from 1); (0, 0) means none.
struct HashTablePosition {
    unsigned int bucket;
    unsigned int place;  ///< from 1; 0 with bucket 0 means "no position"
    bool IsValid() const { return place != 0; }
    bool operator==(const HashTablePosition& o) const { return bucket == o.bucket && place == o.place; }
};

template <class K, class V>
class HashTable {
public:
    typedef int (*HashFn)(const K& key, unsigned int bucketCount);
    typedef bool (*EqualFn)(const K& a, const K& b);
    typedef HashTableEntry<K, V> Entry;

    explicit HashTable(unsigned int bucketCount) : m_buckets(nullptr), m_count(bucketCount)
    {
        m_buckets = static_cast<Entry**>(mem_Malloc(sizeof(Entry*) * (bucketCount ? bucketCount : 1)));
        if (!m_buckets)
            mem_ThrowOutOfMemory(sizeof(Entry*) * bucketCount);
        for (unsigned int b = 0; b < bucketCount; ++b)
            m_buckets[b] = nullptr;
    }

    ~HashTable()
    {
        Clear();
        mem_Free(m_buckets);
    }

    HashTable(const HashTable&) = delete;
    HashTable& operator=(const HashTable&) = delete;

    void Insert(const K& key, const V& value, HashFn hash = nullptr, EqualFn equal = nullptr)
    {
        Entry*& head = m_buckets[Bucket(key, hash)];
        for (Entry* e = head; e; e = e->m_next) {
            if (Same(e->m_key, key, equal)) {
                e->m_value = value;
                return;
            }
        }
        void* raw = mem_OperatorNewThrow(sizeof(Entry));
        try {
            head = ::new (raw) Entry(key, value, head);
        } catch (...) {
            mem_Free(raw);
            throw;
        }
    }

    bool LookUp(const K& key, V& out, HashFn hash = nullptr, EqualFn equal = nullptr) const
    {
        for (const Entry* e = m_buckets[Bucket(key, hash)]; e; e = e->m_next) {
            if (Same(e->m_key, key, equal)) {
                out = e->m_value;
                return true;
            }
        }
        return false;
    }

    void Clear()
    {
        for (unsigned int b = 0; b < m_count; ++b) {
            Entry* e = m_buckets[b];
            while (e) {
                Entry* next = e->m_next;
                e->~Entry();
                mem_Free(e);
                e = next;
            }
            m_buckets[b] = nullptr;
        }
    }

    unsigned int BucketCount() const { return m_count; }

    /// Iteration: bucket by bucket in index order, each chain from its head.
    ///@{
    HashTablePosition FirstPosition() const { return NextNonEmpty(0); }
    HashTablePosition NextPosition(const HashTablePosition& at) const
    {
        if (!at.IsValid() || at.bucket >= m_count)
            return HashTablePosition{0, 0};
        if (EntryAt(at.bucket, at.place + 1))
            return HashTablePosition{at.bucket, at.place + 1};
        return NextNonEmpty(at.bucket + 1);
    }
    ///@}
    /// The entry at a valid position, or null.
    const Entry* EntryAt(const HashTablePosition& at) const
    {
        return at.IsValid() && at.bucket < m_count ? EntryAt(at.bucket, at.place) : nullptr;
    }

private:
    unsigned int Bucket(const K& key, HashFn hash) const
    {
        NEX_ASSERT_AT(m_count > 0, "cow/impl/cow_HashTable");
        const long long index = hash ? hash(key, m_count) : DefaultHash(key);
        NEX_ASSERT_AT(index >= 0 && index < static_cast<long long>(m_count), "cow/impl/cow_HashTable");
        return static_cast<unsigned int>(index);
    }

    long long DefaultHash(const K& key) const
    {
        if constexpr (HashTableHasDefaultHash<K>::value) {
            return static_cast<long long>(HashValue(key, m_count));
        } else {
            const bool hashFunctionGiven = false;
            NEX_ASSERT_AT(hashFunctionGiven, "cow/impl/cow_HashTable");
            return -1;
        }
    }

    static bool Same(const K& a, const K& b, EqualFn equal) { return equal ? equal(a, b) : a == b; }

    const Entry* EntryAt(unsigned int bucket, unsigned int place) const
    {
        const Entry* e = m_buckets[bucket];
        for (unsigned int p = 1; e && p < place; ++p)
            e = e->m_next;
        return place ? e : nullptr;
    }

    HashTablePosition NextNonEmpty(unsigned int from) const
    {
        for (unsigned int b = from; b < m_count; ++b)
            if (m_buckets[b])
                return HashTablePosition{b, 1};
        return HashTablePosition{0, 0};
    }

    Entry** m_buckets;
    unsigned int m_count;
};

#endif

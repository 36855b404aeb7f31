/// @class cow_Map
/// cow_Map<K, V>: the library's associative container, a binary digital search tree.
///
/// Every node holds one entry; the path from the root to a key is chosen by successive bits of the
/// key (bit d at depth d: 0 goes left, 1 goes right). Integer keys use bit (d mod 32), least
/// significant first. String keys take the lowest bit of one character, alternately from the
/// front and the back (depth 0 the first character, 1 the last, 2 the second, 3 the second-to-
/// last, ...), and 0 past the string's length, so strings that share a prefix part early.
///
/// Every link is a copy-on-write handle: copying a map is one increment, and a write copies only
/// the nodes on one root-to-leaf path (path copying). Reads (IsMember, ConstGet, iteration) never
/// copy. A failing write leaves every other sharer of the tree intact.
///
/// Contracts: Get and ConstGet need a present key (test IsMember first); on a missing key their
/// result is not to be used. What they answer then is a default value that belongs to the calling
/// thread, made afresh for every miss (it outlives the call, to the thread's end), or, for
/// ConstGet of a plain value (one copied without side effects), a constant default that is never
/// written: threads that each miss on maps of their own never write the same object. An
/// iterator's Key() and Value() are
/// read only while NotDone() is true.
///
/// Thread rule: the node counts are plain integers: maps that share nodes (a map, its copies and
/// the snapshots their iterators hold) are used by one thread at a time. Maps that share nothing
/// may be used on different threads, misses included.
///
/// Iterators take a snapshot (they hold a copy of the map, so the nodes stay alive):
/// cow_ConstMapIterator walks in tree order (pre-order, left before right);
/// cow_ConstMapSortedIt sorts the snapshot by key with qsort (ascending, or descending on request).
///
/// Instances used by the library: int keys with int, unsigned int, float, double, cow_String and
/// list values; unsigned int keys with int, unsigned int, cow_String, atr_String; cow_String keys
/// with int, unsigned int, float, double, cow_String, atr_String and list values. The instances
/// whose values are cow_FixedArray, omi_BlkBitVect, uti_NumFormat, cls_Uid or cls_xp1DArrayListFloat
/// come with those types.
#ifndef COW_MAP_H
#define COW_MAP_H

#include <cstdlib>
#include <new>
#include <type_traits>

#include "cow/cow_COW.h"
#include "cow/cow_List.h"
#include "cow/cow_String.h"
#include "mem/mem_Memory.h"
#include "mem/mem_OutOfMemory.h"
#include "zul_Compiler.h"

/// Key bit d of each key type.
///@{
inline int cow_MapKeyBit(int key, int d)
{
    return (static_cast<unsigned int>(key) >> (d % 32)) & 1u;
}

inline int cow_MapKeyBit(unsigned int key, int d)
{
    return (key >> (d % 32)) & 1u;
}

inline int cow_MapKeyBit(const atr_StringBase& key, int d)
{
    const int length = key.Length();
    if (d > length)
        return 0;
    const int index = (d % 2 == 0) ? d / 2 : length - 1 - (d - 1) / 2;
    return static_cast<unsigned char>(key.c_str()[index]) & 1u;
}
///@}

/// Three-way key order for the sorted iterator: integers by value, strings byte-wise unsigned.
///@{
inline int cow_MapKeyCompare(int a, int b)
{
    return a < b ? -1 : (a > b ? 1 : 0);
}

inline int cow_MapKeyCompare(unsigned int a, unsigned int b)
{
    return a < b ? -1 : (a > b ? 1 : 0);
}

inline int cow_MapKeyCompare(const atr_StringBase& a, const atr_StringBase& b)
{
    const int c = a.Compare(b);
    return c < 0 ? -1 : (c > 0 ? 1 : 0);
}
///@}

/// A node of the tree: one entry and the links to its two children.
template <class K, class V>
struct cow_MapNode {
    typedef cow_COW<cow_MapNode, cow_Direct<cow_MapNode>> Link;

    cow_MapNode(const K& k, const V& v) : key(k), value(v) {}

    K key;
    V value;
    Link left;
    Link right;
};

template <class K, class V>
class cow_Map {
public:
    typedef cow_MapNode<K, V> Node;
    typedef typename Node::Link Link;

    cow_Map() : m_count(0) {}

    int Count() const { return m_count; }
    bool IsEmpty() const { return m_count == 0; }

    /// Replaces the value of a present key or adds the key; always true.
    bool Insert(const K& key, const V& value)
    {
        Link* link = &m_root;
        for (int d = 0; link->HasValue(); ++d) {
            Node& node = link->Get();
            FetchChildren(node);
            if (node.key == key) {
                node.value = value;
                return true;
            }
            link = cow_MapKeyBit(key, d) ? &node.right : &node.left;
        }
        *link = cow_New<Node>(key, value);
        ++m_count;
        return true;
    }

    /// The value of a present key, for writing: the search path is made private first.
    V& Get(const K& key)
    {
        Link* link = &m_root;
        for (int d = 0; link->HasValue(); ++d) {
            Node& node = link->Get();
            if (node.key == key)
                return node.value;
            link = cow_MapKeyBit(key, d) ? &node.right : &node.left;
        }
        return MissingValue();
    }

    const V& ConstGet(const K& key) const
    {
        const Node* node = Find(key);
        return node ? node->value : ConstMissingValue();
    }

    bool IsMember(const K& key) const { return Find(key) != nullptr; }

    /// Removal moves entries up the tree, so it runs on a copy that replaces this map only when
    /// every step has succeeded: a failure leaves this map and its sharers as they were.
    bool Remove(const K& key)
    {
        if (!IsMember(key))
            return false;
        cow_Map work(*this);
        work.RemoveFound(key);
        m_root = work.m_root;
        m_count = work.m_count;
        return true;
    }

    const Link& Root() const { return m_root; }

private:
    void RemoveFound(const K& key)
    {
        Link* link = &m_root;
        for (int d = 0;; ++d) {
            Node& node = link->Get();
            if (node.key == key)
                break;
            link = cow_MapKeyBit(key, d) ? &node.right : &node.left;
        }
        // Any node of a subtree may stand in for its root: pull entries up to a leaf.
        for (;;) {
            Node& node = link->Get();
            Link* child = node.right.HasValue() ? &node.right : (node.left.HasValue() ? &node.left : nullptr);
            if (!child)
                break;
            const Node& from = child->ConstGet();
            node.key = from.key;
            node.value = from.value;
            link = child;
        }
        *link = static_cast<Node*>(nullptr);
        --m_count;
    }

    /// The next node on a search path is one of these two: its fetch starts while this node's
    /// key is compared (a string key's text is a block of its own).
    static void FetchChildren(const Node& node)
    {
        ZUL_PREFETCH(node.left.GetPtr());
        ZUL_PREFETCH(node.right.GetPtr());
    }

    const Node* Find(const K& key) const
    {
        const Link* link = &m_root;
        for (int d = 0; link->HasValue(); ++d) {
            const Node& node = link->ConstGet();
            FetchChildren(node);
            if (node.key == key)
                return &node;
            link = cow_MapKeyBit(key, d) ? &node.right : &node.left;
        }
        return nullptr;
    }

    /// What Get and ConstGet answer for a missing key (a caller error): a default value, so that
    /// the error reads garbage rather than memory outside the map. It is the calling thread's own
    /// (see mem_ThreadObject), so the reset below never races with another thread.
    ZUL_COLD static V& MissingValue()
    {
        V& value = *static_cast<V*>(mem_ThreadObject(&s_missingTag, &MakeMissing, &DestroyMissing));
        value = V();
        return value;
    }
    /// What ConstGet answers for a missing key: for a plain value one constant, never written,
    /// which threads share safely (and a loop of ConstGet over plain values has no call on its
    /// path); for a value whose copy changes a count, the calling thread's MissingValue.
    static const V& ConstMissingValue()
    {
        if constexpr (std::is_trivially_copyable<V>::value) {
            static const V value = V();
            return value;
        } else {
            return MissingValue();
        }
    }
    static void* MakeMissing() { return cow_New<V>(); }
    static void DestroyMissing(void* value) { cow_Destroy(static_cast<V*>(value)); }
    static char s_missingTag;  ///< names this instance's fallback; never written

    Link m_root;
    int32_t m_count;
};

template <class K, class V>
char cow_Map<K, V>::s_missingTag = 0;

/// Steps through a snapshot of the map's nodes in tree order (pre-order, left before right).
template <class K, class V>
class cow_ConstMapIterator {
public:
    typedef cow_MapNode<K, V> Node;

    explicit cow_ConstMapIterator(const cow_Map<K, V>& map) : m_map(map), m_nodes(nullptr), m_pos(0) {}
    ~cow_ConstMapIterator() { mem_Free(m_nodes); }
    cow_ConstMapIterator(const cow_ConstMapIterator&) = delete;
    cow_ConstMapIterator& operator=(const cow_ConstMapIterator&) = delete;

    /// Takes a fresh snapshot and goes to its first entry.
    void First()
    {
        mem_Free(m_nodes);
        m_nodes = nullptr;
        const size_t slots = static_cast<size_t>(m_map.Count()) + 1;
        m_nodes = static_cast<const Node**>(mem_OperatorNewThrow(sizeof(const Node*) * slots));
        int filled = 0;
        Collect(m_map.Root(), filled);
        m_nodes[filled] = nullptr;
        m_pos = 0;
    }

    bool NotDone() const { return m_nodes && m_nodes[m_pos]; }
    void Next() { ++m_pos; }
    cow_ConstMapIterator& operator++()
    {
        ++m_pos;
        return *this;
    }
    const K& Key() const { return m_nodes[m_pos]->key; }
    const V& Value() const { return m_nodes[m_pos]->value; }

protected:
    void Sort(int (*compare)(const void*, const void*))
    {
        int n = 0;
        while (m_nodes[n])
            ++n;
        std::qsort(m_nodes, static_cast<size_t>(n), sizeof(const Node*), compare);
    }

private:
    void Collect(const typename Node::Link& link, int& filled)
    {
        if (!link.HasValue())
            return;
        const Node& node = link.ConstGet();
        m_nodes[filled++] = &node;
        Collect(node.left, filled);
        Collect(node.right, filled);
    }

    cow_Map<K, V> m_map;  ///< keeps the snapshot's nodes alive
    const Node** m_nodes;
    int m_pos;
};

/// The same snapshot, sorted by key.
template <class K, class V>
class cow_ConstMapSortedIt : public cow_ConstMapIterator<K, V> {
    typedef cow_MapNode<K, V> Node;

public:
    explicit cow_ConstMapSortedIt(const cow_Map<K, V>& map, bool descending = false)
        : cow_ConstMapIterator<K, V>(map), m_compare(descending ? &DescSortCmp : &AscSortCmp)
    {
    }

    void First()
    {
        cow_ConstMapIterator<K, V>::First();
        this->Sort(m_compare);
    }

    static int AscSortCmp(const void* a, const void* b)
    {
        return cow_MapKeyCompare((*static_cast<const Node* const*>(a))->key, (*static_cast<const Node* const*>(b))->key);
    }
    static int DescSortCmp(const void* a, const void* b) { return -AscSortCmp(a, b); }

private:
    int (*m_compare)(const void*, const void*);
};

/// The keys or the values of a map, as lists.
template <class K, class V>
struct cow_MapUtils {
    /// The keys / values in tree order.
    ///@{
    static cow_List<K> cow_Keys(const cow_Map<K, V>& map)
    {
        cow_ConstMapIterator<K, V> it(map);
        return cow_CollectFrom<K>(it, [](const cow_ConstMapIterator<K, V>& i) -> const K& { return i.Key(); });
    }
    static cow_List<V> cow_Values(const cow_Map<K, V>& map)
    {
        cow_ConstMapIterator<K, V> it(map);
        return cow_CollectFrom<V>(it, [](const cow_ConstMapIterator<K, V>& i) -> const V& { return i.Value(); });
    }
    ///@}
};

#endif

/// @class cls_PTrie
/// cls_PTrie<K, V, N>: a crit-bit (Patricia) trie from fixed-width keys to values.
///
/// Keys are N 32-bit words (the library uses K = int, N = 1: the int's bit pattern). Internal
/// nodes hold only the bit they branch on (31 is the most significant); leaves hold a key and a
/// value; a search compares keys only at the one leaf it reaches. Iteration runs in ascending order
/// of the unsigned bit patterns, so negative int keys come after all non-negative ones: 0, 1, ...,
/// 2147483647, -2147483648, ..., -1.
///
/// Looking up a key in an empty trie or a key that is absent: ConstGetPtr answers null and
/// ConstGet raises nex_TextException. A failed insertion (out of memory) changes nothing. An
/// iterator reads the trie in place: the trie must outlive it and not change while it walks, and
/// Key() and Value() are read only while IsDone() is false. cls_PTrieKey::Bit(b) needs 0 <= b < 32.
///
/// Shared tries are held through cow_CountedHld<cls_PTrie<...>> (no copy-on-write: the trie itself
/// cannot be copied). Nodes come from the memory layer through mem_AllocationOperators.
///
/// The library's instances are cls_PTrie<int, V, 1> for V = `cls_ArrayPrimBuffer<int>`, `<float>`,
/// `<double>`, `<bool>`, `<cow_String>` and cls_Uid; those value types come with the persistence classes
/// and are not instantiated yet. The template works with any copy-constructible, copy-assignable V.
/// Only N = 1 (one 32-bit word) is supported: the difference scan and the "done" code 32 assume it.
///
/// Thread rule: one trie with its iterators and its holders (plain counts), one thread at a time.
#ifndef CLS_PTRIE_H
#define CLS_PTRIE_H

#include <cstdint>

#include "mem/mem_AllocationOperators.h"
#include "nex/nex_Exception.h"
#include "zul_Compiler.h"

/// A key as N 32-bit words, with access to its bits.
template <class K, int N>
struct cls_PTrieKey {
    static_assert(N == 1, "cls_PTrie keys are one 32-bit word");
    cls_PTrieKey() : words{} {}
    explicit cls_PTrieKey(const K& key) : words{} { words[0] = static_cast<uint32_t>(key); }
    int Bit(int b) const { return static_cast<int>((words[0] >> b) & 1u); }
    uint32_t words[N];
};

template <class K, class V, int N>
class cls_PTrie;
template <class K, class V, int N>
class cls_PTrieIter;

/// A node of the trie: an internal node or a leaf.
template <class K, class V, int N>
class cls_PTrieNode : public mem_AllocationOperators {
public:
    /// What Insert answers when it is done: above every bit index.
    enum { Done = 32 };
    virtual ~cls_PTrieNode() {}
    virtual const V* Locate(const cls_PTrie<K, V, N>& trie) const = 0;
    /// Done, or the most significant bit in which the key differs from this subtree's leaf.
    virtual int Insert(cls_PTrie<K, V, N>& trie, const K& key, const V& value) = 0;
    /// The node that now stands in this node's place (null when nothing is left).
    virtual cls_PTrieNode* Remove(cls_PTrie<K, V, N>& trie, const K& key) = 0;
    /// 1 when a leaf became current, 0 to move on.
    virtual int Next(cls_PTrieIter<K, V, N>& iter) const = 0;
};

/// A leaf: one key and its value.
template <class K, class V, int N>
class cls_PTrieLeafNode : public cls_PTrieNode<K, V, N> {
public:
    cls_PTrieLeafNode(const K& k, const V& v) : key(k), value(v) {}

    const V* Locate(const cls_PTrie<K, V, N>& trie) const override
    {
        return cls_PTrieKey<K, N>(key).words[0] == trie.Scratch().words[0] ? &value : nullptr;
    }

    int Insert(cls_PTrie<K, V, N>& trie, const K& k, const V& v) override
    {
        const uint32_t mine = cls_PTrieKey<K, N>(key).words[0];
        const uint32_t theirs = cls_PTrieKey<K, N>(k).words[0];
        if (mine == theirs) {
            value = v;
            trie.SetItem(this);
            return this->Done;
        }
        return 31 - zul_CountLeadingZeros32(mine ^ theirs);  // the highest differing bit; mine != theirs
    }

    cls_PTrieNode<K, V, N>* Remove(cls_PTrie<K, V, N>& trie, const K& k) override
    {
        if (cls_PTrieKey<K, N>(k).words[0] != cls_PTrieKey<K, N>(key).words[0])
            return this;
        trie.DecSize();
        trie.Forget(this);
        return nullptr;
    }

    int Next(cls_PTrieIter<K, V, N>& iter) const override
    {
        if (!iter.m_leaf) {
            iter.m_leaf = this;
            iter.m_key = key;
            return 1;
        }
        iter.m_leaf = nullptr;
        iter.m_key = K();
        return 0;
    }

    K key;
    V value;
};

/// An internal node: the bit it branches on and its two children.
template <class K, class V, int N>
class cls_PTrieInternalNode : public cls_PTrieNode<K, V, N> {
    typedef cls_PTrieNode<K, V, N> Node;

public:
    cls_PTrieInternalNode(int b, Node* one, Node* zero) : bit(b), child1(one), child0(zero) {}
    ~cls_PTrieInternalNode() override
    {
        delete child1;
        delete child0;
    }

    Node*& ChildFor(const cls_PTrieKey<K, N>& key) { return key.Bit(bit) ? child1 : child0; }
    const Node* ChildFor(const cls_PTrieKey<K, N>& key) const { return key.Bit(bit) ? child1 : child0; }

    const V* Locate(const cls_PTrie<K, V, N>& trie) const override { return ChildFor(trie.Scratch())->Locate(trie); }

    int Insert(cls_PTrie<K, V, N>& trie, const K& key, const V& value) override
    {
        Node*& child = ChildFor(trie.Scratch());
        const int d = child->Insert(trie, key, value);
        if (d > bit)
            return d;  // Done (32) never gets here: it is above every bit index
        child = trie.Branch(d, key, value, child);
        return this->Done;
    }

    Node* Remove(cls_PTrie<K, V, N>& trie, const K& key) override
    {
        Node*& child = ChildFor(trie.Scratch());
        Node* r = child->Remove(trie, key);
        if (r != child) {
            delete child;
            child = r;
        }
        if (r)
            return this;
        Node*& other = child1 ? child1 : child0;
        Node* survivor = other;
        other = nullptr;
        return survivor;
    }

    int Next(cls_PTrieIter<K, V, N>& iter) const override
    {
        if (cls_PTrieKey<K, N>(iter.m_key).Bit(bit) == 0 && child0->Next(iter))
            return 1;
        return child1->Next(iter);
    }

    int bit;
    Node* child1;
    Node* child0;
};

template <class K, class V, int N>
class cls_PTrie : public mem_AllocationOperators {
    typedef cls_PTrieNode<K, V, N> Node;
    typedef cls_PTrieLeafNode<K, V, N> Leaf;
    typedef cls_PTrieInternalNode<K, V, N> Internal;

public:
    cls_PTrie() : m_size(0), m_root(nullptr), m_item(nullptr) {}
    ~cls_PTrie() { delete m_root; }
    cls_PTrie(const cls_PTrie&) = delete;
    cls_PTrie& operator=(const cls_PTrie&) = delete;

    int Size() const { return m_size; }

    /// Stores the value (replacing the value of a present key) and answers the stored value.
    V& Insert(const K& key, const V& value)
    {
        m_scratch = cls_PTrieKey<K, N>(key);
        if (!m_root) {
            m_root = new Leaf(key, value);
            m_item = static_cast<Leaf*>(m_root);
            m_size = 1;
            return m_item->value;
        }
        const int d = m_root->Insert(*this, key, value);
        if (d < Node::Done)
            m_root = Branch(d, key, value, m_root);
        return m_item->value;
    }

    void Remove(const K& key)
    {
        if (!m_root)
            return;
        m_scratch = cls_PTrieKey<K, N>(key);
        Node* r = m_root->Remove(*this, key);
        if (r != m_root) {
            delete m_root;
            m_root = r;
        }
    }

    const V* ConstGetPtr(const K& key) const
    {
        if (!m_root)
            return nullptr;
        m_scratch = cls_PTrieKey<K, N>(key);
        return m_root->Locate(*this);
    }

    const V& ConstGet(const K& key) const
    {
        const V* value = ConstGetPtr(key);
        if (!value)
            nex_Raise<nex_TextException>("cls/impl/cls_PTrie", __LINE__, "cls_PTrie: no entry for the key");
        return *value;
    }

    void Clear()
    {
        delete m_root;
        m_root = nullptr;
        m_size = 0;
        m_item = nullptr;
    }

    void Next(cls_PTrieIter<K, V, N>& iter) const
    {
        if (m_root)
            m_root->Next(iter);
    }

    const cls_PTrieKey<K, N>& Scratch() const { return m_scratch; }
    const Node* Root() const { return m_root; }

private:
    friend class cls_PTrieLeafNode<K, V, N>;
    friend class cls_PTrieInternalNode<K, V, N>;

    void SetItem(Leaf* leaf) { m_item = leaf; }
    void Forget(const Leaf* leaf)
    {
        if (m_item == leaf)
            m_item = nullptr;
    }
    void IncSize() { ++m_size; }
    void DecSize() { --m_size; }

    /// A new leaf for the key beside `old`, under a new node branching on bit d. Both are made
    /// before anything changes, so a failed allocation leaves the trie as it was.
    Node* Branch(int d, const K& key, const V& value, Node* old)
    {
        Leaf* leaf = new Leaf(key, value);
        Internal* node;
        try {
            node = m_scratch.Bit(d) ? new Internal(d, leaf, old) : new Internal(d, old, leaf);
        } catch (...) {
            delete leaf;
            throw;
        }
        m_item = leaf;
        IncSize();
        return node;
    }

    int m_size;
    mutable cls_PTrieKey<K, N> m_scratch;
    Node* m_root;
    Leaf* m_item;
};

/// Walks the trie in place, in ascending order of the keys' unsigned bit patterns.
template <class K, class V, int N>
class cls_PTrieIter {
public:
    explicit cls_PTrieIter(const cls_PTrie<K, V, N>& trie) : m_key(), m_leaf(nullptr), m_trie(&trie) {}

    void First()
    {
        m_key = K();
        m_leaf = nullptr;
        m_trie->Next(*this);
    }
    void Next() { m_trie->Next(*this); }
    bool IsDone() const { return m_leaf == nullptr; }
    const K& Key() const { return m_leaf->key; }
    const V& Value() const { return m_leaf->value; }

private:
    friend class cls_PTrieLeafNode<K, V, N>;
    friend class cls_PTrieInternalNode<K, V, N>;

    K m_key;
    const cls_PTrieLeafNode<K, V, N>* m_leaf;
    const cls_PTrie<K, V, N>* m_trie;
};

#endif

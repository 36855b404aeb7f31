/// @class cow_Btree
/// cow_Btree<K, V>: the library's ordered associative container.
///
/// A binary search tree kept balanced by subtree heights with single rotations only, whose nodes
/// are shared between copies through copy-on-write handles; each child link is a handle of its
/// own on the heap, so rotations move handles by swapping pointers. Heights: 0 for a leaf, else
/// the larger of (child height + 1) with a missing child contributing 0. The balance factor is
/// (right height - left height) with a missing child counted as height 0, like a leaf: this
/// asymmetry is deliberate. |factor| >= 2 rotates once; there are no double rotations.
///
/// Keys order by the sign of their difference for integers (taken in 32 bits: keys farther apart
/// than the integer range may order wrongly, which is accepted), byte-wise unsigned for strings,
/// by < for floats. Reads (ConstFind, iteration) never copy. A failed write (out of memory) leaves
/// this tree and its sharers unchanged: an insertion allocates everything before its first change,
/// and a removal runs on a working copy that replaces the tree only when it has succeeded.
/// An iterator's Key() and Value() are read only while NotDone() is true.
///
/// Thread rule: the node counts are plain integers: trees that share nodes (a tree, its copies and
/// the snapshots their iterators hold) are used by one thread at a time.
///
/// Instances used by the library: int keys with int, double, cow_1DArrayList<int>; float keys with
/// int; cow_String keys with int, unsigned int, float, cow_String, cow_1DArray<cow_String>,
/// cow_1DArrayList<int>, cow_Btree<int, int>; atr_String keys with cow_List<atr_String>. The
/// cow_FixedArray<int> instance comes with that type.
#ifndef COW_BTREE_H
#define COW_BTREE_H

#include <cstdint>
#include <utility>

#include "atr/atr_StringBase.h"
#include "cow/cow_COW.h"
#include "cow/cow_List.h"
#include "zul_Compiler.h"

/// Where a sought key goes from a node's key: < 0 left, 0 the same entry, > 0 right.
///@{
inline int cow_BtreeCompare(int sought, int key)
{
    return static_cast<int32_t>(static_cast<uint32_t>(sought) - static_cast<uint32_t>(key));
}

inline int cow_BtreeCompare(float sought, float key)
{
    return sought < key ? -1 : (key < sought ? 1 : 0);
}

inline int cow_BtreeCompare(const atr_StringBase& sought, const atr_StringBase& key)
{
    return sought.Compare(key);
}
///@}

/// A node of the tree: one entry, its height and handles of its own on its two children.
template <class K, class V>
class cow_BtreeNode {
public:
    typedef cow_COW<cow_BtreeNode, cow_Direct<cow_BtreeNode>> Handle;

    cow_BtreeNode(const K& k, const V& v) : value(v), key(k), left(nullptr), right(nullptr), height(0) {}

    /// A copy shares the children: it gets handles of its own on the same nodes.
    cow_BtreeNode(const cow_BtreeNode& o) : value(o.value), key(o.key), left(nullptr), right(nullptr), height(o.height)
    {
        left = o.left ? cow_New<Handle>(*o.left) : nullptr;
        try {
            right = o.right ? cow_New<Handle>(*o.right) : nullptr;
        } catch (...) {
            cow_Destroy(left);
            throw;
        }
    }
    cow_BtreeNode& operator=(const cow_BtreeNode&) = delete;

    ~cow_BtreeNode()
    {
        cow_Destroy(left);
        cow_Destroy(right);
    }

    static int Height(const Handle* h) { return h ? h->ConstGet().height : 0; }

    /// A handle of its own holding a new leaf. The handle is made first, so a failure to make the
    /// node leaves nothing behind.
    static Handle* NewLink(const K& k, const V& v)
    {
        Handle* link = cow_New<Handle>();
        try {
            *link = cow_New<cow_BtreeNode>(k, v);  // a fresh handle adopts without allocating
        } catch (...) {
            cow_Destroy(link);
            throw;
        }
        return link;
    }

    void UpdateHeight()
    {
        if (!left && !right) {
            height = 0;
            return;
        }
        const int l = left ? Height(left) + 1 : 0;
        const int r = right ? Height(right) + 1 : 0;
        height = l > r ? l : r;
    }

    /// Rebalances the node held by `self`; returns the handle that now stands in its place, or
    /// null when nothing moved.
    static Handle* Balance(Handle* self)
    {
        cow_BtreeNode& node = self->Get();
        const int d = Height(node.right) - Height(node.left);
        if (d >= 2) {
            Handle* child = node.right;
            cow_BtreeNode& c = child->Get();
            node.right = c.left;
            c.left = self;
            node.UpdateHeight();
            c.UpdateHeight();
            return child;
        }
        if (d <= -2) {
            Handle* child = node.left;
            cow_BtreeNode& c = child->Get();
            node.left = c.right;
            c.right = self;
            node.UpdateHeight();
            c.UpdateHeight();
            return child;
        }
        return nullptr;
    }

    /// Balances the child in `link` and stores a new handle there when one came back.
    static void BalanceLink(Handle*& link)
    {
        if (link)
            if (Handle* moved = Balance(link))
                link = moved;
    }

    /// Inserts into the subtree of this node: each node on the way down is made private; on the
    /// way back up, each node balances its child on the path and recomputes its height. The walk
    /// keeps its path in an array (no call per level); a path longer than that goes on
    /// recursively.
    bool InsertUnlessMember(const K& k, const V& v)
    {
        enum { kPath = 64 };
        cow_BtreeNode* nodes[kPath];
        Handle** links[kPath];  // links[d]: the link of nodes[d] taken on the way down
        cow_BtreeNode* node = this;
        int depth = 0;
        for (;;) {
            const int c = cow_BtreeCompare(k, node->key);
            if (c == 0)
                return false;
            Handle*& link = c < 0 ? node->left : node->right;
            // On the way back up this node's height is recomputed from both children: fetch the
            // one off the path now, while the search goes on below.
            if (Handle* other = c < 0 ? node->right : node->left)
                ZUL_PREFETCH(other);
            nodes[depth] = node;
            links[depth] = &link;
            ++depth;
            if (!link) {
                link = NewLink(k, v);
                break;
            }
            if (depth == kPath) {
                if (!link->Get().InsertUnlessMember(k, v))
                    return false;
                BalanceLink(link);
                break;
            }
            node = &link->Get();
        }
        nodes[--depth]->UpdateHeight();
        while (depth > 0) {
            --depth;
            BalanceLink(*links[depth]);
            nodes[depth]->UpdateHeight();
        }
        return true;
    }

    const cow_BtreeNode* ConstFind(const K& k) const
    {
        const cow_BtreeNode* node = this;
        while (node) {
            const int c = cow_BtreeCompare(k, node->key);
            if (c == 0)
                return node;
            const Handle* next = c < 0 ? node->left : node->right;
            node = next ? &next->ConstGet() : nullptr;
        }
        return nullptr;
    }

    /// Removes k from the subtree held by `link` (made private on the way); false when absent.
    static bool Remove(Handle*& link, const K& k)
    {
        if (!link)
            return false;
        cow_BtreeNode& node = link->Get();
        const int c = cow_BtreeCompare(k, node.key);
        if (c != 0) {
            Handle*& side = c < 0 ? node.left : node.right;
            if (!Remove(side, k))
                return false;
            BalanceLink(side);
            node.UpdateHeight();
            return true;
        }
        RemoveNode(link);
        return true;
    }

    /// Replaces the node held by `link` by its successor (or its only child) and frees the handle.
    static void RemoveNode(Handle*& link)
    {
        cow_BtreeNode& node = link->Get();
        Handle* replacement;
        if (!node.right) {
            replacement = node.left;
        } else if (!node.left) {
            replacement = node.right;
        } else {
            replacement = TakeLeftmost(node.right);
            cow_BtreeNode& successor = replacement->Get();
            successor.left = node.left;
            successor.right = node.right;
            BalanceLink(successor.right);
            successor.UpdateHeight();
        }
        node.left = node.right = nullptr;  // moved on: not freed with the node
        Handle* old = link;
        link = replacement;
        cow_Destroy(old);
    }

private:
    /// Unlinks the leftmost node of the subtree in `link` (its right subtree takes its place) and
    /// returns its handle; heights along the way are recomputed.
    static Handle* TakeLeftmost(Handle*& link)
    {
        cow_BtreeNode& node = link->Get();
        if (!node.left) {
            Handle* leftmost = link;
            link = node.right;
            node.right = nullptr;
            return leftmost;
        }
        Handle* leftmost = TakeLeftmost(node.left);
        BalanceLink(node.left);
        node.UpdateHeight();
        return leftmost;
    }

public:
    V value;
    K key;
    Handle* left;
    Handle* right;
    int32_t height;
};

template <class K, class V>
class cow_Btree {
public:
    typedef cow_BtreeNode<K, V> Node;
    typedef typename Node::Handle Handle;

    cow_Btree() : m_root(nullptr), m_count(0) {}
    cow_Btree(const cow_Btree& o) : m_root(o.m_root ? cow_New<Handle>(*o.m_root) : nullptr), m_count(o.m_count) {}
    cow_Btree& operator=(const cow_Btree& o)
    {
        cow_Btree copy(o);
        swap(copy);
        return *this;
    }
    ~cow_Btree() { cow_Destroy(m_root); }

    int Count() const { return m_count; }

    bool InsertUnlessMember(const K& key, const V& value)
    {
        if (!m_root) {
            m_root = Node::NewLink(key, value);
            m_count = 1;
            return true;
        }
        // Every allocation of an insertion (copying shared nodes on the way down, the new leaf)
        // comes before the first change, which happens on the way back up: no working copy needed.
        if (!m_root->Get().InsertUnlessMember(key, value))
            return false;
        Node::BalanceLink(m_root);
        ++m_count;
        return true;
    }

    bool Remove(const K& key)
    {
        if (!ConstFind(key))
            return false;
        cow_Btree work(*this);
        Node::Remove(work.m_root, key);
        Node::BalanceLink(work.m_root);
        --work.m_count;
        swap(work);
        return true;
    }

    const Node* ConstFind(const K& key) const { return m_root ? m_root->ConstGet().ConstFind(key) : nullptr; }
    bool IsMember(const K& key) const { return ConstFind(key) != nullptr; }

    const Handle* Root() const { return m_root; }

    void swap(cow_Btree& o)
    {
        std::swap(m_root, o.m_root);
        std::swap(m_count, o.m_count);
    }

private:
    Handle* m_root;
    int32_t m_count;
};

/// A chain element of the iterator's stack: a node handle and the link below it.
template <class K, class V>
class cow_BtreeNodeLink {
public:
    typedef typename cow_BtreeNode<K, V>::Handle Handle;
    cow_BtreeNodeLink() : m_node(nullptr), m_next(nullptr) {}
    cow_BtreeNodeLink(const Handle* node, cow_BtreeNodeLink* next) : m_node(node), m_next(next) {}
    const Handle* Node() const { return m_node; }
    cow_BtreeNodeLink* Next() const { return m_next; }

private:
    const Handle* m_node;
    cow_BtreeNodeLink* m_next;
};

/// In key order over the tree as it was when the iterator was made: First then Next ascends,
/// Last then Previous descends.
///
/// The stack of links is an array inside the iterator, so stepping allocates nothing; a path
/// deeper than that array moves the stack to a heap buffer, which the iterator keeps (and reuses
/// for later First/Last calls) until it is destroyed.
template <class K, class V>
class cow_BtreeIterator {
public:
    typedef cow_BtreeNode<K, V> NodeType;
    typedef typename NodeType::Handle Handle;
    typedef cow_BtreeNodeLink<K, V> Link;
    /// The links the iterator's stack holds before it moves to a heap buffer.
    enum { InlineDepth = 32 };

    explicit cow_BtreeIterator(const cow_Btree<K, V>& tree)
        : m_tree(tree), m_stack(m_inline), m_capacity(InlineDepth), m_depth(0)
    {
    }
    ~cow_BtreeIterator()
    {
        if (m_stack != m_inline)
            mem_Free(m_stack);
    }
    cow_BtreeIterator(const cow_BtreeIterator&) = delete;
    cow_BtreeIterator& operator=(const cow_BtreeIterator&) = delete;

    void First()
    {
        m_depth = 0;
        PushEdge(m_tree.Root(), true);
    }
    void Last()
    {
        m_depth = 0;
        PushEdge(m_tree.Root(), false);
    }
    void Next() { Step(true); }
    void Previous() { Step(false); }

    bool NotDone() const { return m_depth > 0; }
    const K& Key() const { return Top().ConstGet().key; }
    const V& Value() const { return Top().ConstGet().value; }

    void Push(const Handle* node)
    {
        if (m_depth == m_capacity)
            GrowStack();
        m_stack[m_depth] = Link(node, m_depth > 0 ? &m_stack[m_depth - 1] : nullptr);
        ++m_depth;
    }

    /// Links on the stack (diagnostics and tests).
    int Depth() const { return m_depth; }

private:
    const Handle& Top() const { return *m_stack[m_depth - 1].Node(); }

    /// Doubles the stack in a heap buffer; the links are re-chained to their new places.
    void GrowStack()
    {
        const int capacity = m_capacity * 2;
        Link* grown = static_cast<Link*>(mem_OperatorNewThrow(sizeof(Link) * static_cast<size_t>(capacity)));
        for (int i = 0; i < m_depth; ++i)
            grown[i] = Link(m_stack[i].Node(), i > 0 ? &grown[i - 1] : nullptr);
        if (m_stack != m_inline)
            mem_Free(m_stack);
        m_stack = grown;
        m_capacity = capacity;
    }

    /// Pushes the path to the smallest (leftmost) or largest key of a subtree.
    void PushEdge(const Handle* node, bool leftmost)
    {
        while (node) {
            Push(node);
            node = leftmost ? node->ConstGet().left : node->ConstGet().right;
        }
    }
    void Step(bool forward)
    {
        if (m_depth == 0)
            return;
        const NodeType& node = Top().ConstGet();
        --m_depth;
        PushEdge(forward ? node.right : node.left, forward);
    }

    cow_Btree<K, V> m_tree;  ///< keeps the nodes alive
    Link* m_stack;
    int m_capacity;
    int m_depth;
    Link m_inline[InlineDepth];
};

/// The keys or the values of a tree, as lists.
template <class K, class V>
struct cow_BtreeUtils {
    /// The keys / values in ascending key order.
    ///@{
    static cow_List<K> cow_Keys(const cow_Btree<K, V>& tree)
    {
        cow_BtreeIterator<K, V> it(tree);
        return cow_CollectFrom<K>(it, [](const cow_BtreeIterator<K, V>& i) -> const K& { return i.Key(); });
    }
    static cow_List<V> cow_Values(const cow_Btree<K, V>& tree)
    {
        cow_BtreeIterator<K, V> it(tree);
        return cow_CollectFrom<V>(it, [](const cow_BtreeIterator<K, V>& i) -> const V& { return i.Value(); });
    }
    ///@}
};

#endif

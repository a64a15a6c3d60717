// KtDoubleLinkedList of untyped pointers, its iterator and cursors, and the
// typed KtList<T> over it.
#pragma once

#include <ostream>

struct Kt_DoubleLinkedList_Node
{
    void* data = nullptr;
    // Set when the node was removed while a visitor stood on it; the node is
    // unlinked when its last visitor leaves.
    int deleted = 0;
    int visitors = 0;
    Kt_DoubleLinkedList_Node* next = nullptr;
    Kt_DoubleLinkedList_Node* prev = nullptr;
};

// A list of pointers that it does not own. A node may be removed while an
// iterator or cursor stands on it: it is only marked deleted, no longer
// counted, and never seen again by any traversal.
class KtDoubleLinkedList
{
public:
    using Node = Kt_DoubleLinkedList_Node;

    KtDoubleLinkedList() = default;
    KtDoubleLinkedList(const KtDoubleLinkedList&) = delete;
    KtDoubleLinkedList& operator=(const KtDoubleLinkedList&) = delete;
    ~KtDoubleLinkedList();

    Node* append(void* data);
    // Returns the node's data; the node is destroyed at once unless a
    // visitor stands on it.
    void* _removeNode(Node* node);

    int count() const { return _count; }
    bool _isNull() const { return _count == 0; }
    Node* _firstNode() const { return _first; }
    Node* _lastNode() const { return _last; }
    // The data of the i-th live node; prints a message and returns null when
    // there are not that many.
    void* operator[](int i) const;

    // The first and last live nodes, and the live neighbours of a node.
    Node* _firstLive() const;
    Node* _lastLive() const;
    static Node* _nextLive(Node* node);
    static Node* _prevLive(Node* node);

protected:
    void _unlinkNode(Node* node);
    void _removeAllNodes();

private:
    friend class Kt_DLListCursor;

    Node* _first = nullptr;
    Node* _last = nullptr;
    int _count = 0;
};

// Stands on one node of a list, counted as its visitor, so that the node
// survives removal until the cursor leaves it.
class Kt_DLListCursor
{
public:
    explicit Kt_DLListCursor(const KtDoubleLinkedList* list);
    Kt_DLListCursor(const Kt_DLListCursor&) = delete;
    Kt_DLListCursor& operator=(const Kt_DLListCursor&) = delete;
    ~Kt_DLListCursor();

    bool atEnd() const { return _node == nullptr; }
    // Aborts when the node was removed: its data is gone.
    void* data() const;
    Kt_DoubleLinkedList_Node* node() const { return _node; }
    void inc();
    void dec();
    void seekFirst();
    void seekLast();

protected:
    void _enterNode(Kt_DoubleLinkedList_Node* node);
    void _leaveNode();

    KtDoubleLinkedList* _list;
    Kt_DoubleLinkedList_Node* _node = nullptr;
};

// A cursor over a list that it may not change.
class KtDLListReadCursor : public Kt_DLListCursor
{
public:
    using Kt_DLListCursor::Kt_DLListCursor;
};

// Walks a list from its first live node: next() returns the current data and
// moves on; null at the end. Nodes removed meanwhile are skipped.
class KtDLListIter : private Kt_DLListCursor
{
public:
    explicit KtDLListIter(const KtDoubleLinkedList* list);
    void* next();
    using Kt_DLListCursor::atEnd;
    using Kt_DLListCursor::node;
};

// A list of owned copies of T values (T is often itself a pointer, which the
// list then holds but does not own).
template <class T>
class KtList : public KtDoubleLinkedList
{
public:
    KtList() = default;
    KtList(const KtList& other) { _appendAll(other); }
    KtList& operator=(const KtList& other)
    {
        if (this != &other)
        {
            clear();
            _appendAll(other);
        }
        return *this;
    }
    ~KtList() { clear(); }

    void append(const T& value) { KtDoubleLinkedList::append(new T(value)); }
    // Removes and destroys the element held by a node.
    void remove(Node* node) { delete static_cast<T*>(_removeNode(node)); }
    void removeLast()
    {
        if (Node* last = _lastLive())
            remove(last);
    }
    // Must not be called while an iterator or cursor stands in the list.
    void clear()
    {
        for (Node* n = _firstLive(); n; n = _nextLive(n))
            delete static_cast<T*>(n->data);
        _removeAllNodes();
    }
    // Null, with a message, when there are not i + 1 elements.
    T* operator[](int i) const
    {
        return static_cast<T*>(KtDoubleLinkedList::operator[](i));
    }

    // Plain traversal of the live elements, forward or (reversed()) from the
    // last; the list must not change during it (use KtDLListIter for that).
    template <class Ref, bool Forward = true>
    class Iterator
    {
    public:
        explicit Iterator(Node* node)
            : _node(node)
        {
        }
        Ref operator*() const { return *static_cast<T*>(_node->data); }
        Iterator& operator++()
        {
            _node = Forward ? _nextLive(_node) : _prevLive(_node);
            return *this;
        }
        bool operator!=(const Iterator& other) const
        {
            return _node != other._node;
        }

    private:
        Node* _node;
    };
    Iterator<T&> begin() { return Iterator<T&>(_firstLive()); }
    Iterator<T&> end() { return Iterator<T&>(nullptr); }
    Iterator<const T&> begin() const
    {
        return Iterator<const T&>(_firstLive());
    }
    Iterator<const T&> end() const { return Iterator<const T&>(nullptr); }

    struct ReversedRange
    {
        Node* last;
        Iterator<const T&, false> begin() const
        {
            return Iterator<const T&, false>(last);
        }
        Iterator<const T&, false> end() const
        {
            return Iterator<const T&, false>(nullptr);
        }
    };
    ReversedRange reversed() const { return {_lastLive()}; }

private:
    void _appendAll(const KtList& other)
    {
        for (const T& value : other)
            append(value);
    }
};

template <class T>
std::ostream& operator<<(std::ostream& out, const KtList<T>& list)
{
    out << "[";
    if (list._isNull())
        out << "Empty";
    for (const T& value : list)
        out << "   " << value;
    return out << "]";
}

// The doubly linked list whose nodes survive removal under a visitor.
#include "toolkit/KtList.h"

#include <cstdio>
#include <cstdlib>

using Node = Kt_DoubleLinkedList_Node;

KtDoubleLinkedList::~KtDoubleLinkedList()
{
    _removeAllNodes();
}

Node* KtDoubleLinkedList::append(void* data)
{
    Node* node = new Node;
    node->data = data;
    node->prev = _last;
    if (_last)
        _last->next = node;
    else
        _first = node;
    _last = node;
    ++_count;
    return node;
}

void* KtDoubleLinkedList::_removeNode(Node* node)
{
    void* data = node->data;
    if (node->deleted)
        return data;
    --_count;
    if (node->visitors > 0)
        node->deleted = 1;
    else
        _unlinkNode(node);
    return data;
}

void KtDoubleLinkedList::_unlinkNode(Node* node)
{
    if (node->prev)
        node->prev->next = node->next;
    else
        _first = node->next;
    if (node->next)
        node->next->prev = node->prev;
    else
        _last = node->prev;
    delete node;
}

void KtDoubleLinkedList::_removeAllNodes()
{
    Node* node = _first;
    while (node)
    {
        Node* next = node->next;
        delete node;
        node = next;
    }
    _first = _last = nullptr;
    _count = 0;
}

void* KtDoubleLinkedList::operator[](int i) const
{
    int seen = 0;
    for (Node* node = _firstLive(); node; node = _nextLive(node), ++seen)
        if (seen == i)
            return node->data;
    std::printf(
        "KtDoubleLinkedList::operator [] (int) : element %d not found!\n", i);
    return nullptr;
}

Node* KtDoubleLinkedList::_firstLive() const
{
    Node* node = _first;
    while (node && node->deleted)
        node = node->next;
    return node;
}

Node* KtDoubleLinkedList::_lastLive() const
{
    Node* node = _last;
    while (node && node->deleted)
        node = node->prev;
    return node;
}

Node* KtDoubleLinkedList::_nextLive(Node* node)
{
    node = node->next;
    while (node && node->deleted)
        node = node->next;
    return node;
}

Node* KtDoubleLinkedList::_prevLive(Node* node)
{
    node = node->prev;
    while (node && node->deleted)
        node = node->prev;
    return node;
}

Kt_DLListCursor::Kt_DLListCursor(const KtDoubleLinkedList* list)
    // A cursor only ever unlinks nodes that were already removed, which the
    // list's owner cannot observe; hence the const list.
    : _list(const_cast<KtDoubleLinkedList*>(list))
{
    _enterNode(_list->_firstLive());
}

Kt_DLListCursor::~Kt_DLListCursor()
{
    _leaveNode();
}

void* Kt_DLListCursor::data() const
{
    if (_node && _node->deleted)
    {
        std::printf("Kt_DLListCursor::data(): retrieving data from deleted "
                    "node.\n");
        std::fflush(stdout);
        std::abort();
    }
    return _node ? _node->data : nullptr;
}

void Kt_DLListCursor::_enterNode(Node* node)
{
    _node = node;
    if (_node)
        ++_node->visitors;
}

void Kt_DLListCursor::_leaveNode()
{
    if (!_node)
        return;
    Node* left = _node;
    _node = nullptr;
    if (--left->visitors == 0 && left->deleted)
        _list->_unlinkNode(left);
}

void Kt_DLListCursor::inc()
{
    if (!_node)
        return;
    Node* next = KtDoubleLinkedList::_nextLive(_node);
    _leaveNode();
    _enterNode(next);
}

void Kt_DLListCursor::dec()
{
    if (!_node)
        return;
    Node* prev = KtDoubleLinkedList::_prevLive(_node);
    _leaveNode();
    _enterNode(prev);
}

void Kt_DLListCursor::seekFirst()
{
    Node* first = _list->_firstLive();
    _leaveNode();
    _enterNode(first);
}

void Kt_DLListCursor::seekLast()
{
    Node* last = _list->_lastLive();
    _leaveNode();
    _enterNode(last);
}

KtDLListIter::KtDLListIter(const KtDoubleLinkedList* list)
    : Kt_DLListCursor(list)
{
}

void* KtDLListIter::next()
{
    // The node we stand on may have been removed since we entered it.
    while (_node && _node->deleted)
        inc();
    if (!_node)
        return nullptr;
    void* result = _node->data;
    inc();
    return result;
}

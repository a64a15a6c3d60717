// KtNameIndex: finds named items by name ignoring case, in constant time.
#pragma once

#include <cctype>
#include <cstdint>
#include <strings.h>
#include <type_traits>

#include "toolkit/KtArray.h"

// Names that differ only in the case of their letters are one name, as for
// KtStr::iCmp. The index keeps the first item added under a name. It holds
// only pointers: a name is read from its item (item->name(), or the item
// itself when it is text) whenever it is needed, so the index costs no copy
// of any name. It does not own the items; an item renamed after it was added
// may no longer be found.
template <class T>
class KtNameIndex
{
public:
    void add(T* item)
    {
        // At most two slots in three are taken.
        if ((_count + 1) * 3 > _slots.count() * 2)
            _rehash(_slots.count() < kFirstSize ? kFirstSize
                                                : 2 * _slots.count());
        int slot = _slotOf(_nameOf(item));
        if (_slots[slot])
            return;
        _slots[slot] = item;
        ++_count;
    }
    T* find(const char* name) const
    {
        if (!name || _count == 0)
            return nullptr;
        return _slots[_slotOf(name)];
    }
    void clear()
    {
        _slots._clear();
        _count = 0;
    }

private:
    static constexpr int kFirstSize = 16;

    static const char* _nameOf(const T* item)
    {
        if constexpr (std::is_convertible_v<const T&, const char*>)
            return *item;
        else
            return item->name();
    }

    // FNV-1a over the upper-case letters.
    static uint32_t _hash(const char* name)
    {
        uint32_t hash = 2166136261u;
        for (; *name; ++name)
            hash = (hash ^ static_cast<unsigned char>(std::toupper(
                               static_cast<unsigned char>(*name)))) *
                   16777619u;
        return hash;
    }

    // The slot that holds the name, or the empty one where it would go.
    int _slotOf(const char* name) const
    {
        const int mask = _slots.count() - 1;
        int slot = static_cast<int>(_hash(name) & mask);
        while (_slots[slot] && strcasecmp(_nameOf(_slots[slot]), name) != 0)
            slot = (slot + 1) & mask;
        return slot;
    }

    void _rehash(int size)
    {
        KtArray<T*> old(std::move(_slots));
        _slots._resize(size);
        _count = 0;
        for (T* item : old)
            if (item)
                add(item);
    }

    KtArray<T*> _slots;
    int _count = 0;
};

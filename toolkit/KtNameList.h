// KtNameList: many names in one block of characters, for lists whose names
// are short and many (skin files, the bone names of a motion).
#pragma once

#include "toolkit/KtGrowArray.h"

// A name costs its characters, its terminator and one offset; no name is a
// heap block of its own. Names are kept as given, in order.
class KtNameList
{
public:
    class Iterator
    {
    public:
        Iterator(const KtNameList* list, int i)
            : _list(list)
            , _i(i)
        {
        }
        const char* operator*() const { return (*_list)[_i]; }
        Iterator& operator++()
        {
            ++_i;
            return *this;
        }
        bool operator!=(const Iterator& other) const { return _i != other._i; }

    private:
        const KtNameList* _list;
        int _i;
    };

    int count() const { return _starts.count(); }
    // Valid until the list next changes.
    const char* operator[](int i) const { return _chars.data() + _starts[i]; }
    Iterator begin() const { return Iterator(this, 0); }
    Iterator end() const { return Iterator(this, count()); }

    void append(const char* name);
    void append(const char* name, int length);
    // Keeps the first n names.
    void truncate(int n);
    void clear();
    // Gives back the room kept for growth.
    void trim();

private:
    KtGrowArray<char> _chars;
    KtGrowArray<int> _starts;
};

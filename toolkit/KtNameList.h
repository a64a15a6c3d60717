// KtNameList: many names in one block of characters, for lists whose names
// are short and many (skin files, the bone names of a motion).
#pragma once

#include "toolkit/KtGrowArray.h"

// The names follow each other, each with its terminator, and only every
// 16th name's start is kept: a name costs little more than its characters,
// and finding one passes over at most 15 others. Names are kept as given,
// in order.
class KtNameList
{
public:
    // Walks the names in order.
    class Iterator
    {
    public:
        explicit Iterator(const char* at)
            : _at(at)
        {
        }
        const char* operator*() const { return _at; }
        Iterator& operator++();
        bool operator!=(const Iterator& other) const
        {
            return _at != other._at;
        }

    private:
        const char* _at;
    };

    int count() const { return _count; }
    // Valid until the list next changes.
    const char* operator[](int i) const;
    Iterator begin() const { return Iterator(_chars.data()); }
    Iterator end() const { return Iterator(_chars.data() + _chars.count()); }

    void append(const char* name);
    void append(const char* name, int length);
    // Keeps the first n names.
    void truncate(int n);
    void clear();

private:
    static constexpr int kStride = 16;

    KtGrowArray<char> _chars;
    KtGrowArray<int> _starts; // of names 0, 16, 32, ...
    int _count = 0;
};

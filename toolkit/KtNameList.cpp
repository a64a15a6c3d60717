// KtNameList: the names' characters and where every 16th one starts.
#include "toolkit/KtNameList.h"

#include <cstring>

KtNameList::Iterator& KtNameList::Iterator::operator++()
{
    _at += std::strlen(_at) + 1;
    return *this;
}

const char* KtNameList::operator[](int i) const
{
    const char* name = _chars.data() + _starts[i / kStride];
    for (int skip = i % kStride; skip > 0; --skip)
        name += std::strlen(name) + 1;
    return name;
}

void KtNameList::append(const char* name)
{
    append(name ? name : "", name ? static_cast<int>(std::strlen(name)) : 0);
}

// A name is kept up to its first NUL byte, like any C string. The character
// count overflowing an int ends the process like any other table that grows
// too large.
void KtNameList::append(const char* name, int length)
{
    const long start = _chars.count();
    if (start + length + 1L > INT_MAX)
        KtMemoryExhausted();
    if (_count % kStride == 0)
        _starts.append(static_cast<int>(start));
    _chars.append(name, length);
    _chars.append('\0');
    ++_count;
}

void KtNameList::truncate(int n)
{
    if (n < 0 || n >= _count)
        return;
    _chars.truncate(static_cast<int>((*this)[n] - _chars.data()));
    _starts.truncate((n + kStride - 1) / kStride);
    _count = n;
}

void KtNameList::clear()
{
    _chars.clear();
    _starts.clear();
    _count = 0;
}

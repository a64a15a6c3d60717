// KtNameList: the names' characters and where each starts.
#include "toolkit/KtNameList.h"

#include <cstring>

void KtNameList::append(const char* name)
{
    append(name ? name : "", name ? static_cast<int>(std::strlen(name)) : 0);
}

// The character count overflowing an int ends the process like any other
// table that grows too large.
void KtNameList::append(const char* name, int length)
{
    const long start = _chars.count();
    if (start + length + 1L > INT_MAX)
        KtMemoryExhausted();
    _chars.append(name, length);
    _chars.append('\0');
    _starts.append(static_cast<int>(start));
}

void KtNameList::truncate(int n)
{
    if (n < 0 || n >= count())
        return;
    _chars.truncate(_starts[n]);
    _starts.truncate(n);
}

void KtNameList::clear()
{
    _chars.clear();
    _starts.clear();
}

void KtNameList::trim()
{
    _chars.trim();
    _starts.trim();
}

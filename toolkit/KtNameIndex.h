// KtNameIndex: finds named items by name ignoring case, in constant time.
#pragma once

#include <cctype>
#include <string>
#include <unordered_map>

// Names that differ only in the case of their letters are one name, as for
// KtStr::iCmp. The index keeps the first item added under a name; it does
// not own the items and does not notice when an item is renamed.
template <class T>
class KtNameIndex
{
public:
    void add(const char* name, T* item) { _items.emplace(_key(name), item); }
    T* find(const char* name) const
    {
        auto found = _items.find(_key(name));
        return found == _items.end() ? nullptr : found->second;
    }
    void clear() { _items.clear(); }

private:
    static std::string _key(const char* name)
    {
        std::string key(name ? name : "");
        for (char& c : key)
            c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        return key;
    }

    std::unordered_map<std::string, T*> _items;
};

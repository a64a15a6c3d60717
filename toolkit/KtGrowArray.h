// KtGrowArray: an array of plain values that grows at its end, for the
// large tables that readers fill one entry at a time.
#pragma once

#include <climits>
#include <cstdlib>
#include <cstring>
#include <type_traits>
#include <utility>

#include "toolkit/KtMemory.h"

// Unlike KtArray it keeps spare room, growing by half as it grows, and its values
// are moved with realloc: a large block is then remapped rather than copied,
// so growing never holds the old and the new block at once. trim() gives
// the spare room back. Running out of memory, or past INT_MAX values, ends
// the process through KtMemoryExhausted.
template <class T>
class KtGrowArray
{
    static_assert(std::is_trivially_copyable_v<T>, "plain values only");

public:
    KtGrowArray() = default;
    KtGrowArray(const KtGrowArray& other) { *this = other; }
    KtGrowArray(KtGrowArray&& other) noexcept { _take(other); }
    KtGrowArray& operator=(const KtGrowArray& other)
    {
        if (this != &other)
        {
            clear();
            append(other._data, other._count);
        }
        return *this;
    }
    KtGrowArray& operator=(KtGrowArray&& other) noexcept
    {
        if (this != &other)
        {
            clear();
            _take(other);
        }
        return *this;
    }
    ~KtGrowArray() { std::free(_data); }

    int count() const { return _count; }
    T& operator[](int i) { return _data[i]; }
    const T& operator[](int i) const { return _data[i]; }
    T* data() { return _data; }
    const T* data() const { return _data; }
    T* begin() { return _data; }
    T* end() { return _data + _count; }
    const T* begin() const { return _data; }
    const T* end() const { return _data + _count; }
    T& last() { return _data[_count - 1]; }

    void append(const T& value)
    {
        if (_count == _capacity)
            _reserve(static_cast<long>(_count) + 1);
        _data[_count++] = value;
    }
    void append(const T* values, int n)
    {
        if (n <= 0)
            return;
        _reserve(static_cast<long>(_count) + n);
        std::memcpy(static_cast<void*>(_data + _count), values, sizeof(T) * n);
        _count += n;
    }
    // Drops the values from n on; never grows.
    void truncate(int n)
    {
        if (n >= 0 && n < _count)
            _count = n;
    }
    void removeAt(int i)
    {
        std::memmove(static_cast<void*>(_data + i),
                     _data + i + 1,
                     sizeof(T) * (_count - i - 1));
        --_count;
    }
    void clear()
    {
        std::free(_data);
        _data = nullptr;
        _count = 0;
        _capacity = 0;
    }
    void trim()
    {
        if (_count == 0)
            clear();
        else if (_count < _capacity)
            _reallocate(_count);
    }

private:
    void _take(KtGrowArray& other)
    {
        _data = std::exchange(other._data, nullptr);
        _count = std::exchange(other._count, 0);
        _capacity = std::exchange(other._capacity, 0);
    }
    void _reserve(long wanted)
    {
        if (wanted <= _capacity)
            return;
        if (wanted > INT_MAX)
            KtMemoryExhausted();
        long grown = _capacity + _capacity / 2;
        long capacity = grown > wanted ? grown : wanted;
        _reallocate(static_cast<int>(capacity < INT_MAX ? capacity : INT_MAX));
    }
    void _reallocate(int capacity)
    {
        void* block = std::realloc(static_cast<void*>(_data),
                                   sizeof(T) * static_cast<size_t>(capacity));
        if (!block)
            KtMemoryExhausted();
        _data = static_cast<T*>(block);
        _capacity = capacity;
    }

    T* _data = nullptr;
    int _count = 0;
    int _capacity = 0;
};

// A run of values walked as pointers, for tables whose callers take each
// entry by its address as they would from a list of pointers.
template <class T>
class KtPointerRange
{
public:
    class Iterator
    {
    public:
        explicit Iterator(T* at)
            : _at(at)
        {
        }
        T* operator*() const { return _at; }
        Iterator& operator++()
        {
            ++_at;
            return *this;
        }
        bool operator!=(const Iterator& other) const
        {
            return _at != other._at;
        }

    private:
        T* _at;
    };

    KtPointerRange(T* first, int count)
        : _first(first)
        , _count(count)
    {
    }
    // A range of writable values is also one of read-only ones.
    template <class U, class = std::enable_if_t<std::is_convertible_v<U*, T*>>>
    KtPointerRange(const KtPointerRange<U>& other)
        : KtPointerRange(other[0], other.count())
    {
    }
    int count() const { return _count; }
    T* operator[](int i) const { return _first + i; }
    Iterator begin() const { return Iterator(_first); }
    Iterator end() const { return Iterator(_first + _count); }

private:
    T* _first;
    int _count;
};

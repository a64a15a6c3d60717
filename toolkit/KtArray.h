// KtArray and KtDArray: arrays that hold exactly their element count.
#pragma once

#include <cstdlib>
#include <new>
#include <type_traits>
#include <utility>

#include "toolkit/KtMemory.h"

// Storage is always exactly count() elements: no spare capacity, no growth
// factor. Callers that grow an array while reading enlarge it in chunks and
// trim it once at the end. Running out of memory ends the process through
// KtMemoryExhausted.
template <class T>
class KtArray
{
public:
    explicit KtArray(int n = 0) { _resize(n); }
    KtArray(const KtArray& other) { setElements(other); }
    KtArray(KtArray&& other) noexcept
        : _data(other._data)
        , _count(other._count)
    {
        other._data = nullptr;
        other._count = 0;
    }
    KtArray& operator=(const KtArray& other)
    {
        if (this != &other)
            setElements(other);
        return *this;
    }
    KtArray& operator=(KtArray&& other) noexcept
    {
        std::swap(_data, other._data);
        std::swap(_count, other._count);
        return *this;
    }
    ~KtArray() { _clear(); }

    int count() const { return _count; }
    T& operator[](int i) { return _data[i]; }
    const T& operator[](int i) const { return _data[i]; }
    T* data() { return _data; }
    const T* data() const { return _data; }
    T* begin() { return _data; }
    T* end() { return _data + _count; }
    const T* begin() const { return _data; }
    const T* end() const { return _data + _count; }

    // Changes the count to n, keeping the first elements; new elements are
    // default-constructed. n = 0 releases the storage; an unchanged n does
    // nothing.
    void _resize(int n)
    {
        if (n == _count)
            return;
        if (n <= 0)
        {
            _clear();
            return;
        }
        int kept = n < _count ? n : _count;
        if constexpr (std::is_trivially_copyable_v<T>)
        {
            _data = _allocate(n, _data);
        }
        else
        {
            T* grown = _allocate(n, nullptr);
            for (int i = 0; i < kept; ++i)
                new (grown + i) T(std::move(_data[i]));
            _destroy();
            _data = grown;
        }
        for (int i = kept; i < n; ++i)
            new (_data + i) T();
        _count = n;
    }
    void _realloc(int n) { _resize(n); }

    void _clear()
    {
        _destroy();
        _data = nullptr;
        _count = 0;
    }

    // Element-wise copy of another array, resizing this one to its count.
    void setElements(const KtArray& other)
    {
        if (this == &other)
            return;
        _resize(other._count);
        for (int i = 0; i < _count; ++i)
            _data[i] = other._data[i];
    }

private:
    // Plain data is reallocated in place; other types get fresh storage.
    static T* _allocate(int n, T* old)
    {
        void* storage = nullptr;
        if (static_cast<size_t>(n) <= static_cast<size_t>(-1) / sizeof(T))
            storage = std::realloc(static_cast<void*>(old),
                                   static_cast<size_t>(n) * sizeof(T));
        if (!storage)
            KtMemoryExhausted();
        return static_cast<T*>(storage);
    }

    void _destroy()
    {
        if constexpr (!std::is_trivially_destructible_v<T>)
            for (int i = 0; i < _count; ++i)
                _data[i].~T();
        std::free(_data);
    }

    T* _data = nullptr;
    int _count = 0;
};

// A KtArray that can also be assigned from any KtArray of the same type.
template <class T>
class KtDArray : public KtArray<T>
{
public:
    using KtArray<T>::KtArray;
    KtDArray() = default;
    KtDArray(const KtArray<T>& other)
        : KtArray<T>(other)
    {
    }
    KtDArray& operator=(const KtArray<T>& other)
    {
        this->setElements(other);
        return *this;
    }
};

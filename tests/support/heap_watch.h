// HeapWatch: the most heap memory that a piece of code holds at once, as
// AddressSanitizer sees every allocation. Without it nothing is measured and
// the growth reads 0.
#pragma once

#include <algorithm>
#include <cstddef>
#include <sstream>
#include <string>

#include "support/test_helpers.h"

#if defined(__SANITIZE_ADDRESS__)
// From the sanitizer runtime (not every compiler ships its header).
extern "C" int __sanitizer_install_malloc_and_free_hooks(
    void (*allocated)(const volatile void*, size_t),
    void (*freed)(const volatile void*));
extern "C" size_t __sanitizer_get_allocated_size(const volatile void* block);
#endif

class HeapWatch
{
public:
    HeapWatch()
    {
#if defined(__SANITIZE_ADDRESS__)
        static const bool installed =
            __sanitizer_install_malloc_and_free_hooks(&_allocated, &_freed);
        (void)installed;
#endif
        _base = _current;
        _peak = _current;
    }

    // Bytes above what was held when the watch started.
    size_t peakGrowth() const
    {
        return _peak > _base ? _peak - _base : 0;
    }

private:
#if defined(__SANITIZE_ADDRESS__)
    static void _allocated(const volatile void*, size_t size)
    {
        _current += size;
        _peak = std::max(_peak, _current);
    }
    static void _freed(const volatile void* block)
    {
        size_t size = __sanitizer_get_allocated_size(block);
        _current -= std::min(size, _current);
    }
#endif

    static inline size_t _current = 0;
    static inline size_t _peak = 0;
    size_t _base = 0;
};

// Reads text into the document and returns the printed chain; the peak heap
// growth of the read goes to *peak when asked for.
template <class Document>
std::string
scanWatched(Document& document, const std::string& text, size_t* peak = nullptr)
{
    std::istringstream in(text);
    HeapWatch watch;
    document.scanFrom(in);
    if (peak)
        *peak = watch.peakGrowth();
    return printedChain();
}

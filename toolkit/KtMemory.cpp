// The end of a process that runs out of memory.
#include "toolkit/KtMemory.h"

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <new>

namespace
{

std::terminate_handler otherTerminations = nullptr;

// new calls this when it finds no memory, and would throw std::bad_alloc
// if it returned.
void onNewFailure()
{
    KtMemoryExhausted();
}

// A std::bad_alloc that nothing catches (std::bad_array_new_length, say,
// which new throws without asking for memory) ends like any other failed
// allocation; other exceptions keep the usual end.
void onTerminate()
{
    if (std::exception_ptr pending = std::current_exception())
    {
        try
        {
            std::rethrow_exception(pending);
        }
        catch (const std::bad_alloc&)
        {
            KtMemoryExhausted();
        }
        catch (...)
        {
        }
    }
    if (otherTerminations)
        otherTerminations();
    std::abort();
}

} // namespace

void KtMemoryExhausted()
{
    std::fputs("Memory allocation failed\n", stderr);
    std::abort();
}

void KtInstallMemoryHandler()
{
    std::set_new_handler(onNewFailure);
    std::terminate_handler previous = std::set_terminate(onTerminate);
    if (previous != onTerminate)
        otherTerminations = previous;
}

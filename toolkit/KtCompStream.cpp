// Compressed file streams. For now plain files only: the access checks and
// the open; the decompression commands come with the stream work.
#include "toolkit/KtCompStream.h"

#include "toolkit/KtFile.h"

int KtCompIFStream::_next_instance = 0;
int KtCompOFStream::_next_instance = 0;

KtCompIFStream::KtCompIFStream()
    : _instance(_next_instance++)
{
}

KtCompIFStream::~KtCompIFStream() = default;

void KtCompIFStream::open(const char* path, std::ios_base::openmode mode)
{
    if (!KtPathCheckReadAccess(path))
    {
        setstate(std::ios_base::failbit);
        return;
    }
    std::ifstream::open(path, mode);
}

KtCompOFStream::KtCompOFStream()
    : _instance(_next_instance++)
{
}

KtCompOFStream::~KtCompOFStream() = default;

void KtCompOFStream::open(const char* path, std::ios_base::openmode mode)
{
    if (!KtPathCheckWriteAccess(path))
        setstate(std::ios_base::failbit);
    std::ofstream::open(path, mode);
}

// File streams that read and write compressed files transparently through
// the system's compression commands and a named pipe.
#pragma once

#include <fstream>

// Opens a file for reading; when the name ends in ".Z", ".gz" or ".jpeg"
// (or only such a sibling of the named file exists) the data is read through
// the matching decompression command. Failures set the stream's fail state
// and record their reasons in the error handler.
class KtCompIFStream : public std::ifstream
{
public:
    KtCompIFStream();
    KtCompIFStream(const KtCompIFStream&) = delete;
    KtCompIFStream& operator=(const KtCompIFStream&) = delete;
    ~KtCompIFStream();

    void open(const char* path,
              std::ios_base::openmode mode = std::ios_base::in);

    // 1 when the stream reads through a decompression command; such a stream
    // must be read to its end before it is closed.
    int compressed() const { return _compressed; }

private:
    int _instance;
    int _compressed = 0;
    static int _next_instance;
};

// Opens a file for writing; a name ending in ".Z", ".gz" or ".jpeg" is
// compressed by the matching command.
class KtCompOFStream : public std::ofstream
{
public:
    KtCompOFStream();
    KtCompOFStream(const KtCompOFStream&) = delete;
    KtCompOFStream& operator=(const KtCompOFStream&) = delete;
    ~KtCompOFStream();

    void open(const char* path,
              std::ios_base::openmode mode = std::ios_base::out);

private:
    int _instance;
    static int _next_instance;
};

// File streams that read and write compressed files transparently through
// the system's compression commands and a named pipe.
#pragma once

#include <fstream>
#include <functional>
#include <memory>

#include "toolkit/KtStr.h"

// The named pipe and command behind a compressed stream, and the buffer that
// writes into such a pipe; only the streams' own source sees them.
class Kt_CompPipe;
class Kt_PipeWriteBuf;

// Opens a file for reading; when the name ends in ".Z", ".gz" or ".jpeg"
// (or only such a sibling of the named file exists) the data is read through
// the matching decompression command (uncompress, gunzip, djpeg), found
// through PATH. Failures set the stream's fail state and record their
// reasons in the error handler. A command that fails or meets a corrupt file
// ends the data early; close() at the end of the data reports it.
class KtCompIFStream : public std::ifstream
{
public:
    KtCompIFStream();
    KtCompIFStream(const KtCompIFStream&) = delete;
    KtCompIFStream& operator=(const KtCompIFStream&) = delete;
    ~KtCompIFStream();

    void open(const char* path,
              std::ios_base::openmode mode = std::ios_base::in);
    // Closes the file. A decompression command that is still running is
    // stopped: closing before the end never waits for the rest of the data.
    // Closing at the end waits for the command, and when it failed (a
    // truncated or corrupt file, whose data may have ended early) records
    // why and sets the fail state; the destructor closes without that check.
    void close();

    // 1 when the stream reads through a decompression command.
    int compressed() const { return _compressed; }
    // Taken from a per-class counter at construction; names the pipe.
    int instance() const { return _instance; }

private:
    void _openCompressed(const char* file, const char* type);
    void _createNamedPipe();
    const char* _spawnUncompress(const char* file, const char* type);
    void _removeNamedPipe();
    void _abandon();
    void _close(bool checkCommand);

    int _instance;
    int _compressed = 0;
    std::unique_ptr<Kt_CompPipe> _pipe;
    // The running decompression command and its file, for the message when
    // it fails.
    const char* _tool = nullptr;
    KtStr _file;
    static int _next_instance;
};

// Opens a file for writing; a name ending in ".Z", ".gz" or ".jpeg" is
// compressed by the matching command (compress, gzip -9, cjpeg).
class KtCompOFStream : public std::ofstream
{
public:
    KtCompOFStream();
    KtCompOFStream(const KtCompOFStream&) = delete;
    KtCompOFStream& operator=(const KtCompOFStream&) = delete;
    ~KtCompOFStream();

    void open(const char* path,
              std::ios_base::openmode mode = std::ios_base::out);
    // Closes the file. For a compressed file this waits until the command
    // has written all of it; the fail state is then set when a write or the
    // command failed, so the file is known to be complete and correct only
    // when the stream is still good after close().
    void close();
    bool is_open() const;
    // The buffer in use, which for a compressed file is not the base file
    // buffer.
    std::streambuf* rdbuf() const { return std::ostream::rdbuf(); }

    int instance() const { return _instance; }

private:
    void _openCompressed(const char* file, const char* type);
    void _createNamedPipe();
    const char* _spawnCompress(const char* file, const char* type);
    void _removeNamedPipe();
    void _abandon();

    int _instance;
    // An exit status of the compressor that, like 0, means success.
    int _alsoComplete = 0;
    std::unique_ptr<Kt_CompPipe> _pipe;
    std::unique_ptr<Kt_PipeWriteBuf> _pipeBuffer;
    static int _next_instance;
};

// Saves a document: the write check, a KtCompOFStream (so that a name ending
// in ".Z", ".gz" or ".jpeg" is compressed), print, and a close that confirms
// the data reached the file (a full disk or a failing compressor shows only
// then). Failures are recorded: "Unable to open '%s'." or "Unable to write
// '%s'." over their cause; a failed write check adds nothing to its own
// messages.
void KtSaveDocument(const char* path,
                    const std::function<void(std::ostream&)>& print);

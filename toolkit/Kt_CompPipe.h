// The named pipe and the background (de)compression command behind one
// compressed file stream, and the buffer that writes into such a pipe;
// included only by the streams' source, never by their callers.
#pragma once

#include <streambuf>
#include <sys/types.h>

// Owns the pipe's name in the file system, the command's process and, while
// the stream opens its own end, guard descriptors on the pipe. Failures are
// returned as errno values; the streams word the messages.
//
// Order of events: create() makes the pipe; startWriting()/startReading()
// open it from both sides, so that no open ever waits for a partner that
// never comes, and start the command on one of those ends; the stream then
// opens the pipe by name, which returns at once; releaseGuards() leaves the
// command as the stream's only partner, so that the command's exit shows as
// end of file (or as a failed write); remove() deletes the name; finish()
// reaps the command. The destructor does whatever of this is left.
class Kt_CompPipe
{
public:
    Kt_CompPipe() = default;
    Kt_CompPipe(const Kt_CompPipe&) = delete;
    Kt_CompPipe& operator=(const Kt_CompPipe&) = delete;
    ~Kt_CompPipe();

    // Makes the pipe "<dir>/<stem><instance>.<process id>" in "/usr/tmp"
    // when that directory exists, else in "/tmp". An existing file or link of
    // that name is never followed nor replaced: that fails with EEXIST.
    int create(const char* stem, int instance);
    // The pipe's path; null when no pipe is held.
    const char* name() const { return _made ? _name : nullptr; }
    // The path that create() last tried, for its failure message.
    const char* attemptedName() const { return _name; }

    // Starts the command at toolPath with the pipe as its standard output
    // (and an empty standard input).
    int startWriting(const char* toolPath, const char* const argv[]);
    // Starts the command at toolPath with the pipe as its standard input and
    // outputFd as its standard output. Takes ownership of outputFd.
    int
    startReading(const char* toolPath, const char* const argv[], int outputFd);

    void releaseGuards();
    // Deletes the pipe's name, if one is held; open ends keep working.
    void remove();
    // Waits for the command. With abandon, a command still running is
    // killed first: its reader has stopped and wants no more. Returns the
    // command's exit status, -1 when a signal ended it, 0 when there was no
    // command or its outcome cannot be known.
    int finish(bool abandon);

private:
    int _openGuards();
    int _spawn(const char* toolPath,
               const char* const argv[],
               int inputFd,
               int outputFd);

    // Room for "/usr/tmp/compofstream" and two numbers.
    char _name[81] = {};
    bool _made = false;
    int _guardRead = -1;
    int _guardWrite = -1;
    pid_t _child = -1;
};

// A stream buffer on the writing end of a pipe. A compressor that ends early
// must not kill the process with SIGPIPE, yet nothing process-wide may
// change for that: each flush runs with SIGPIPE blocked for the calling
// thread only, and a SIGPIPE raised by the flush is taken off the pending
// set before the old mask returns, so the write just fails (EPIPE) and the
// stream goes bad.
class Kt_PipeWriteBuf : public std::streambuf
{
public:
    Kt_PipeWriteBuf() = default;
    Kt_PipeWriteBuf(const Kt_PipeWriteBuf&) = delete;
    Kt_PipeWriteBuf& operator=(const Kt_PipeWriteBuf&) = delete;
    ~Kt_PipeWriteBuf() override;

    // Opens the path for writing, close-on-exec; 0 or an errno value.
    int open(const char* path);
    bool isOpen() const { return _fd >= 0; }
    // Writes what is buffered and closes; false when any write failed.
    bool close();

protected:
    int_type overflow(int_type c) override;
    int sync() override;

private:
    bool _flush();

    static constexpr int kBufferSize = 8192;
    int _fd = -1;
    bool _failed = false;
    char _buffer[kBufferSize];
};

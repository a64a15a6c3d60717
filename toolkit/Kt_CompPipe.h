// The named pipe and the background (de)compression command behind one
// compressed file stream, and the buffer that writes into such a pipe;
// included only by the streams' source (and their tests), never by their
// callers.
#pragma once

#include <csignal>
#include <streambuf>
#include <string>
#include <sys/types.h>

// Owns the pipe's name in the file system, the command's process and, while
// the stream opens its own end, guard descriptors on the pipe. Failures are
// returned as errno values; the streams word the messages.
//
// Order of events: create() makes the pipe and opens it from both sides (the
// guards), so that no open ever waits for a partner that never comes; the
// stream then opens its own end by name, which returns at once; remove()
// deletes the names; startWriting()/startReading() start the command on one
// of the guards; releaseGuards() leaves the command as the stream's only
// partner, so that the command's exit shows as end of file (or as a failed
// write); finish() reaps the command. The destructor does whatever of this
// is left.
//
// The names exist only from create() to remove(), and only inside a
// directory of this process's own, so no other user can plant or take them.
// In that window the catchable signals that end a process are held back and
// take effect once the names are gone.
class Kt_CompPipe
{
public:
    Kt_CompPipe() = default;
    Kt_CompPipe(const Kt_CompPipe&) = delete;
    Kt_CompPipe& operator=(const Kt_CompPipe&) = delete;
    ~Kt_CompPipe();

    // Makes the pipe "<stem><instance>.<process id>" in a new private
    // directory (mode 0700) inside the first of the candidate directories
    // where one can be made: "/usr/tmp", else "/tmp".
    int create(const char* stem, int instance);
    // The pipe's path; null when no pipe is held.
    const char* name() const { return _made ? _name.c_str() : nullptr; }
    // The path that create() last tried, for its failure message.
    const char* attemptedName() const { return _name.c_str(); }

    // Starts the command at toolPath with the pipe as its standard output
    // (and an empty standard input).
    int startWriting(const char* toolPath, const char* const argv[]);
    // Starts the command at toolPath with the pipe as its standard input and
    // outputFd as its standard output. Takes ownership of outputFd.
    int
    startReading(const char* toolPath, const char* const argv[], int outputFd);

    void releaseGuards();
    // Deletes the pipe's name and its directory, if held; open ends keep
    // working.
    void remove();
    // Waits for the command. With abandon, a command still running is
    // killed first: its reader has stopped and wants no more. Returns the
    // command's exit status, -1 when a signal ended it, 0 when there was no
    // command or its outcome cannot be known.
    int finish(bool abandon);

    // The directories tried in turn for the private directory; null
    // restores "/usr/tmp" then "/tmp". Tests use their own.
    static void setCandidateDirectories(const char* const* candidates);

private:
    int _makeNames(const char* stem, int instance);
    int _openGuards();
    void _holdSignals();
    void _releaseSignals();
    int _spawn(const char* toolPath,
               const char* const argv[],
               int inputFd,
               int outputFd);

    std::string _directory;
    std::string _name;
    bool _made = false;
    bool _holding = false;
    sigset_t _savedSignals;
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

// The named pipe and background command of a compressed file stream: made
// with mkfifo and started with posix_spawn, never through a shell, so no file
// name can ever be read as a command.
#include "toolkit/Kt_CompPipe.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <spawn.h>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace
{

// The traditional place first, where it exists; today's systems have /tmp.
constexpr const char* kDefaultCandidates[] = {"/usr/tmp", "/tmp", nullptr};
const char* const* candidateDirectories = kDefaultCandidates;

// Each pipe lives in a directory of its own under this name.
constexpr const char* kPrivateDirectory = "compstream.XXXXXX";

// The signals that end a process and can be caught or held back. SIGKILL
// cannot: a process killed with it between create() and remove() leaves the
// names behind, and that window is a few system calls long.
constexpr int kTerminationSignals[] = {SIGHUP,
                                       SIGINT,
                                       SIGQUIT,
                                       SIGTERM,
                                       SIGALRM,
                                       SIGUSR1,
                                       SIGUSR2,
                                       SIGPROF,
                                       SIGVTALRM,
                                       SIGXCPU,
                                       SIGXFSZ};

// Our descriptors are close-on-exec, so that no other command keeps an end
// of this pipe open (a second writer would hide the end of the data, a
// second reader would keep a dead compressor's partner alive), and they sit
// above the standard three, so that setting up the command's standard input
// and output can never overwrite one of them with another.
int aboveStandard(int fd)
{
    if (fd < 0 || fd > STDERR_FILENO)
        return fd;
    int moved = fcntl(fd, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    int error = errno;
    ::close(fd);
    errno = error;
    return moved;
}

// O_NOFOLLOW: the name must still be our pipe, never a link put in its place.
int openPipeEnd(const char* path, int flags)
{
    return aboveStandard(::open(path, flags | O_CLOEXEC | O_NOFOLLOW));
}

void closeFd(int& fd)
{
    if (fd >= 0)
        ::close(fd);
    fd = -1;
}

pid_t waitFor(pid_t pid, int* status, int options)
{
    pid_t done;
    do
        done = waitpid(pid, status, options);
    while (done < 0 && errno == EINTR);
    return done;
}

bool sigpipePending()
{
    sigset_t pending;
    sigpending(&pending);
    return sigismember(&pending, SIGPIPE) == 1;
}

// Blocks SIGPIPE for this thread during one flush; a SIGPIPE that the flush
// raised is consumed before the caller's mask returns. One that was pending
// already belongs to the caller and is left alone.
class SigpipeBlock
{
public:
    SigpipeBlock()
    {
        sigemptyset(&_sigpipe);
        sigaddset(&_sigpipe, SIGPIPE);
        pthread_sigmask(SIG_BLOCK, &_sigpipe, &_saved);
        _wasPending = sigpipePending();
    }
    ~SigpipeBlock()
    {
        if (!_wasPending && sigpipePending())
        {
            const timespec noWait = {0, 0};
            while (sigtimedwait(&_sigpipe, nullptr, &noWait) < 0 &&
                   errno == EINTR)
            {
            }
        }
        pthread_sigmask(SIG_SETMASK, &_saved, nullptr);
    }
    SigpipeBlock(const SigpipeBlock&) = delete;
    SigpipeBlock& operator=(const SigpipeBlock&) = delete;

private:
    sigset_t _sigpipe;
    sigset_t _saved;
    bool _wasPending;
};

} // namespace

Kt_CompPipe::~Kt_CompPipe()
{
    finish(true);
    remove();
}

void Kt_CompPipe::setCandidateDirectories(const char* const* candidates)
{
    candidateDirectories = candidates ? candidates : kDefaultCandidates;
}

// On failure nothing is left: no name, no guard, no signal held back.
int Kt_CompPipe::create(const char* stem, int instance)
{
    _holdSignals();
    int error = _makeNames(stem, instance);
    if (!error)
        error = _openGuards();
    if (error)
    {
        releaseGuards();
        remove();
    }
    return error;
}

// A directory that does not exist, is not writable or is on a read-only
// file system is passed over for the next one.
int Kt_CompPipe::_makeNames(const char* stem, int instance)
{
    int error = ENOENT;
    for (const char* const* candidate = candidateDirectories; *candidate;
         ++candidate)
    {
        _directory = std::string(*candidate) + "/" + kPrivateDirectory;
        _name = _directory + "/" + stem + std::to_string(instance) + "." +
                std::to_string(getpid());
        if (mkdtemp(&_directory[0]))
        {
            _name.replace(0, _directory.size(), _directory);
            break;
        }
        error = errno;
        _directory.clear();
    }
    if (_directory.empty())
        return error;
    // Private data passes through the pipe: only its owner may open it.
    if (mkfifo(_name.c_str(), 0600) != 0)
        return errno;
    _made = true;
    return 0;
}

void Kt_CompPipe::_holdSignals()
{
    if (_holding)
        return;
    sigset_t termination;
    sigemptyset(&termination);
    for (int signal : kTerminationSignals)
        sigaddset(&termination, signal);
    pthread_sigmask(SIG_BLOCK, &termination, &_savedSignals);
    _holding = true;
}

// A signal that came meanwhile takes effect here, with the names gone.
void Kt_CompPipe::_releaseSignals()
{
    if (!_holding)
        return;
    _holding = false;
    pthread_sigmask(SIG_SETMASK, &_savedSignals, nullptr);
}

// Opening one end of a pipe waits until the other end is open, and reading
// a pipe that has no writer yet finds its end at once. So both guards are
// open before the stream opens its own end or the command starts: the guard
// reader opens without waiting and lets the guard writer open at once; the
// stream's open finds its partner present; the command inherits one of the
// guards instead of opening the pipe itself, and the stream keeps a partner
// whether the command is still starting, done or dead.
int Kt_CompPipe::_openGuards()
{
    _guardRead = openPipeEnd(_name.c_str(), O_RDONLY | O_NONBLOCK);
    if (_guardRead < 0)
        return errno;
    // A command that reads this end must wait for data, not find none.
    int flags = fcntl(_guardRead, F_GETFL);
    if (flags < 0 || fcntl(_guardRead, F_SETFL, flags & ~O_NONBLOCK) != 0)
        return errno;
    _guardWrite = openPipeEnd(_name.c_str(), O_WRONLY);
    if (_guardWrite < 0)
        return errno;
    return 0;
}

int Kt_CompPipe::startWriting(const char* toolPath, const char* const argv[])
{
    return _spawn(toolPath, argv, -1, _guardWrite);
}

int Kt_CompPipe::startReading(const char* toolPath,
                              const char* const argv[],
                              int outputFd)
{
    outputFd = aboveStandard(outputFd);
    if (outputFd < 0)
        return errno;
    int error = _spawn(toolPath, argv, _guardRead, outputFd);
    ::close(outputFd);
    return error;
}

int Kt_CompPipe::_spawn(const char* toolPath,
                        const char* const argv[],
                        int inputFd,
                        int outputFd)
{
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    // A command started in the background reads nothing from the terminal.
    if (inputFd < 0)
        posix_spawn_file_actions_addopen(
            &actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    else
        posix_spawn_file_actions_adddup2(&actions, inputFd, STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, outputFd, STDOUT_FILENO);
#if defined(__GLIBC__) &&                                                      \
    (__GLIBC__ > 2 || (__GLIBC__ == 2 && __GLIBC_MINOR__ >= 34))
    // The stream's own end of an earlier pipe is opened by the standard file
    // buffer, without close-on-exec; the command must not hold it.
    posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);
#endif

    // The command starts with SIGPIPE in force, whatever the caller does with
    // it, so that a reader that stops early always ends it.
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t signals;
    sigemptyset(&signals);
    posix_spawnattr_setsigmask(&attributes, &signals);
    sigaddset(&signals, SIGPIPE);
    posix_spawnattr_setsigdefault(&attributes, &signals);
    posix_spawnattr_setflags(&attributes,
                             POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);

    pid_t child = -1;
    int error = posix_spawn(&child,
                            toolPath,
                            &actions,
                            &attributes,
                            const_cast<char* const*>(argv),
                            environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    if (error == 0)
        _child = child;
    return error;
}

void Kt_CompPipe::releaseGuards()
{
    closeFd(_guardRead);
    closeFd(_guardWrite);
}

void Kt_CompPipe::remove()
{
    if (_made)
        ::unlink(_name.c_str());
    if (!_directory.empty())
        ::rmdir(_directory.c_str());
    _made = false;
    _directory.clear();
    _releaseSignals();
}

int Kt_CompPipe::finish(bool abandon)
{
    releaseGuards();
    if (_child < 0)
        return 0;
    int status = 0;
    pid_t done = waitFor(_child, &status, abandon ? WNOHANG : 0);
    if (done == 0)
    {
        kill(_child, SIGKILL);
        done = waitFor(_child, &status, 0);
    }
    _child = -1;
    // Reaped elsewhere (SIGCHLD ignored by the application): the outcome is
    // unknown and taken as success.
    if (done < 0)
        return 0;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

Kt_PipeWriteBuf::~Kt_PipeWriteBuf()
{
    close();
}

int Kt_PipeWriteBuf::open(const char* path)
{
    _fd = openPipeEnd(path, O_WRONLY);
    if (_fd < 0)
        return errno;
    _failed = false;
    setp(_buffer, _buffer + kBufferSize);
    return 0;
}

bool Kt_PipeWriteBuf::close()
{
    if (_fd < 0)
        return false;
    bool ok = _flush() && !_failed;
    closeFd(_fd);
    setp(nullptr, nullptr);
    return ok;
}

Kt_PipeWriteBuf::int_type Kt_PipeWriteBuf::overflow(int_type c)
{
    if (_fd < 0 || !_flush())
        return traits_type::eof();
    if (!traits_type::eq_int_type(c, traits_type::eof()))
    {
        *pptr() = traits_type::to_char_type(c);
        pbump(1);
    }
    return traits_type::not_eof(c);
}

int Kt_PipeWriteBuf::sync()
{
    return _fd >= 0 && _flush() ? 0 : -1;
}

// After one failed write nothing more is sent: the data would be incomplete.
bool Kt_PipeWriteBuf::_flush()
{
    if (_failed)
        return false;
    SigpipeBlock block;
    const char* next = pbase();
    while (next < pptr())
    {
        ssize_t written = ::write(_fd, next, pptr() - next);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
        {
            _failed = true;
            return false;
        }
        next += written;
    }
    setp(_buffer, _buffer + kBufferSize);
    return true;
}

// Compressed file streams: a name's extension picks the command that
// (de)compresses the data through a named pipe; other names are plain files.
#include "toolkit/KtCompStream.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

#include "toolkit/KtError.h"
#include "toolkit/KtFile.h"
#include "toolkit/KtStr.h"
#include "toolkit/Kt_CompPipe.h"

namespace
{

// One row per compression, tested in this order against the end of a name.
// A command that takes no flag has a null one. Besides 0, a compressor may
// have one more exit status that still means its output is complete:
// compress exits 2 when the data did not shrink, having written it anyway.
struct Compression
{
    const char* extension;
    const char* type;
    const char* inputTool;
    const char* inputFlag;
    const char* outputTool;
    const char* outputFlag;
    int outputAlsoComplete;
};

constexpr Compression kCompressions[] = {
    {".Z", "Z", "uncompress", "-c", "compress", nullptr, 2},
    {".gz", "gz", "gunzip", "-c", "gzip", "-9", 0},
    {".jpeg", "jpeg", "djpeg", "-gsi", "cjpeg", "-gsi", 0},
};

enum Direction
{
    kDecompress,
    kCompress
};

constexpr const char* kInputPipeStem = "compifstream";
constexpr const char* kOutputPipeStem = "compofstream";

// Case matters, and at least one character must come before the extension:
// "x.GZ" and ".gz" are plain names.
int compressionOfPath(const char* path, const char** type)
{
    std::size_t length = std::strlen(path);
    for (const Compression& compression : kCompressions)
    {
        std::size_t extension = std::strlen(compression.extension);
        if (length > extension &&
            std::strcmp(path + length - extension, compression.extension) == 0)
        {
            *type = compression.type;
            return 1;
        }
    }
    return 0;
}

const Compression* compressionOfType(const char* type)
{
    for (const Compression& compression : kCompressions)
        if (std::strcmp(compression.type, type) == 0)
            return &compression;
    return nullptr;
}

// A name that does not exist may stand for its compressed sibling; ".gz" is
// preferred to ".Z".
KtStr resolveCompressedPath(const char* path)
{
    if (KtFileExists(path))
        return path;
    for (const char* extension : {".gz", ".Z"})
    {
        KtStr sibling = KtStr(path) + extension;
        if (KtFileExists(sibling))
            return sibling;
    }
    return path;
}

// An empty entry is skipped, so the current directory is never searched
// through one.
int findInPath(const char* command, KtStr* out)
{
    const char* entry = std::getenv("PATH");
    if (!entry)
        return 0;
    while (*entry)
    {
        if (*entry == ':')
        {
            ++entry;
            continue;
        }
        const char* end = std::strchr(entry, ':');
        std::size_t length = end ? end - entry : std::strlen(entry);
        KtStr candidate = KtStr(entry).left(static_cast<int>(length));
        if (candidate[candidate.length() - 1] != '/')
            candidate += "/";
        candidate += command;
        if (KtFileExists(candidate) && KtFileHaveExecuteAccess(candidate))
        {
            if (out)
                *out = candidate;
            return 1;
        }
        entry += length;
    }
    return 0;
}

// The compression of a type and the full path of its command for one
// direction; null, with the reason recorded, when either is missing. The
// messages read "Cannot find command 'gunzip' to uncompress ..." and
// "... to compress ...".
const Compression* usableCompression(const char* type,
                                     Direction direction,
                                     const char* file,
                                     KtStr* toolPath)
{
    const Compression* compression = compressionOfType(type);
    if (!compression)
    {
        KtError("Unknown compression extension '%s'.", type);
        return nullptr;
    }
    bool decompress = direction == kDecompress;
    const char* tool =
        decompress ? compression->inputTool : compression->outputTool;
    if (!findInPath(tool, toolPath))
    {
        KtError("Cannot find command '%s' to %s\n'%s'.\nThis command needs to "
                "be in your path.",
                tool,
                decompress ? "uncompress" : "compress",
                file);
        return nullptr;
    }
    return compression;
}

// The command takes the file as an argument; a name that starts with '-'
// would read as an option, so it is given as "./-name".
KtStr commandArgument(const char* file)
{
    return file[0] == '-' ? KtStr("./") + file : KtStr(file);
}

void createNamedPipe(Kt_CompPipe& pipe, const char* stem, int instance)
{
    int error = pipe.create(stem, instance);
    if (error == 0)
        return;
    KtError("%s", std::strerror(error));
    KtError("Unable to create named pipe \"%s\".", pipe.attemptedName());
}

// The same words for both directions, deliberately.
void reportSpawnFailure(int error)
{
    KtError("%s", std::strerror(error));
    KtError("Unable to decompress file.");
}

} // namespace

int KtCompIFStream::_next_instance = 0;
int KtCompOFStream::_next_instance = 0;

KtCompIFStream::KtCompIFStream()
    : _instance(_next_instance++)
    , _pipe(std::make_unique<Kt_CompPipe>())
{
}

KtCompIFStream::~KtCompIFStream()
{
    if (is_open())
        _close(false);
}

// The access check names the caller's path, not the resolved sibling, so the
// user reads about the name that was given.
void KtCompIFStream::open(const char* path, std::ios_base::openmode mode)
{
    if (is_open())
    {
        setstate(std::ios_base::failbit);
        return;
    }
    if (!path)
        path = "";
    const char* type = nullptr;
    KtStr name = path;
    if (!compressionOfPath(path, &type))
        name = resolveCompressedPath(path);
    _compressed = compressionOfPath(name, &type);
    if (_compressed && KtFileExists(name))
    {
        _openCompressed(name, type);
        return;
    }
    if (!KtPathCheckReadAccess(path))
    {
        setstate(std::ios_base::failbit);
        return;
    }
    std::ifstream::open(name.text(), mode);
}

void KtCompIFStream::close()
{
    _close(true);
}

// A command whose output was read to its end has finished or is about to,
// so it is waited for; one that still has data is stopped.
void KtCompIFStream::_close(bool checkCommand)
{
    bool atEnd = _tool && is_open() &&
                 traits_type::eq_int_type(rdbuf()->sgetc(), traits_type::eof());
    std::ifstream::close();
    int status = _pipe->finish(!atEnd);
    _removeNamedPipe();
    if (checkCommand && atEnd && status != 0)
    {
        if (status > 0)
            KtError("'%s' ended with status %d on '%s'.",
                    _tool,
                    status,
                    _file.text());
        else
            KtError(
                "'%s' was stopped by a signal on '%s'.", _tool, _file.text());
        KtError("Unable to decompress file.");
        setstate(std::ios_base::failbit);
    }
    _tool = nullptr;
}

// An error pending from before this open also stops it.
void KtCompIFStream::_openCompressed(const char* file, const char* type)
{
    if (!KtPathCheckReadAccess(file))
    {
        setstate(std::ios_base::failbit);
        return;
    }
    _createNamedPipe();
    if (theExceptObj.errorOccurred())
        return _abandon();
    const char* pipe = _spawnUncompress(file, type);
    if (!pipe)
        return _abandon();
    std::ifstream::open(pipe, std::ios_base::in);
    int error = errno;
    _pipe->releaseGuards();
    // Both ends are open: the name has served its purpose, and removing it
    // now leaves nothing behind even if the process ends abruptly.
    _removeNamedPipe();
    if (!is_open())
    {
        reportSpawnFailure(error);
        _abandon();
    }
}

void KtCompIFStream::_createNamedPipe()
{
    createNamedPipe(*_pipe, kInputPipeStem, _instance);
}

const char* KtCompIFStream::_spawnUncompress(const char* file, const char* type)
{
    KtStr toolPath;
    const Compression* compression =
        usableCompression(type, kDecompress, file, &toolPath);
    if (!compression)
        return nullptr;
    KtStr argument = commandArgument(file);
    const char* argv[] = {
        compression->inputTool, compression->inputFlag, argument, nullptr};
    int error = _pipe->startWriting(toolPath, argv);
    if (error)
    {
        reportSpawnFailure(error);
        return nullptr;
    }
    _tool = compression->inputTool;
    _file = file;
    return _pipe->name();
}

void KtCompIFStream::_removeNamedPipe()
{
    _pipe->remove();
}

// Ends a failed open: no command or pipe outlives it.
void KtCompIFStream::_abandon()
{
    _pipe->finish(true);
    _removeNamedPipe();
    _tool = nullptr;
    setstate(std::ios_base::failbit);
}

KtCompOFStream::KtCompOFStream()
    : _instance(_next_instance++)
    , _pipe(std::make_unique<Kt_CompPipe>())
    , _pipeBuffer(std::make_unique<Kt_PipeWriteBuf>())
{
}

KtCompOFStream::~KtCompOFStream()
{
    if (is_open())
        close();
}

bool KtCompOFStream::is_open() const
{
    return _pipeBuffer->isOpen() || std::ofstream::is_open();
}

// A plain file is opened even when its check failed; the stream stays failed
// then, but the file is created as the user asked.
void KtCompOFStream::open(const char* path, std::ios_base::openmode mode)
{
    if (is_open())
    {
        setstate(std::ios_base::failbit);
        return;
    }
    if (!path)
        path = "";
    const char* type = nullptr;
    if (compressionOfPath(path, &type))
        return _openCompressed(path, type);
    int writable = KtPathCheckWriteAccess(path);
    std::ofstream::open(path, mode);
    if (!writable)
        setstate(std::ios_base::failbit);
}

void KtCompOFStream::close()
{
    if (!_pipeBuffer->isOpen())
        return std::ofstream::close();
    std::ios_base::iostate state = rdstate();
    bool written = _pipeBuffer->close();
    std::ios::rdbuf(std::ofstream::rdbuf());
    int status = _pipe->finish(false);
    bool compressed = status == 0 || status == _alsoComplete;
    _removeNamedPipe();
    clear(state);
    if (!written || !compressed)
        setstate(std::ios_base::failbit);
}

void KtCompOFStream::_openCompressed(const char* file, const char* type)
{
    if (!KtPathCheckWriteAccess(file))
    {
        setstate(std::ios_base::failbit);
        return;
    }
    _createNamedPipe();
    if (theExceptObj.errorOccurred())
        return _abandon();
    const char* pipe = _spawnCompress(file, type);
    if (!pipe)
        return _abandon();
    int error = _pipeBuffer->open(pipe);
    _pipe->releaseGuards();
    _removeNamedPipe();
    if (error)
    {
        reportSpawnFailure(error);
        return _abandon();
    }
    std::ios::rdbuf(_pipeBuffer.get());
}

void KtCompOFStream::_createNamedPipe()
{
    createNamedPipe(*_pipe, kOutputPipeStem, _instance);
}

// The command reads the pipe and writes the file, which is opened (and
// emptied) here as the shell's redirection would do it.
const char* KtCompOFStream::_spawnCompress(const char* file, const char* type)
{
    KtStr toolPath;
    const Compression* compression =
        usableCompression(type, kCompress, file, &toolPath);
    if (!compression)
        return nullptr;
    int output = ::open(file, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (output < 0)
    {
        reportSpawnFailure(errno);
        return nullptr;
    }
    _alsoComplete = compression->outputAlsoComplete;
    const char* argv[] = {
        compression->outputTool, compression->outputFlag, nullptr};
    int error = _pipe->startReading(toolPath, argv, output);
    if (error)
    {
        reportSpawnFailure(error);
        return nullptr;
    }
    return _pipe->name();
}

void KtCompOFStream::_removeNamedPipe()
{
    _pipe->remove();
}

void KtCompOFStream::_abandon()
{
    _pipe->finish(true);
    _removeNamedPipe();
    setstate(std::ios_base::failbit);
}

void KtSaveDocument(const char* path,
                    const std::function<void(std::ostream&)>& print)
{
    if (!path)
        path = "";
    if (!KtPathCheckWriteAccess(path))
        return;
    KtCompOFStream out;
    out.open(path);
    if (out.fail())
    {
        KtError("Unable to open '%s'.", path);
        return;
    }
    print(out);
    bool complete = !theExceptObj.errorOccurred() && !out.fail();
    if (complete)
    {
        out.close();
        complete = !out.fail();
    }
    if (!complete)
        KtError("Unable to write '%s'.", path);
}

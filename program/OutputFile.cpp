// Writing one output file: the overwrite question, the write check, the
// progress lines and a write that is confirmed complete.
#include "program/OutputFile.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

#include "toolkit/KtError.h"
#include "toolkit/KtFile.h"

namespace
{

// Beside the target, in the same directory, so that the rename that puts
// the file in place never crosses file systems. The name is short, so that
// it fits wherever the target's name fits.
constexpr const char* kPartialName = ".partial-XXXXXX";

// The content, then the close, and the verdict. The file is closed before
// the verdict, so that a write that the system could not complete (a full
// disk, an error on close) is reported instead of "done." and success.
// Returns false with the errors posted, the path's last.
bool writeAndClose(std::ofstream& file,
                   const char* path,
                   const ContentWriter& writeContent)
{
    errno = 0;
    writeContent(file);
    bool contentFailed = theExceptObj.errorOccurred();
    // The reason is that of the first write the system refused, which may
    // have come while writing or only when closing.
    int writeError = file.fail() ? errno : 0;
    errno = 0;
    file.close();
    if (!writeError)
        writeError = errno;
    bool incomplete = !contentFailed && file.fail();
    std::cout << "done.\n" << std::flush;
    if (incomplete)
        KtError("The file could not be written completely: %s.",
                writeError ? std::strerror(writeError) : "write error");
    if (contentFailed || incomplete)
        KtError("Unable to save \"%s\".", path);
    return !contentFailed && !incomplete;
}

std::string partialPathBeside(const char* path)
{
    std::string target(path);
    std::string::size_type slash = target.rfind('/');
    std::string dir = slash == std::string::npos ? std::string()
                                                 : target.substr(0, slash + 1);
    return dir + kPartialName;
}

// The mode that a file created by opening the target would get: the
// target's own when it exists, else what the umask leaves of 0666.
mode_t outputMode(const char* path)
{
    struct stat status;
    if (stat(path, &status) == 0)
        return status.st_mode & 07777;
    mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

bool putInPlace(const char* partial, const char* path)
{
    if (std::rename(partial, path) == 0)
        return true;
    KtError("The file could not be written completely: %s.",
            std::strerror(errno));
    KtError("Unable to save \"%s\".", path);
    return false;
}

} // namespace

bool askOverwrite(const char* path)
{
    if (!KtFileExists(path))
        return true;
    std::cout << "\n"
              << "Output file '" << path << "' exists.\n";
    // Each answer is the first non-blank character typed; the rest of the
    // line answers the following prompts.
    for (;;)
    {
        std::cout << "Overwrite? [Y/N] " << std::flush;
        char answer = 0;
        if (!(std::cin >> answer))
        {
            std::cout << "\n" << std::flush;
            return false;
        }
        if (answer == 'y' || answer == 'Y')
            return true;
        if (answer == 'n' || answer == 'N')
            return false;
    }
}

void writeOutputFile(const char* path, const ContentWriter& writeContent)
{
    if (!KtPathCheckWriteAccess(path))
        return;
    std::cout << "Writing \"" << path << "\"..." << std::flush;
    std::ofstream file(path, std::ios::out | std::ios::trunc);
    if (!file.good())
    {
        std::cout << "done.\n" << std::flush;
        KtError("Unable to open \"%s\".", path);
        return;
    }
    writeAndClose(file, path, writeContent);
}

void writeOutputFileWhole(const char* path, const ContentWriter& writeContent)
{
    if (!KtPathCheckWriteAccess(path))
        return;
    std::cout << "Writing \"" << path << "\"..." << std::flush;
    std::string partial = partialPathBeside(path);
    int fd = mkstemp(&partial[0]);
    if (fd < 0 || fchmod(fd, outputMode(path)) != 0)
    {
        if (fd >= 0)
        {
            close(fd);
            unlink(partial.c_str());
        }
        std::cout << "done.\n" << std::flush;
        KtError("Unable to open \"%s\".", path);
        return;
    }
    close(fd);
    std::ofstream file(partial, std::ios::out | std::ios::trunc);
    bool written = false;
    if (!file.good())
    {
        std::cout << "done.\n" << std::flush;
        KtError("Unable to open \"%s\".", path);
    }
    else
        written = writeAndClose(file, path, writeContent) &&
                  putInPlace(partial.c_str(), path);
    if (!written)
        unlink(partial.c_str());
}

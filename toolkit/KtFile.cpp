// File access checks and path helpers.
#include "toolkit/KtFile.h"

#include <cstring>
#include <sys/stat.h>
#include <unistd.h>

#include "toolkit/KtError.h"

namespace
{

// The directory bit alone, not the whole file-type field.
constexpr unsigned kDirectoryBit = 040000;

} // namespace

int KtFileExists(const char* path)
{
    return access(path, F_OK) == 0;
}

int KtFileHaveReadAccess(const char* path)
{
    return access(path, R_OK) == 0;
}

int KtFileHaveWriteAccess(const char* path)
{
    return access(path, W_OK) == 0;
}

int KtFileHaveExecuteAccess(const char* path)
{
    return access(path, X_OK) == 0;
}

int KtFileIsDirectory(const char* path)
{
    struct stat info;
    if (stat(path, &info) != 0)
        return 0;
    return (info.st_mode & kDirectoryBit) != 0;
}

KtStr KtFileDirOfPath(const char* path)
{
    if (!path || !*path || std::strcmp(path, "/") == 0)
        return KtStr();
    KtStr dir(path);
    if (dir[dir.length() - 1] == '/')
        dir = dir.notRight(1);
    int slash = 0;
    if (!dir.findLast('/', &slash))
        return KtStr();
    return dir.left(slash);
}

// The permission test comes before the directory test here, the opposite of
// the write check: a readable directory says so, an unreadable one reports
// the permissions.
int KtPathCheckReadAccess(const char* path)
{
    if (!KtFileExists(path))
        KtError("File does not exist.");
    else if (!KtFileHaveReadAccess(path))
        KtError("Insufficient access to read file.  Check permissions.");
    else if (KtFileIsDirectory(path))
        KtError("File is a directory.");
    else
        return 1;
    KtError("Unable to read \"%s\".", path);
    return 0;
}

namespace
{

int checkOverwrite(const char* path)
{
    if (KtFileIsDirectory(path))
    {
        KtError("File is a directory.");
        return 0;
    }
    if (!KtFileHaveWriteAccess(path))
    {
        KtError("Insufficient access to overwrite existing file.  Check "
                "permissions.");
        return 0;
    }
    return 1;
}

// Only the immediate parent is examined: missing grandparents show up as a
// missing parent.
int checkCreate(const char* path)
{
    if (!std::strchr(path, '/'))
        return 1;
    KtStr dir = KtFileDirOfPath(path);
    if (dir.length() == 0)
        dir = "/";
    if (!KtFileExists(dir))
    {
        KtError("Parent directory \"%s\" does not exist.", dir.text());
        return 0;
    }
    if (!KtFileHaveWriteAccess(dir))
    {
        KtError("Insufficient access to create file in \"%s\".  Check "
                "permissions.",
                dir.text());
        return 0;
    }
    return 1;
}

} // namespace

int KtPathCheckWriteAccess(const char* path)
{
    int ok = KtFileExists(path) ? checkOverwrite(path) : checkCreate(path);
    if (!ok)
        KtError("File \"%s\" is unwritable.", path);
    return ok;
}

// The check that no output of a run would overwrite an input or another
// output of the same run.
#include "program/DistinctFiles.h"

#include <string>
#include <sys/stat.h>

#include "toolkit/KtError.h"

namespace
{

// A file by its device and inode; a file that does not exist yet by its
// folder's, with its name.
struct FileIdentity
{
    dev_t device = 0;
    ino_t inode = 0;
    std::string name; // empty for a file that exists
    bool known = false;

    bool operator==(const FileIdentity& other) const
    {
        return known && other.known && device == other.device &&
               inode == other.inode && name == other.name;
    }
};

FileIdentity identify(const char* path)
{
    FileIdentity identity;
    struct stat status;
    if (stat(path, &status) == 0)
    {
        identity.device = status.st_dev;
        identity.inode = status.st_ino;
        identity.known = true;
        return identity;
    }
    std::string file(path);
    std::string::size_type slash = file.rfind('/');
    std::string folder = slash == std::string::npos ? "."
                         : slash == 0               ? "/"
                                                    : file.substr(0, slash);
    identity.name = slash == std::string::npos ? file : file.substr(slash + 1);
    if (!identity.name.empty() && stat(folder.c_str(), &status) == 0)
    {
        identity.device = status.st_dev;
        identity.inode = status.st_ino;
        identity.known = true;
    }
    return identity;
}

} // namespace

bool checkDistinctFiles(const std::vector<const char*>& inputs,
                        const std::vector<const char*>& outputs)
{
    std::vector<FileIdentity> inputIds;
    for (const char* input : inputs)
        inputIds.push_back(identify(input));
    std::vector<FileIdentity> outputIds;
    for (const char* output : outputs)
    {
        const FileIdentity id = identify(output);
        for (size_t i = 0; i < inputIds.size(); ++i)
            if (id == inputIds[i])
            {
                KtError("The output \"%s\" is the input \"%s\": nothing was "
                        "written.",
                        output,
                        inputs[i]);
                return false;
            }
        for (size_t i = 0; i < outputIds.size(); ++i)
            if (id == outputIds[i])
            {
                KtError("The outputs \"%s\" and \"%s\" are the same file: "
                        "nothing was written.",
                        outputs[i],
                        output);
                return false;
            }
        outputIds.push_back(id);
    }
    return true;
}

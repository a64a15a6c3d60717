// Writing an output whole: the target changes only when the new content is
// complete, keeps its permissions, and nothing else is left in its folder.
#include <dirent.h>
#include <iostream>
#include <string>
#include <sys/stat.h>
#include <vector>

#include <gtest/gtest.h>

#include "program/OutputFile.h"
#include "support/test_helpers.h"
#include "toolkit/KtError.h"

namespace
{

std::vector<std::string> filesIn(const std::string& folder)
{
    std::vector<std::string> names;
    DIR* dir = opendir(folder.c_str());
    while (dirent* entry = readdir(dir))
        if (entry->d_name[0] != '.' || entry->d_name[1] > '.')
            names.push_back(entry->d_name);
    closedir(dir);
    return names;
}

mode_t modeOf(const std::string& path)
{
    struct stat status;
    stat(path.c_str(), &status);
    return status.st_mode & 07777;
}

} // namespace

TEST(WriteOutputFileWhole, ReplacesTheTargetOnlyWithCompleteContent)
{
    TempDir dir;
    const std::string target = dir.file("take.bvh");
    writeFile(target, "old");
    chmod(target.c_str(), 0640);
    StreamCapture out(std::cout);

    writeOutputFileWhole(target.c_str(),
                         [](std::ostream& file)
                         {
                             file << "half";
                             KtError("Value out of range.");
                         });
    EXPECT_EQ(errorBlock({("Unable to save \"" + target + "\".").c_str(),
                          "Value out of range."}),
              printedChain());
    EXPECT_EQ("old", readFile(target));
    EXPECT_EQ(std::vector<std::string>{"take.bvh"}, filesIn(dir.path()));

    writeOutputFileWhole(target.c_str(),
                         [](std::ostream& file) { file << "new"; });
    EXPECT_EQ("", printedChain());
    EXPECT_EQ("new", readFile(target));
    EXPECT_EQ(0640u, modeOf(target));
    EXPECT_EQ(std::vector<std::string>{"take.bvh"}, filesIn(dir.path()));
    EXPECT_EQ("Writing \"" + target + "\"...done.\n" + "Writing \"" + target +
                  "\"...done.\n",
              out.text());
}

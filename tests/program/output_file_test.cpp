// Writing an output whole: the target changes only when the new content is
// complete, keeps its permissions, and nothing else is left in its folder.
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

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
    struct stat status;
    stat(target.c_str(), &status);
    EXPECT_EQ(0640u, status.st_mode & 07777);
    EXPECT_EQ(std::vector<std::string>{"take.bvh"}, filesIn(dir.path()));
    const std::string done = "Writing \"" + target + "\"...done.\n";
    EXPECT_EQ(done + done, out.text());
}

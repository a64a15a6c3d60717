// Runs the built motbake binary and checks exit status, standard output,
// standard error and the files it writes, together.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "e2e/e2e_runner.h"

TEST(Motbake, NoArgumentsPrintsUsage)
{
    RunResult run = runMotbake({});
    EXPECT_EQ(0, run.status);
    EXPECT_NE(std::string::npos, run.out.find("\nUSAGE\n"));
    EXPECT_EQ("", run.err);
}

TEST(Motbake, InvalidOptionFailsWithStatusOne)
{
    RunResult run = runMotbake({"-x"});
    EXPECT_EQ(1, run.status);
    EXPECT_EQ("", run.out);
    EXPECT_EQ("\nERROR: Invalid option -x\n", run.err);
}

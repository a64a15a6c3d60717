// make install, as a Debian user would run it: the programs into bin/, a
// manual page for each into share/man/man1/, all of them working.
#include <string>

#include <gtest/gtest.h>

#include "e2e/e2e_runner.h"
#include "support/test_helpers.h"

// Installs this build into a temporary DESTDIR, runs each installed program
// once and renders each manual page with warnings on.
TEST(Install, PutsEveryProgramAndItsManualPageInPlace)
{
    TempDir dest;
    // clang-format off
    RunResult install = runProgram("/usr/bin/env", {"DESTDIR=" + dest.path(), CMAKE_COMMAND,
                                                    "--install", BUILD_DIR, "--prefix", "/usr/local"});
    // clang-format on
    ASSERT_EQ(0, install.status) << install.err;
    const std::string prefix = dest.path() + "/usr/local";
    for (const char* program : {"motbake", "rigbake", "motexport"})
    {
        SCOPED_TRACE(program);
        RunResult run = runProgram(prefix + "/bin/" + program, {});
        EXPECT_EQ(0, run.status);
        EXPECT_EQ(0u, run.out.find("\nUSAGE\n     " + std::string(program)));

        const std::string man = prefix + "/share/man/man1/" + program + ".1";
        RunResult page =
            runProgram("/usr/bin/env",
                       {"MANROFFOPT=-ww", "MANWIDTH=80", "man", "-l", man});
        EXPECT_EQ(0, page.status);
        EXPECT_EQ("", page.err);
        // clang-format off
        for (const char* section : {"NAME", "SYNOPSIS", "DESCRIPTION", "OPTIONS", "EXIT STATUS", "EXAMPLES", "SEE ALSO"})
            EXPECT_NE(std::string::npos, page.out.find(section)) << section;
        // clang-format on
    }
}

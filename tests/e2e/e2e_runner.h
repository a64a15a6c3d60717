// Runs the built motbake binary with given arguments and standard input.
#pragma once

#include <string>
#include <vector>

struct RunResult
{
    int status = -1; // exit status, or -1 when the program did not exit
    std::string out;
    std::string err;
};

// Runs MOTBAKE_BIN in workDir (the current directory when empty) with the
// given standard input, collecting both output streams.
RunResult runMotbake(const std::vector<std::string>& args,
                     const std::string& input = "",
                     const std::string& workDir = "");

// Runs the built programs with given arguments and standard input.
#pragma once

#include <string>
#include <vector>

struct RunResult
{
    int status = -1; // exit status, or -1 when the program did not exit
    std::string out;
    std::string err;
};

// Runs the program in workDir (the current directory when empty) with the
// given standard input, collecting both output streams.
RunResult runProgram(const std::string& program,
                     const std::vector<std::string>& args,
                     const std::string& input = "",
                     const std::string& workDir = "");

// The same for MOTBAKE_BIN and RIGBAKE_BIN.
RunResult runMotbake(const std::vector<std::string>& args,
                     const std::string& input = "",
                     const std::string& workDir = "");
RunResult runRigbake(const std::vector<std::string>& args,
                     const std::string& input = "");

// Runs the built programs: fork, exec, collect, wait.
#include "e2e/e2e_runner.h"

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "support/test_helpers.h"

RunResult runProgram(const std::string& program,
                     const std::vector<std::string>& args,
                     const std::string& input,
                     const std::string& workDir)
{
    TempDir io;
    std::string inPath = io.file("stdin");
    std::string outPath = io.file("stdout");
    std::string errPath = io.file("stderr");
    writeFile(inPath, input);

    std::vector<char*> argv;
    std::string path = program;
    argv.push_back(&path[0]);
    std::vector<std::string> copies(args);
    for (std::string& arg : copies)
        argv.push_back(&arg[0]);
    argv.push_back(nullptr);

    std::fflush(nullptr);
    pid_t child = fork();
    if (child == 0)
    {
        int in = open(inPath.c_str(), O_RDONLY);
        int out = open(outPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        int err = open(errPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        if (in < 0 || out < 0 || err < 0 || dup2(in, 0) < 0 ||
            dup2(out, 1) < 0 || dup2(err, 2) < 0)
            _exit(127);
        if (!workDir.empty() && chdir(workDir.c_str()) != 0)
            _exit(127);
        execv(argv[0], argv.data());
        _exit(127);
    }
    RunResult result;
    int waitStatus = 0;
    if (child > 0 && waitpid(child, &waitStatus, 0) == child &&
        WIFEXITED(waitStatus))
        result.status = WEXITSTATUS(waitStatus);
    result.out = readFile(outPath);
    result.err = readFile(errPath);
    return result;
}

RunResult runMotbake(const std::vector<std::string>& args,
                     const std::string& input)
{
    return runProgram(MOTBAKE_BIN, args, input);
}

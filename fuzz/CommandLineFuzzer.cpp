// Fuzz target: each program's command line. The first byte picks the
// program (motbake, rigbake, motexport), the rest are its arguments separated by NUL bytes. Only the
// parse runs (help texts, banner and messages go nowhere): the run itself
// would read and write the files the arguments name.
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "app/CommandLine.h"
#include "app/RunSequence.h"
#include "fuzz/FuzzInput.h"
#include "motexport/CommandLine.h"
#include "motexport/ExportRun.h"
#include "rigbake/CommandLine.h"
#include "rigbake/RunSequence.h"
#include "toolkit/KtError.h"

namespace
{

// Real command lines are short.
constexpr size_t kMaxArguments = 64;

std::vector<std::string> argumentsOf(const std::string& text)
{
    std::vector<std::string> arguments;
    std::string::size_type start = 0;
    while (start <= text.size() && arguments.size() < kMaxArguments)
    {
        std::string::size_type end = text.find('\0', start);
        if (end == std::string::npos)
            end = text.size();
        arguments.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    return arguments;
}

// Swaps the standard streams for one that discards, for its lifetime.
class Silence
{
public:
    Silence()
        : _out(std::cout.rdbuf(&_sink))
        , _err(std::cerr.rdbuf(&_sink))
    {
    }
    ~Silence()
    {
        std::cout.rdbuf(_out);
        std::cerr.rdbuf(_err);
    }

private:
    std::stringbuf _sink;
    std::streambuf* _out;
    std::streambuf* _err;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 1 || size > kMaxFuzzInput)
        return 0;
    std::vector<std::string> arguments =
        argumentsOf(fuzzText(data + 1, size - 1));
    std::vector<const char*> argv = {"program"};
    for (const std::string& argument : arguments)
        argv.push_back(argument.c_str());
    argv.push_back(nullptr);
    const int argc = static_cast<int>(argv.size()) - 1;

    Silence silence;
    int status = 0;
    if (data[0] % 3 == 0)
    {
        RunArguments run;
        parseCommandLine(argc, argv.data(), &run, &status);
    }
    else if (data[0] % 3 == 1)
    {
        RigbakeArguments run;
        parseRigbakeCommandLine(argc, argv.data(), &run, &status);
    }
    else
    {
        ExportArguments run;
        parseExportCommandLine(argc, argv.data(), &run, &status);
    }
    theExceptObj.clear();
    return 0;
}

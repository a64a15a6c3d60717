// The start that every program of the toolset shares.
#include "program/ProgramStart.h"

#include <iostream>

#include "program/ExitStatus.h"
#include "toolkit/KtMemory.h"

namespace
{

struct Options
{
    bool help = false;
    bool copyright = false;
    bool noPrompt = false;
    int firstPositional = 1;
};

void printNoArguments(std::ostream& out,
                      const ProgramDescription& program,
                      const KtStr& programName)
{
    out << "\n"
        << "USAGE\n";
    program.printUsage(out, programName);
    out << "\n"
        << "VERSION\n"
        << "  " << program.version << "\n"
        << "\n";
}

const ProgramOption* findOption(const ProgramDescription& program,
                                const KtStr& option)
{
    for (int i = 0; i < program.numOptions; ++i)
        if (option.iCmp(program.options[i].name) == 0)
            return &program.options[i];
    return nullptr;
}

// Returns false, with the message written, on a bad option.
bool scanOptions(int argc,
                 const char* const* argv,
                 const ProgramDescription& program,
                 Options* options)
{
    int i = 1;
    for (; i < argc && argv[i][0] == '-'; ++i)
    {
        KtStr option(argv[i]);
        if (option.iCmp("-h") == 0)
            options->help = true;
        else if (option.iCmp("-copyright") == 0)
            options->copyright = true;
        else if (option.iCmp("-f") == 0)
            options->noPrompt = true;
        else if (const ProgramOption* own = findOption(program, option))
        {
            if (i + 1 >= argc)
            {
                std::cerr << own->missingArgument;
                return false;
            }
            *own->argument = argv[++i];
        }
        else
        {
            std::cerr << "\nERROR: Invalid option " << argv[i] << "\n";
            return false;
        }
    }
    options->firstPositional = i;
    return true;
}

ProgramStart finished(int status)
{
    ProgramStart start;
    start.finished = true;
    start.exitStatus = status;
    return start;
}

} // namespace

ProgramStart startProgram(int argc,
                          const char* const* argv,
                          const ProgramDescription& program)
{
    KtInstallMemoryHandler();
    // Built from a constant, not from the invoked path.
    const KtStr programName(program.name);
    if (argc <= 1)
    {
        printNoArguments(std::cout, program, programName);
        return finished(kExitSuccess);
    }
    Options options;
    if (!scanOptions(argc, argv, program, &options))
        return finished(kExitFailure);
    const int numPositional = argc - options.firstPositional;
    if (options.help)
    {
        program.printManpage(std::cout, programName);
        if (numPositional == 0 && !options.copyright)
            return finished(kExitSuccess);
    }
    if (options.copyright)
    {
        printCopyrightNotice(std::cout, programName);
        if (numPositional == 0)
            return finished(kExitSuccess);
    }
    // The banner comes on every run that gets this far, also when the
    // arguments then turn out to be wrong.
    printBanner(std::cout, programName, program.version);

    ProgramStart start;
    start.noPrompt = options.noPrompt;
    start.positional = argv + options.firstPositional;
    start.numPositional = numPositional;
    return start;
}

void printBanner(std::ostream& out,
                 const KtStr& programName,
                 const char* version)
{
    out << "\n"
        << programName << " version " << version << "\n"
        << "\n"
        << "Copyright (c) Quorvane, Inc.  All rights reserved.\n";
    out.flush();
}

void printCopyrightNotice(std::ostream& out, const KtStr& programName)
{
    out << "\n"
        << "COPYRIGHT NOTICE\n"
        << "\n"
        << "     " << programName << ", Copyright (c) Quorvane, Inc.\n"
        << "\n"
        << "     Permission is granted to copy and distribute " << programName
        << " for any\n"
        << "     purpose, provided that it is distributed whole and "
           "unchanged,\n"
        << "     with this notice included.\n"
        << "\n"
        << "     " << programName
        << " is provided \"as is\", without warranty of any kind,\n"
        << "     express or implied.  In no event shall the authors be liable\n"
        << "     for any damages arising from its use.\n"
        << "\n";
}

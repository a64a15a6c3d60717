// The start that every program of the toolset shares: the usage without
// arguments, the options, the help texts and the version banner.
#pragma once

#include <iosfwd>

#include "toolkit/KtStr.h"

// One option of a program's own, besides -h, -copyright and -f.
struct ProgramOption
{
    const char* name; // compared ignoring case, "-filter"
    // Receives the next argument; a later use replaces an earlier one.
    const char** argument;
    // Written to standard error when the option is the last argument,
    // "\nERROR: Expecting filter names.\n".
    const char* missingArgument;
};

struct ProgramDescription
{
    const char* name;
    const char* version;
    void (*printUsage)(std::ostream& out, const KtStr& programName);
    void (*printManpage)(std::ostream& out, const KtStr& programName);
    const ProgramOption* options = nullptr;
    int numOptions = 0;
};

// What the start leaves to the program.
struct ProgramStart
{
    bool finished = false; // the program ends now with exitStatus
    int exitStatus = 0;
    bool noPrompt = false; // -f: overwrite without asking
    const char* const* positional = nullptr;
    int numPositional = 0;
};

// First of all, a failed allocation anywhere in the program ends it with
// "Memory allocation failed" (KtInstallMemoryHandler).
// Without arguments: the USAGE and VERSION sections, status 0. Otherwise
// the options (compared ignoring case) up to the first argument that does
// not begin with '-': everything from there on is positional. -h prints the
// manual page, -copyright the copyright notice; either alone ends the run
// with status 0. Every run that gets further prints the version banner. A
// bad option ends the run with status 1 and its message.
ProgramStart startProgram(int argc,
                          const char* const* argv,
                          const ProgramDescription& program);

// "\n<name> version <version>\n\n" and the copyright line; flushed.
void printBanner(std::ostream& out,
                 const KtStr& programName,
                 const char* version);
void printCopyrightNotice(std::ostream& out, const KtStr& programName);

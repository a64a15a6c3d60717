// rigbake's command line: options, help texts, argument check.
#pragma once

#include <iosfwd>

#include "toolkit/KtStr.h"

// The program's entry: parses the command line and writes the rig script.
// Returns the process exit status, 0 or 1.
int rigbakeMain(int argc, const char* const* argv);

struct RigbakeArguments;

// The command line alone, with its help texts, banner and messages: true
// when the rig is to be written with *run; false when the program ends here
// with *status.
bool parseRigbakeCommandLine(int argc,
                             const char* const* argv,
                             RigbakeArguments* run,
                             int* status);

// Help texts; each names the command by programName.
void printRigbakeUsage(std::ostream& out, const KtStr& programName);
void printRigbakeManpage(std::ostream& out, const KtStr& programName);

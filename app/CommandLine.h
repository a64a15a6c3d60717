// motbake's command line: option scan, help texts, argument checks.
#pragma once

#include <iosfwd>

#include "toolkit/KtStr.h"

struct RunArguments;

// The program's entry: parses the command line and runs the conversion.
// Returns the process exit status, 0 or 1.
int motbakeMain(int argc, const char* const* argv);

// The command line alone, with its help texts, banner and messages: true
// when the conversion is to run with *run; false when the program ends here
// with *status.
bool parseCommandLine(int argc,
                      const char* const* argv,
                      RunArguments* run,
                      int* status);

// Help texts; each names the command by programName.
void printVersion(std::ostream& out, const KtStr& programName);
void printUsage(std::ostream& out, const KtStr& programName);
void printManpage(std::ostream& out, const KtStr& programName);
void printCopyright(std::ostream& out, const KtStr& programName);

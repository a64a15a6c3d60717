// motbake's command line: option scan, help texts, argument checks.
#pragma once

#include <iosfwd>

#include "toolkit/KtStr.h"

// The program's entry: parses the command line and runs the conversion.
// Returns the process exit status, 0 or 1.
int motbakeMain(int argc, const char* const* argv);

// Help texts; each names the command by programName.
void printVersion(std::ostream& out, const KtStr& programName);
void printUsage(std::ostream& out, const KtStr& programName);
void printManpage(std::ostream& out, const KtStr& programName);
void printCopyright(std::ostream& out, const KtStr& programName);

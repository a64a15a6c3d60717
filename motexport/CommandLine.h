// motexport's command line: option scan, help texts, argument checks.
#pragma once

#include <iosfwd>

#include "toolkit/KtStr.h"

struct ExportArguments;

// The program's entry: parses the command line and runs the export.
// Returns the process exit status, 0 or 1.
int motexportMain(int argc, const char* const* argv);

// The command line alone, with its help texts, banner and messages: true
// when the export is to run with *run; false when the program ends here
// with *status.
bool parseExportCommandLine(int argc,
                            const char* const* argv,
                            ExportArguments* run,
                            int* status);

// Help texts; each names the command by programName.
void printExportUsage(std::ostream& out, const KtStr& programName);
void printExportManpage(std::ostream& out, const KtStr& programName);

// motexport's command line: option scan, help texts, argument checks.
#pragma once

#include <iosfwd>

#include "toolkit/KtStr.h"

// The program's entry: parses the command line and runs the export.
// Returns the process exit status, 0 or 1.
int motexportMain(int argc, const char* const* argv);

// Help texts; each names the command by programName.
void printExportUsage(std::ostream& out, const KtStr& programName);
void printExportManpage(std::ostream& out, const KtStr& programName);

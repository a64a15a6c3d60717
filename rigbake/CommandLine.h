// rigbake's command line: options, help texts, argument check.
#pragma once

#include <iosfwd>

#include "toolkit/KtStr.h"

// The program's entry: parses the command line and writes the rig script.
// Returns the process exit status, 0 or 1.
int rigbakeMain(int argc, const char* const* argv);

// Help texts; each names the command by programName.
void printRigbakeUsage(std::ostream& out, const KtStr& programName);
void printRigbakeManpage(std::ostream& out, const KtStr& programName);

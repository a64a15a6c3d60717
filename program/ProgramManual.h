// The parts of a manual page (-h) that every program of the toolset shares,
// in the layout of motbake's: body lines indented five blanks, option
// descriptions from column 18.
#pragma once

#include <iosfwd>

#include "toolkit/KtStr.h"

// The lines of -h, -copyright and -f, each followed by an empty line.
void printCommonOptions(std::ostream& out, const KtStr& programName);

// AVAILABILITY: companions names the other tools ("rigbake"), inputs what a
// report should bring ("the input files"). CREDITS, with the trademark line
// when the program speaks of Maya.
void printAvailabilityAndCredits(std::ostream& out,
                                 const KtStr& programName,
                                 const char* companions,
                                 const char* inputs,
                                 bool namesMaya);

// The parts of a manual page that every program of the toolset shares.
#include "program/ProgramManual.h"

#include <ostream>

void printCommonOptions(std::ostream& out, const KtStr& programName)
{
    out << "     -h          Displays this manpage.\n"
        << "\n"
        << "     -copyright  Display copyright information.\n"
        << "\n"
        << "     -f          When used, " << programName
        << " will overwrite files without verification.\n"
        << "\n";
}

void printAvailabilityAndCredits(std::ostream& out,
                                 const KtStr& programName,
                                 const char* companions,
                                 const char* inputs,
                                 bool namesMaya)
{
    out << "AVAILABILITY\n"
        << "     " << programName
        << " is distributed with the Quorvane motion-capture tools,\n"
        << "     together with " << companions
        << " and the ASF and AMC libraries.\n"
        << "\n"
        << "     Please send problem reports and suggestions to Quorvane\n"
        << "     support, with the command line and " << inputs << ".\n"
        << "\n";
    out << "CREDITS\n"
        << "     " << programName
        << " was written and is maintained by Quorvane, Inc.\n"
        << "\n";
    if (namesMaya)
        out << "     Maya is a trademark of its owner.\n"
            << "\n";
}

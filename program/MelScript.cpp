// The start that every MEL script of the toolset shares.
#include "program/MelScript.h"

#include <ostream>

void writeMELHeader(std::ostream& out,
                    const char* programName,
                    const char* version)
{
    out << "//\n"
        << "// MEL script created by " << programName << " version " << version
        << "\n"
        << "//\n"
        << "// Quorvane, Inc.\n"
        << "//\n"
        << "\n"
        << "\n";
}

// The start that every MEL script of the toolset shares.
#pragma once

#include <iosfwd>

// The header comment that names the program and its version, then two empty
// lines.
void writeMELHeader(std::ostream& out,
                    const char* programName,
                    const char* version);

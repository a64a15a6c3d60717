// The MEL script that defines Maya's input device for the MOV channels,
// attaches them to the skeleton's joints and imports the MOV file as a take.
#pragma once

#include <iosfwd>

#include "toolkit/KtStr.h"

class BodyTable;
class ChannelLayout;
class KaAMC;
class KaASF;
class KaASFDOFGroup;

// The filter names given with -filter, separated by blanks, tabs or line
// ends; empty when none were given.
extern KtStr theFilterText;

// Writes the whole script with the run's bodies and channel layout. The
// filter text holds the names of the filters to apply, separated by blanks,
// tabs or line ends. fps must be one of Maya's rates. On failure posts an
// error and stops writing.
void writeMELScript(std::ostream& out,
                    const KaAMC& amc,
                    const BodyTable& bodies,
                    const ChannelLayout& layout,
                    int fps,
                    const KtStr& filterText);
// The same with a layout of its own and the filters given with -filter.
void writeMELScript(std::ostream& out,
                    const KaASF& asf,
                    const KaAMC& amc,
                    int fps);

// The channel lines of one body. counter is the next channel number (the
// "-axis" of the device and the MOV column after the time).
void writeChannelDefinitions(std::ostream& out,
                             const char* name,
                             int& counter,
                             const KaASFDOFGroup& dofs);
void writeChannelAttachments(std::ostream& out,
                             const char* name,
                             const KaASFDOFGroup& dofs);

// The MEL script that defines Maya's input device for the MOV channels,
// attaches them to the skeleton's joints and imports the MOV file as a take.
#pragma once

#include <iosfwd>

#include "toolkit/KtStr.h"

class KaAMC;
class KaASF;
class KaASFDOFGroup;

// The filter names given with -filter, separated by blanks, tabs or line
// ends; empty when none were given.
extern KtStr theFilterText;

// Writes the whole script. The channel layout is decided by the motion's
// first frame: the root (when the frame holds it), then the skeleton's bones
// that the frame holds, in bone order. fps must be one of Maya's rates.
// On failure posts an error and stops writing.
void writeMELScript(std::ostream& out,
                    const KaASF& asf,
                    const KaAMC& amc,
                    int fps);

// Whether any DOF of the group is tx, ty or tz.
bool hasTranslationDOF(const KaASFDOFGroup& dofs);

// The channel lines of one body. counter is the next channel number (the
// "-axis" of the device and the MOV column after the time).
void writeChannelDefinitions(std::ostream& out,
                             const char* name,
                             int& counter,
                             const KaASFDOFGroup& dofs);
void writeChannelAttachments(std::ostream& out,
                             const char* name,
                             const KaASFDOFGroup& dofs);

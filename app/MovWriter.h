// The MOV channel file: one line per frame, the frame's time followed by
// each present body's position and rotation channels.
#pragma once

#include <iosfwd>

class KaAMC;
class KaAMCBone;
class KaAMCField;
class KaASF;
class KaASFDOFGroup;

// Writes all lines; on failure posts an error and stops writing.
void writeMOVData(std::ostream& out,
                  const KaASF& asf,
                  const KaAMC& amc,
                  int fps);

// One body's values for one frame: three position values (relative to the
// parent bone's animated frame; world positions for the root and for bones
// attached to it) when the body translates, then its rotation values as read.
void writeBodyChannels(std::ostream& out,
                       const char* name,
                       const KaASF& asf,
                       const KaAMCField& frame,
                       const KaASFDOFGroup& dofs,
                       const KaAMCBone& values,
                       float scale,
                       int units);

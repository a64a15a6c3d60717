// The MOV channel file: one line per frame, the frame's time followed by
// each present body's position and rotation channels.
#pragma once

#include <iosfwd>

class BodyTable;
class ChannelLayout;
class KaAMC;
class KaAMCBone;
class KaAMCField;
class KaASF;
class KaASFDOFGroup;

// Writes all lines with the run's bodies and layout. Returns false, with an
// error posted, when a body's value count does not match its DOFs; the
// lines before it stay written.
bool writeMOVData(std::ostream& out,
                  const KaASF& asf,
                  const KaAMC& amc,
                  BodyTable& bodies,
                  const ChannelLayout& layout,
                  int fps);
// The same with a table and layout of its own.
void writeMOVData(std::ostream& out,
                  const KaASF& asf,
                  const KaAMC& amc,
                  int fps);

// One body's values for one frame, the body given by its name: three
// position values when the body translates, then its rotation values as
// read.
void writeBodyChannels(std::ostream& out,
                       const char* name,
                       const KaASF& asf,
                       const KaAMCField& frame,
                       const KaASFDOFGroup& dofs,
                       const KaAMCBone& values,
                       float scale,
                       int units);

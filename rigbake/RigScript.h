// The MEL script that builds a rig's joints in Maya, in the units that
// motbake's take is read in.
#pragma once

#include <iosfwd>

class RigJoints;

// Writes the whole script for the joints, which have passed their check. Run in Maya, the script creates nothing and
// prints the names in use when a node already has one of the joints' names;
// otherwise it creates the joints with lengths in inches and angles in
// degrees, and then restores the units that were current.
void writeRigScript(std::ostream& out, const RigJoints& joints);

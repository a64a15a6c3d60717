// The BVH export: the skeleton as a hierarchy of joints at rest, then one
// line of channels per frame.
#pragma once

#include <iosfwd>

class PosedMotion;

// Writes the whole file. Returns false with the error posted when a frame's
// pose is not finite (what was written then is incomplete).
bool writeBVH(std::ostream& out, PosedMotion& motion);

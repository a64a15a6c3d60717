// The CSV export: a header row, then one row of world positions per frame.
#pragma once

#include <iosfwd>

class PosedMotion;

// Writes the whole file. Returns false with the error posted when a frame's
// pose is not finite (what was written then is incomplete).
bool writeCSV(std::ostream& out, PosedMotion& motion);

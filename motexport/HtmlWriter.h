// The page export: one self-contained HTML file that draws the skeleton and
// plays the motion in a browser, with no other file and no network.
#pragma once

#include <iosfwd>

class PosedMotion;
struct ExportSource;

// Writes the whole page. Returns false with the error posted, before
// anything is written, when a frame's pose is not finite or lies beyond
// what the page's numbers hold.
bool writeHTML(std::ostream& out,
               PosedMotion& motion,
               const ExportSource& source);

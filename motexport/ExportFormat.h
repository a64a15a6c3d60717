// The formats that motexport writes, each known by its file name's
// extension.
#pragma once

#include <iosfwd>
#include <string>

class PosedMotion;

// What an output may show of the run besides the motion itself.
struct ExportSource
{
    const char* asfFile = "";      // as given on the command line
    const char* amcFile = "";      // as given on the command line
    const char* skeletonName = ""; // the skeleton's :name
    // The capture was recorded with Z up; the public collections are Y-up.
    bool zUp = false;
};

struct ExportFormat
{
    const char* extension; // ".bvh", compared ignoring case
    // Writes the whole file; returns false with the error posted.
    bool (*write)(std::ostream& out,
                  PosedMotion& motion,
                  const ExportSource& source);
};

// The format that the path's extension names, or null.
const ExportFormat* exportFormatOf(const char* path);
// The known extensions for a message: ".bvh, .csv or .html".
std::string knownExtensions();

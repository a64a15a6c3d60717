// The formats that motexport writes, each known by its file name's
// extension.
#pragma once

#include <iosfwd>
#include <string>

class PosedMotion;

struct ExportFormat
{
    const char* extension; // ".bvh", compared ignoring case
    // Writes the whole file; returns false with the error posted.
    bool (*write)(std::ostream& out, PosedMotion& motion);
};

// The format that the path's extension names, or null.
const ExportFormat* exportFormatOf(const char* path);
// The known extensions for a message: ".bvh or .csv".
std::string knownExtensions();

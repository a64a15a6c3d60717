// The run of motexport: read both inputs once, check the motion, write every
// output named.
#pragma once

#include <vector>

struct ExportArguments
{
    const char* asfFile = nullptr;
    const char* amcFile = nullptr;
    double fps = 0.0;   // positive
    double scale = 1.0; // positive; multiplies every length
    bool zUp = false;   // -up z: for the page only
    // Each with a known extension (exportFormatOf).
    std::vector<const char*> outputs;
    bool noPrompt = false; // -f: overwrite without asking
};

// Returns the process exit status: 0 for a complete run (also when the user
// declined to replace an output), 1 when anything failed. An output that
// fails is not left behind, and the run stops there.
int runExport(const ExportArguments& run);

// The run: read both inputs, cross-check them, write the two outputs.
#pragma once

#include <functional>
#include <iosfwd>

class KaAMC;
class KaASF;

struct RunArguments
{
    const char* asfFile = nullptr;
    const char* amcFile = nullptr;
    int fps = 0;
    const char* melFile = nullptr;
    const char* movFile = nullptr;
    bool noPrompt = false; // -f: overwrite without asking
};

// Returns the process exit status: 0 for a complete run (also when the user
// declined to overwrite an output), 1 when anything failed.
int runConversion(const RunArguments& run);

// Asks on standard output/input before an existing file is replaced. End of
// input counts as "no".
bool askOverwrite(const char* path);

// Posts a warning for each body whose DOF count in the skeleton differs from
// its value count in the motion's first frame.
void checkDOFCounts(const KaASF& asf, const KaAMC& amc);

// The envelope shared by both outputs: write check, progress lines, open,
// content, and a complete write confirmed on close; failures are posted.
void writeOutputFile(const char* path,
                     const std::function<void(std::ostream&)>& writeContent);

void writeMEL(const char* path, const KaASF& asf, const KaAMC& amc, int fps);
void writeMOV(const char* path, const KaASF& asf, const KaAMC& amc, int fps);

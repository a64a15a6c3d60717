// The run: read both inputs, cross-check them, write the two outputs.
#pragma once

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
// declined to overwrite an output), 1 when anything failed. The filters are
// those given with -filter.
int runConversion(const RunArguments& run);

// Each output alone, in its file's envelope; failures are posted.
void writeMEL(const char* path, const KaASF& asf, const KaAMC& amc, int fps);
void writeMOV(const char* path, const KaASF& asf, const KaAMC& amc, int fps);

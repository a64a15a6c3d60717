// The run: read both inputs, cross-check them, write the two outputs.
#pragma once

struct RunArguments
{
    const char* asfFile = nullptr;
    const char* amcFile = nullptr;
    int fps = 0;
    const char* melFile = nullptr;
    const char* movFile = nullptr;
    bool noPrompt = false; // -f: overwrite without asking
};

// Returns the process exit status, 0 or 1.
int runConversion(const RunArguments& run);

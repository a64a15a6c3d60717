// rigbake's run: read the skeleton, work out its joints, write the script.
#pragma once

struct RigbakeArguments
{
    const char* asfFile = nullptr;
    const char* melFile = nullptr;
    bool noPrompt = false; // -f: overwrite without asking
};

// Returns the process exit status: 0 for a complete run (also when the user
// declined to overwrite the script), 1 when anything failed. A skeleton
// that cannot have a rig leaves the script unwritten.
int runRigbake(const RigbakeArguments& run);

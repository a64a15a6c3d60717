// The run of motexport: read both inputs once, check the motion, write every
// output named.
#pragma once

#include <string>
#include <vector>

#include "program/OutputFile.h"

class KaAMC;
class KaASF;

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

// Where an export's outputs go and how its steps report: the program writes
// files, the fuzzer memory.
class ExportTarget
{
public:
    virtual ~ExportTarget() = default;
    // After each step: deals with what the step left pending. Returns true
    // when the run must stop.
    virtual bool stepFailed() = 0;
    // Writes the output of that name; content writes its whole text.
    virtual void write(const char* path, const ContentWriter& content) = 0;
};

// The export of read documents: every check that can refuse them, before
// any output is touched, then each output of run.outputs in turn. Returns
// the exit status.
int exportDocuments(const KaASF& asf,
                    const KaAMC& amc,
                    const ExportArguments& run,
                    ExportTarget& target);

// An export whose outputs stay in memory, in the order named; messages are
// dropped.
struct ExportedTexts
{
    int status = 0;
    std::vector<std::string> outputs;
};
ExportedTexts
exportInMemory(const KaASF& asf, const KaAMC& amc, const ExportArguments& run);

// One conversion of read documents, from the DOF cross-check to both
// outputs, as one call: the program writes files, the fuzzer memory.
#pragma once

#include <string>

#include "program/OutputFile.h"
#include "toolkit/KtStr.h"

class BodyTable;
class ChannelLayout;
class KaAMC;
class KaASF;

enum class ConversionOutput
{
    kMEL,
    kMOV
};

// Where a conversion's outputs go and how its steps report.
class ConversionTarget
{
public:
    virtual ~ConversionTarget() = default;
    // After each step: deals with what the step left pending. Returns true
    // when the run must stop.
    virtual bool stepFailed() = 0;
    // Writes one output; content writes its whole text.
    virtual void write(ConversionOutput output,
                       const ContentWriter& content) = 0;
};

struct ConversionSettings
{
    int fps = 0; // one of Maya's rates
    // The names of the filters to apply, separated by blanks, tabs or line
    // ends.
    KtStr filterText;
};

// The DOF cross-check, the MEL script, then the MOV file, with one body
// table and channel layout for all three. Returns the exit status.
int convertDocuments(const KaASF& asf,
                     const KaAMC& amc,
                     const ConversionSettings& settings,
                     ConversionTarget& target);

// A conversion whose outputs stay in memory; messages are dropped.
struct ConvertedTexts
{
    int status = 0;
    std::string mel;
    std::string mov;
};
ConvertedTexts convertInMemory(const KaASF& asf,
                               const KaAMC& amc,
                               const ConversionSettings& settings);

// Posts a warning for each body whose DOF count in the skeleton differs from
// its value count in the motion's first frame, or that the first frame
// lacks although it has DOFs.
void checkDOFCounts(const BodyTable& bodies,
                    const ChannelLayout& layout,
                    const KaAMC& amc);
// The same with a layout of its own.
void checkDOFCounts(const KaASF& asf, const KaAMC& amc);

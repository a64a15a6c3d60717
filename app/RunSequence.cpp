// The run: read both inputs, cross-check them, write the two outputs.
#include "app/RunSequence.h"

#include "amc/KaAMC.h"
#include "app/Conversion.h"
#include "app/MelWriter.h"
#include "app/MovWriter.h"
#include "asf/KaASF.h"
#include "program/DistinctFiles.h"
#include "program/ExitStatus.h"
#include "program/InputFile.h"
#include "program/OutputFile.h"
#include "toolkit/KtError.h"

namespace
{

// Prints what each step leaves, and writes each output to its file unless
// the user declines to replace it.
class FileTarget : public ConversionTarget
{
public:
    explicit FileTarget(const RunArguments& run)
        : _run(run)
    {
    }

    bool stepFailed() override { return KtCheckException(); }

    void write(ConversionOutput output, const ContentWriter& content) override
    {
        const char* path =
            output == ConversionOutput::kMEL ? _run.melFile : _run.movFile;
        if (_run.noPrompt || askOverwrite(path))
            writeOutputFile(path, content);
    }

private:
    const RunArguments& _run;
};

} // namespace

void writeMEL(const char* path, const KaASF& asf, const KaAMC& amc, int fps)
{
    writeOutputFile(
        path, [&](std::ostream& out) { writeMELScript(out, asf, amc, fps); });
}

void writeMOV(const char* path, const KaASF& asf, const KaAMC& amc, int fps)
{
    writeOutputFile(
        path, [&](std::ostream& out) { writeMOVData(out, asf, amc, fps); });
}

int runConversion(const RunArguments& run)
{
    // Replacing an input with an output would destroy the capture.
    checkDistinctFiles({run.asfFile, run.amcFile}, {run.melFile, run.movFile});
    if (KtCheckException())
        return kExitFailure;
    KaASF asf;
    KaAMC amc;
    if (!readInputFile(run.asfFile, [&] { asf.read(run.asfFile); }) ||
        !readInputFile(run.amcFile, [&] { amc.read(run.amcFile); }))
        return kExitFailure;
    ConversionSettings settings;
    settings.fps = run.fps;
    settings.filterText = theFilterText;
    FileTarget target(run);
    return convertDocuments(asf, amc, settings, target);
}

// The run of motexport: the shared envelope of reading and writing, around
// the motion's checks and one writer per output.
#include "motexport/ExportRun.h"

#include <sstream>

#include "amc/KaAMC.h"
#include "asf/KaASF.h"
#include "motexport/ExportFormat.h"
#include "motexport/MotionCheck.h"
#include "motexport/PosedMotion.h"
#include "program/DistinctFiles.h"
#include "program/ExitStatus.h"
#include "program/InputFile.h"
#include "toolkit/KtError.h"

namespace
{

// Prints what each step leaves, and writes each output whole unless the
// user declines to replace it.
class FileTarget : public ExportTarget
{
public:
    explicit FileTarget(bool noPrompt)
        : _noPrompt(noPrompt)
    {
    }

    bool stepFailed() override { return KtCheckException(); }

    void write(const char* path, const ContentWriter& content) override
    {
        if (_noPrompt || askOverwrite(path))
            writeOutputFileWhole(path, content);
    }

private:
    bool _noPrompt;
};

class MemoryTarget : public ExportTarget
{
public:
    explicit MemoryTarget(ExportedTexts& texts)
        : _texts(texts)
    {
    }

    bool stepFailed() override
    {
        bool failed = theExceptObj.errorOccurred();
        theExceptObj.clear();
        return failed;
    }

    void write(const char*, const ContentWriter& content) override
    {
        std::ostringstream text;
        content(text);
        _texts.outputs.push_back(text.str());
    }

private:
    ExportedTexts& _texts;
};

} // namespace

int exportDocuments(const KaASF& asf,
                    const KaAMC& amc,
                    const ExportArguments& run,
                    ExportTarget& target)
{
    warnAboutBoneLines(asf, amc);
    if (target.stepFailed())
        return kExitFailure;
    PosedMotion motion(asf, amc, run.scale, run.fps);
    if (checkMotionValues(asf, amc))
        motion.checkFinite();
    if (target.stepFailed())
        return kExitFailure;

    ExportSource source;
    source.asfFile = run.asfFile;
    source.amcFile = run.amcFile;
    source.skeletonName = asf.header().name.text();
    source.zUp = run.zUp;
    for (const char* path : run.outputs)
    {
        const ExportFormat* format = exportFormatOf(path);
        target.write(path,
                     [&](std::ostream& out)
                     { format->write(out, motion, source); });
        if (target.stepFailed())
            return kExitFailure;
    }
    return kExitSuccess;
}

ExportedTexts
exportInMemory(const KaASF& asf, const KaAMC& amc, const ExportArguments& run)
{
    ExportedTexts texts;
    MemoryTarget target(texts);
    texts.status = exportDocuments(asf, amc, run, target);
    return texts;
}

int runExport(const ExportArguments& run)
{
    // Replacing an input with an output would destroy the capture.
    checkDistinctFiles({run.asfFile, run.amcFile}, run.outputs);
    if (KtCheckException())
        return kExitFailure;
    KaASF asf;
    KaAMC amc;
    if (!readInputFile(run.asfFile, [&] { asf.read(run.asfFile); }) ||
        !readInputFile(run.amcFile, [&] { amc.read(run.amcFile); }))
        return kExitFailure;
    FileTarget target(run.noPrompt);
    return exportDocuments(asf, amc, run, target);
}

// The run of motexport: the shared envelope of reading and writing, around
// the motion's checks and one writer per output.
#include "motexport/ExportRun.h"

#include "amc/KaAMC.h"
#include "asf/KaASF.h"
#include "motexport/ExportFormat.h"
#include "motexport/MotionCheck.h"
#include "motexport/PosedMotion.h"
#include "program/DistinctFiles.h"
#include "program/ExitStatus.h"
#include "program/InputFile.h"
#include "program/OutputFile.h"
#include "toolkit/KtError.h"

namespace
{

// Every check that can refuse the documents, before any output is touched.
bool checkDocuments(const KaASF& asf, const KaAMC& amc, PosedMotion& motion)
{
    warnAboutBoneLines(asf, amc);
    KtCheckException();
    if (checkMotionValues(asf, amc))
        motion.checkFinite();
    return !KtCheckException();
}

} // namespace

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
    PosedMotion motion(asf, amc, run.scale, run.fps);
    if (!checkDocuments(asf, amc, motion))
        return kExitFailure;
    ExportSource source;
    source.asfFile = run.asfFile;
    source.amcFile = run.amcFile;
    source.skeletonName = asf.header().name.text();
    source.zUp = run.zUp;
    for (const char* path : run.outputs)
    {
        if (!run.noPrompt && !askOverwrite(path))
            continue;
        const ExportFormat* format = exportFormatOf(path);
        writeOutputFileWhole(path,
                             [&](std::ostream& out)
                             { format->write(out, motion, source); });
        if (KtCheckException())
            return kExitFailure;
    }
    return kExitSuccess;
}

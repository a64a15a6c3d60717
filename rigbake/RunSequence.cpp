// rigbake's run: read the skeleton, work out its joints, write the script.
#include "rigbake/RunSequence.h"

#include "asf/KaASF.h"
#include "program/DistinctFiles.h"
#include "program/ExitStatus.h"
#include "program/InputFile.h"
#include "program/OutputFile.h"
#include "rigbake/RigJoints.h"
#include "rigbake/RigScript.h"
#include "toolkit/KtError.h"

int runRigbake(const RigbakeArguments& run)
{
    // Replacing the skeleton with its script would destroy it.
    checkDistinctFiles({run.asfFile}, {run.melFile});
    if (KtCheckException())
        return kExitFailure;
    KaASF asf;
    if (!readInputFile(run.asfFile, [&] { asf.read(run.asfFile); }))
        return kExitFailure;
    // Before the overwrite question: nobody should be asked to replace a
    // file that will not be written.
    const RigJoints joints(asf);
    if (!joints.check())
    {
        KtError("Unable to make a rig of \"%s\": nothing was written.",
                run.asfFile);
        KtCheckException();
        return kExitFailure;
    }
    if (run.noPrompt || askOverwrite(run.melFile))
        writeOutputFileWhole(run.melFile,
                             [&](std::ostream& out)
                             { writeRigScript(out, joints); });
    return KtCheckException() ? kExitFailure : kExitSuccess;
}

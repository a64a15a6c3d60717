// The run: read both inputs, cross-check them, write the two outputs.
#include "app/RunSequence.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <iostream>

#include "amc/KaAMC.h"
#include "app/BodyTable.h"
#include "app/MelWriter.h"
#include "app/MovWriter.h"
#include "asf/KaASF.h"
#include "toolkit/KtError.h"
#include "toolkit/KtFile.h"

namespace
{

constexpr int kSuccess = 0;
constexpr int kFailure = 1;

// Checks, announces and reads one input. Returns false when the run must
// stop; whatever is pending (warnings included) has then been printed.
bool readInput(const char* path, const std::function<void()>& read)
{
    KtPathCheckReadAccess(path);
    if (KtCheckException())
        return false;
    std::cout << "Reading file: " << path << " ..." << std::flush;
    read();
    if (KtCheckException())
        return false;
    std::cout << "done.\n" << std::flush;
    return true;
}

void checkBodyDOFs(const char* name,
                   const KaASFDOFGroup& dofs,
                   const KaAMCBone* values)
{
    if (values && values->numValues() != dofs.numDOFs())
        KtWarning("Bone \"%s\" has %d dofs in the ASF, but the AMC specifies "
                  "%d.",
                  name,
                  dofs.numDOFs(),
                  values->numValues());
    else if (!values && dofs.numDOFs() > 0)
        KtWarning("Bone \"%s\" has dofs in the ASF, but not in the AMC.", name);
}

// Writes one output unless the user declines to replace it. Returns false
// when the run must stop.
bool writeOutput(const char* path,
                 const RunArguments& run,
                 const std::function<void(const char*)>& write)
{
    if (!run.noPrompt && !askOverwrite(path))
        return true;
    write(path);
    return !KtCheckException();
}

} // namespace

bool askOverwrite(const char* path)
{
    if (!KtFileExists(path))
        return true;
    std::cout << "\n"
              << "Output file '" << path << "' exists.\n";
    // Each answer is the first non-blank character typed; the rest of the
    // line answers the following prompts.
    for (;;)
    {
        std::cout << "Overwrite? [Y/N] " << std::flush;
        char answer = 0;
        if (!(std::cin >> answer))
        {
            std::cout << "\n" << std::flush;
            return false;
        }
        if (answer == 'y' || answer == 'Y')
            return true;
        if (answer == 'n' || answer == 'N')
            return false;
    }
}

// Bones of the frame that the skeleton lacks are not reported, and only the
// first frame is examined.
void checkDOFCounts(const KaASF& asf, const KaAMC& amc)
{
    if (amc.numFields() == 0)
    {
        KtWarning("The AMC specifies no frames of data.");
        return;
    }
    BodyTable bodies(asf, &amc.boneNames());
    bodies.bind(amc.field(0));
    for (int body = 0; body < bodies.count(); ++body)
        checkBodyDOFs(
            bodies.name(body), bodies.dofGroup(body), bodies.values(body));
}

// The file is closed before the verdict, so that a write that the system
// could not complete (a full disk, an error on close) is reported instead of
// "done." and success.
void writeOutputFile(const char* path,
                     const std::function<void(std::ostream&)>& writeContent)
{
    if (!KtPathCheckWriteAccess(path))
        return;
    std::cout << "Writing \"" << path << "\"..." << std::flush;
    std::ofstream file(path, std::ios::out | std::ios::trunc);
    if (!file.good())
    {
        std::cout << "done.\n" << std::flush;
        KtError("Unable to open \"%s\".", path);
        return;
    }
    errno = 0;
    writeContent(file);
    bool contentFailed = theExceptObj.errorOccurred();
    // The reason is that of the first write the system refused, which may
    // have come while writing or only when closing.
    int writeError = file.fail() ? errno : 0;
    errno = 0;
    file.close();
    if (!writeError)
        writeError = errno;
    bool incomplete = !contentFailed && file.fail();
    std::cout << "done.\n" << std::flush;
    if (incomplete)
        KtError("The file could not be written completely: %s.",
                writeError ? std::strerror(writeError) : "write error");
    if (contentFailed || incomplete)
        KtError("Unable to save \"%s\".", path);
}

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
    KaASF asf;
    KaAMC amc;
    if (!readInput(run.asfFile, [&] { asf.read(run.asfFile); }) ||
        !readInput(run.amcFile, [&] { amc.read(run.amcFile); }))
        return kFailure;

    checkDOFCounts(asf, amc);
    if (KtCheckException())
        return kFailure;

    auto mel = [&](const char* path) { writeMEL(path, asf, amc, run.fps); };
    auto mov = [&](const char* path) { writeMOV(path, asf, amc, run.fps); };
    if (!writeOutput(run.melFile, run, mel) ||
        !writeOutput(run.movFile, run, mov))
        return kFailure;
    return kSuccess;
}

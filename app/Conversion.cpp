// One conversion of read documents, from the DOF cross-check to both
// outputs.
#include "app/Conversion.h"

#include <sstream>
#include <vector>

#include "amc/KaAMC.h"
#include "app/MelWriter.h"
#include "app/MovWriter.h"
#include "asf/KaASF.h"
#include "pose/BodyTable.h"
#include "pose/ChannelLayout.h"
#include "program/ExitStatus.h"
#include "toolkit/KtError.h"

namespace
{

class MemoryTarget : public ConversionTarget
{
public:
    explicit MemoryTarget(ConvertedTexts& texts)
        : _texts(texts)
    {
    }

    bool stepFailed() override
    {
        bool failed = theExceptObj.errorOccurred();
        theExceptObj.clear();
        return failed;
    }

    void write(ConversionOutput output, const ContentWriter& content) override
    {
        std::ostringstream text;
        content(text);
        (output == ConversionOutput::kMEL ? _texts.mel : _texts.mov) =
            text.str();
    }

private:
    ConvertedTexts& _texts;
};

// A body whose DOF count the first frame contradicts; a motion without
// frames is one mismatch without a name.
struct DOFMismatch
{
    const char* name;
    int numDOFs;
    int values; // -1: the first frame lacks the body
};

std::vector<DOFMismatch> dofMismatches(const BodyTable& bodies,
                                       const ChannelLayout& layout,
                                       const KaAMC& amc)
{
    std::vector<DOFMismatch> mismatches;
    if (amc.numFields() == 0)
    {
        mismatches.push_back({nullptr, 0, 0});
        return mismatches;
    }
    for (int body = 0; body < bodies.count(); ++body)
    {
        const ChannelLayout::Body& channels = layout.body(body);
        const int numDOFs = bodies.numCodes(body);
        if (channels.present && channels.firstFrameValues != numDOFs)
            mismatches.push_back(
                {bodies.name(body), numDOFs, channels.firstFrameValues});
        else if (!channels.present && numDOFs > 0)
            mismatches.push_back({bodies.name(body), numDOFs, -1});
    }
    return mismatches;
}

void postMismatches(const std::vector<DOFMismatch>& mismatches)
{
    for (const DOFMismatch& m : mismatches)
    {
        if (!m.name)
            KtWarning("The AMC specifies no frames of data.");
        else if (m.values >= 0)
            KtWarning("Bone \"%s\" has %d dofs in the ASF, but the AMC "
                      "specifies %d.",
                      m.name,
                      m.numDOFs,
                      m.values);
        else
            KtWarning("Bone \"%s\" has dofs in the ASF, but not in the AMC.",
                      m.name);
    }
}

} // namespace

int convertDocuments(const KaASF& asf,
                     const KaAMC& amc,
                     const ConversionSettings& settings,
                     ConversionTarget& target)
{
    // The cross-check may warn about every bone: its warnings are reported
    // before the tables for the outputs are made, so that the two are never
    // held at once.
    checkDOFCounts(asf, amc);
    if (target.stepFailed())
        return kExitFailure;
    BodyTable bodies(asf, &amc.boneNames());
    ChannelLayout layout(bodies, amc);
    target.write(
        ConversionOutput::kMEL,
        [&](std::ostream& out)
        {
            writeMELScript(
                out, amc, bodies, layout, settings.fps, settings.filterText);
        });
    if (target.stepFailed())
        return kExitFailure;
    target.write(ConversionOutput::kMOV,
                 [&](std::ostream& out) {
                     writeMOVData(out, asf, amc, bodies, layout, settings.fps);
                 });
    return target.stepFailed() ? kExitFailure : kExitSuccess;
}

ConvertedTexts convertInMemory(const KaASF& asf,
                               const KaAMC& amc,
                               const ConversionSettings& settings)
{
    ConvertedTexts texts;
    MemoryTarget target(texts);
    texts.status = convertDocuments(asf, amc, settings, target);
    return texts;
}

// Bones of the frame that the skeleton lacks are not reported, and only the
// first frame is examined. The mismatches are gathered first and posted in
// the same order, so that the warnings can be posted after the tables that
// found them are gone.
void checkDOFCounts(const BodyTable& bodies,
                    const ChannelLayout& layout,
                    const KaAMC& amc)
{
    postMismatches(dofMismatches(bodies, layout, amc));
}

void checkDOFCounts(const KaASF& asf, const KaAMC& amc)
{
    std::vector<DOFMismatch> mismatches;
    {
        BodyTable bodies(asf, &amc.boneNames());
        ChannelLayout layout(bodies, amc);
        mismatches = dofMismatches(bodies, layout, amc);
    }
    postMismatches(mismatches);
}

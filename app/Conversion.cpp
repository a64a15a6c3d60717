// One conversion of read documents, from the DOF cross-check to both
// outputs.
#include "app/Conversion.h"

#include <sstream>

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

} // namespace

int convertDocuments(const KaASF& asf,
                     const KaAMC& amc,
                     const ConversionSettings& settings,
                     ConversionTarget& target)
{
    BodyTable bodies(asf, &amc.boneNames());
    ChannelLayout layout(bodies, amc);
    checkDOFCounts(bodies, layout, amc);
    if (target.stepFailed())
        return kExitFailure;
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
// first frame is examined.
void checkDOFCounts(const BodyTable& bodies,
                    const ChannelLayout& layout,
                    const KaAMC& amc)
{
    if (amc.numFields() == 0)
    {
        KtWarning("The AMC specifies no frames of data.");
        return;
    }
    for (int body = 0; body < bodies.count(); ++body)
    {
        const ChannelLayout::Body& channels = layout.body(body);
        const int numDOFs = bodies.numCodes(body);
        if (channels.present && channels.firstFrameValues != numDOFs)
            KtWarning("Bone \"%s\" has %d dofs in the ASF, but the AMC "
                      "specifies %d.",
                      bodies.name(body),
                      numDOFs,
                      channels.firstFrameValues);
        else if (!channels.present && numDOFs > 0)
            KtWarning("Bone \"%s\" has dofs in the ASF, but not in the AMC.",
                      bodies.name(body));
    }
}

void checkDOFCounts(const KaASF& asf, const KaAMC& amc)
{
    BodyTable bodies(asf, &amc.boneNames());
    ChannelLayout layout(bodies, amc);
    checkDOFCounts(bodies, layout, amc);
}

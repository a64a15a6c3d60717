// The checks of a motion before it is exported.
#include "motexport/MotionCheck.h"

#include <strings.h>
#include <vector>

#include "amc/KaAMC.h"
#include "pose/BodyTable.h"
#include "toolkit/KtError.h"

namespace
{

// The first frame's lines that no body takes.
void warnUnusedLines(BodyTable& bodies, const KaAMC& amc)
{
    const KaAMCField first = amc.field(0);
    bodies.bind(first);
    std::vector<bool> used(first.numBones(), false);
    for (int body = 0; body < bodies.count(); ++body)
        if (bodies.values(body))
            used[bodies.line(body)] = true;
    const KtNameList& names = amc.boneNames();
    int line = 0;
    for (auto name = names.begin(); name != names.end(); ++name, ++line)
    {
        if (used[line])
            continue;
        int earlier = 0;
        auto same = names.begin();
        for (; earlier < line && strcasecmp(*same, *name) != 0; ++same)
            ++earlier;
        if (earlier == line)
            KtWarning("Bone \"%s\" of the AMC is not in the ASF: its values "
                      "are left out.",
                      *name);
        else if (used[earlier])
            KtWarning("Bone \"%s\" has more than one line in a frame of the "
                      "AMC: only the first is used.",
                      *name);
    }
}

// Later frames are read by position: one whose lines differ would give its
// values to the wrong bones.
bool checkLineOrder(const KaAMC& amc)
{
    const KaAMCLineMismatch& mismatch = amc.lineMismatch();
    if (mismatch.field < 0)
        return true;
    const int frame = amc.field(mismatch.field).frameNumber();
    const KtNameList& first = amc.boneNames();
    if (mismatch.line >= first.count())
        KtError("Frame %d has the bone line \"%s\" past the first frame's "
                "%d lines.",
                frame,
                mismatch.name.text(),
                first.count());
    else if (mismatch.name.length() == 0)
        KtError("Frame %d ends before bone line %d, \"%s\", of the first "
                "frame.",
                frame,
                mismatch.line + 1,
                first[mismatch.line]);
    else
        KtError("Bone line %d of frame %d is \"%s\" where the first frame "
                "has \"%s\".",
                mismatch.line + 1,
                frame,
                mismatch.name.text(),
                first[mismatch.line]);
    KtError("Every frame of the AMC must hold the first frame's bone lines in "
            "the same order.");
    return false;
}

bool checkValueCounts(BodyTable& bodies, const KaAMC& amc)
{
    for (int frame = 0; frame < amc.numFields(); ++frame)
    {
        bodies.bind(amc.field(frame));
        for (int body = 0; body < bodies.count(); ++body)
        {
            const KaAMCBone* values = bodies.values(body);
            if (values && values->numValues() != bodies.numCodes(body))
            {
                KtError("Bone \"%s\" has %d dofs in the ASF, but %d values "
                        "in frame %d of the AMC.",
                        bodies.name(body),
                        bodies.numCodes(body),
                        values->numValues(),
                        amc.field(frame).frameNumber());
                return false;
            }
        }
    }
    return true;
}

} // namespace

void warnAboutBoneLines(const KaASF& asf, const KaAMC& amc)
{
    if (amc.numFields() == 0)
    {
        KtWarning("The AMC specifies no frames of data.");
        return;
    }
    BodyTable bodies(asf, &amc.boneNames());
    warnUnusedLines(bodies, amc);
}

bool checkMotionValues(const KaASF& asf, const KaAMC& amc)
{
    if (!checkLineOrder(amc))
        return false;
    BodyTable bodies(asf, &amc.boneNames());
    return checkValueCounts(bodies, amc);
}

// ChannelLayout: each body's position and rotation channels and their
// numbers.
#include "pose/ChannelLayout.h"

#include "amc/KaAMC.h"
#include "asf/KaASF.h"
#include "pose/BodyTable.h"

namespace
{

constexpr int kPositionChannels = 3;

} // namespace

ChannelLayout::ChannelLayout(BodyTable& bodies, const KaAMC& amc)
    : _bodies(bodies.count())
{
    const bool hasFrames = amc.numFields() > 0;
    if (hasFrames)
        bodies.bind(amc.field(0));
    for (int b = 0; b < bodies.count(); ++b)
    {
        Body& body = _bodies[b];
        body.translates = hasTranslationDOF(bodies.dofGroup(b));
        const KaAMCBone* values = hasFrames ? bodies.values(b) : nullptr;
        if (!values)
            continue;
        // Only a body with channels has rotations to list: a skeleton may
        // have many more bones than the motion moves.
        body.firstRotation = static_cast<int>(_rotations.size());
        appendRotations(bodies.dofGroup(b), &_rotations);
        body.numRotations =
            static_cast<int>(_rotations.size()) - body.firstRotation;
        body.present = true;
        body.firstFrameValues = values->numValues();
        body.firstChannel = _numChannels;
        body.numChannels =
            (body.translates ? kPositionChannels : 0) + body.numRotations;
        _numChannels += body.numChannels;
    }
}

void ChannelLayout::appendRotations(const KaASFDOFGroup& dofs,
                                    std::vector<Rotation>* rotations)
{
    int index = 0;
    for (const KaASFDOF* dof : dofs.dofs())
    {
        if (KaIsRotationDOF(dof->code()))
            rotations->push_back({index, dof->code()});
        ++index;
    }
}

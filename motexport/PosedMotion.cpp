// PosedMotion: the body table and the standard pose of one export, and the
// bone tree that the writers walk.
#include "motexport/PosedMotion.h"

#include <cmath>

#include "amc/KaAMC.h"
#include "toolkit/KtError.h"

namespace
{

double length(const KtVec3d& v)
{
    return std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
}

} // namespace

PosedMotion::PosedMotion(const KaASF& asf,
                         const KaAMC& amc,
                         double scale,
                         double fps)
    : _amc(amc)
    , _bodies(asf, &amc.boneNames())
    , _pose(asf)
    , _scale(scale)
    , _fps(fps)
    , _children(numBodies())
    , _isLeaf(numBodies(), true)
{
    _extent = length(rootPosition());
    for (int body = StandardPose::kRoot + 1; body < numBodies(); ++body)
    {
        _children[_pose.parent(body)].push_back(body);
        _isLeaf[_pose.parent(body)] = false;
        _extent += length(boneVector(body));
    }
    _isLeaf[StandardPose::kRoot] = false;
}

int PosedMotion::numFrames() const
{
    return _amc.numFields();
}

int PosedMotion::frameNumber(int frame) const
{
    return _amc.field(frame).frameNumber();
}

double PosedMotion::time(int frame) const
{
    // In double, so that frame numbers beyond a float's integers stay apart.
    return (static_cast<double>(frameNumber(frame)) - frameNumber(0)) / _fps;
}

void PosedMotion::evaluate(int frame)
{
    _bodies.bind(_amc.field(frame));
    _pose.evaluate(_bodies.boundValues(), _amc.units());
}

void PosedMotion::reportNotFinite(int body, int frame) const
{
    KtError("Frame %d puts \"%s\" at a position or rotation that is not a "
            "finite number: check the skeleton's units, lengths and axes, "
            "and the scale.",
            frameNumber(frame),
            name(body));
}

bool PosedMotion::checkFinite()
{
    if (numFrames() > 0)
        evaluate(0);
    else
        _pose.evaluateRest();
    for (int body = 0; body < numBodies(); ++body)
        if (!KtIsFinite(start(body)) || !KtIsFinite(end(body)) ||
            !KtIsFinite(_pose.relativeRotation(body)))
        {
            if (numFrames() > 0)
                reportNotFinite(body, 0);
            else
                KtError("The rest pose puts \"%s\" at a position or "
                        "rotation that is not a finite number: check the "
                        "skeleton's units, lengths and axes, and the scale.",
                        name(body));
            return false;
        }
    return true;
}

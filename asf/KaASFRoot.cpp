// KaASFRoot: construction and the orientation setter.
#include "asf/KaASFRoot.h"

namespace
{

constexpr int kAngles = 3;

} // namespace

KaASFRoot::KaASFRoot()
    : _orientation(kAngles)
    , _axisOrder(kAngles)
{
}

void KaASFRoot::setAxisOrient(const KtPoint& angles)
{
    _orientation._resize(kAngles);
    for (int axis = 0; axis < kAngles; ++axis)
        _orientation[axis] = angles[axis];
}

// KaASFBone: construction and the axis-order check.
#include "asf/KaASFBone.h"

#include "asf/KaAxisOrder.h"

namespace
{

constexpr int kAngles = 3;

} // namespace

// Body mass and centre of mass start at 0, like every other number of a
// bone that the file does not give.
KaASFBone::KaASFBone()
    : _axisOrder(kAngles)
{
}

bool KaASFBone::_axisOrientOrderValid() const
{
    if (_axisOrder.count() != kAngles)
        return false;
    for (int code : _axisOrder)
        if (code < kAxisX || code > kAxisZ)
            return false;
    return true;
}

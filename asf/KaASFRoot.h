// KaASFRoot: the root of a skeleton, its rest placement and its channels.
#pragma once

#include <iosfwd>

#include "asf/KaASFDOF.h"
#include "geometry/KtPoint.h"
#include "toolkit/KtArray.h"

// The name that stands for the root in a skeleton's hierarchy and in the
// bone lines of a motion.
constexpr const char* kKaRootName = "root";

class KaASFRoot
{
public:
    KaASFRoot();

    // As written in the file; lengths are not scaled by the units.
    const KtPoint& position() const { return _position; }
    void setPosition(const KtPoint& position) { _position = position; }

    // Orientation angles indexed by axis (x, y, z), in radians.
    const KtArray<float>& orientation() const { return _orientation; }
    void setAxisOrient(const KtPoint& angles);

    // Axis codes 1 X, 2 Y, 3 Z in composition order.
    const KtArray<int>& axisOrder() const { return _axisOrder; }
    void setAxisOrder(const KtArray<int>& order) { _axisOrder = order; }

    // The channels named by "order".
    const KaASFDOFGroup& dofGroup() const { return _dofGroup; }
    KaASFDOFGroup& dofGroup() { return _dofGroup; }

    // The :root section; degrees converts the orientation from radians.
    void printOn(std::ostream& out, int degrees) const;

private:
    KtPoint _position;
    KtArray<float> _orientation;
    KtArray<int> _axisOrder;
    KaASFDOFGroup _dofGroup;
};

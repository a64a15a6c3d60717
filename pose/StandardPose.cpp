// StandardPose: the skeleton's fixed parts gathered once, then each frame
// evaluated top-down in one pass.
#include "pose/StandardPose.h"

#include <algorithm>
#include <unordered_map>

#include "amc/KaAMC.h"
#include "asf/KaASF.h"
#include "geometry/KtAngles.h"
#include "geometry/KtEuler3d.h"

namespace
{

// The root hangs from the world: it is not turned, and ends at its position.
constexpr KtMat3d kWorldRotation;

// An axis word's angles composed first letter first. Codes the word does not
// hold (an empty or short order) turn nothing.
KtMat3d axisFrameOf(const KtVec3d& byAxis, const KtArray<int>& order)
{
    int codes[3] = {0, 0, 0};
    for (int place = 0; place < std::min(3, order.count()); ++place)
        codes[place] = order[place];
    return KtComposeRotation3d(byAxis, codes);
}

KtVec3d vectorOf(const KtPoint& p)
{
    return KtVec3d(p.x, p.y, p.z);
}

// Angles indexed by axis; missing ones turn nothing.
KtVec3d vectorOf(const KtArray<float>& angles)
{
    KtVec3d byAxis;
    for (int axis = 0; axis < std::min(3, angles.count()); ++axis)
        byAxis[axis] = angles[axis];
    return byAxis;
}

} // namespace

StandardPose::StandardPose(const KaASF& asf)
    : _rootPosition(vectorOf(asf.root().position()))
    , _lengthScale(1.0 / asf.header().lengthFactor)
{
    _rootPosition = _lengthScale * _rootPosition;
    _addBodies(asf);
    _orderParentsFirst();
}

void StandardPose::_addBodies(const KaASF& asf)
{
    auto add = [this](const KtVec3d& angles,
                      const KtArray<int>& order,
                      const KaASFDOFGroup& dofs) -> Body&
    {
        Body body;
        body.axisFrame = axisFrameOf(angles, order);
        body.firstDof = static_cast<int>(_dofCodes.size());
        body.numDofs = dofs.numDOFs();
        for (const KaASFDOF* dof : dofs.dofs())
            _dofCodes.push_back(dof->code());
        _bodies.push_back(body);
        return _bodies.back();
    };
    _bodies.reserve(asf.bones().count() + 1);
    int numDofs = asf.root().dofGroup().numDOFs();
    for (const KaASFBone* bone : asf.bones())
        numDofs += bone->dofGroup().numDOFs();
    _dofCodes.reserve(numDofs);
    const KaASFRoot& root = asf.root();
    add(vectorOf(root.orientation()), root.axisOrder(), root.dofGroup());

    // Parents are found by address: names may repeat.
    std::unordered_map<const KaASFBone*, int> bodyOfBone;
    for (const KaASFBone* bone : asf.bones())
    {
        bodyOfBone.emplace(bone, static_cast<int>(_bodies.size()));
        Body& body =
            add(vectorOf(bone->axis()), bone->axisOrder(), bone->dofGroup());
        body.boneVector = bone->length() * vectorOf(bone->direction());
    }
    int body = kRoot;
    for (const KaASFBone* bone : asf.bones())
    {
        auto found = bodyOfBone.find(bone->parent());
        _bodies[++body].parent =
            found == bodyOfBone.end() ? kRoot : found->second;
    }
}

// Breadth first from the root. A bone on a cycle (which the reader refuses)
// is never reached and stays at the origin.
void StandardPose::_orderParentsFirst()
{
    std::vector<std::vector<int>> children(_bodies.size());
    for (int body = kRoot + 1; body < count(); ++body)
        children[_bodies[body].parent].push_back(body);
    _visitOrder.push_back(kRoot);
    for (size_t next = 0; next < _visitOrder.size(); ++next)
        for (int child : children[_visitOrder[next]])
            _visitOrder.push_back(child);
}

void StandardPose::evaluate(const KaAMCBone* const* values, int degrees)
{
    // Made at the first evaluation, so that what only needs the skeleton's
    // fixed parts (a rig) never holds a pose.
    _posed.resize(_bodies.size());
    double angleScale = degrees ? kKtRadiansPerDegree : 1.0;
    for (int body : _visitOrder)
        _evaluateBody(body, values ? values[body] : nullptr, angleScale);
}

void StandardPose::evaluateRest()
{
    evaluate(nullptr, 0);
}

void StandardPose::_evaluateBody(int body,
                                 const KaAMCBone* values,
                                 double angleScale)
{
    const Body& fixed = _bodies[body];
    KtMat3d motion;
    bool turns = false;
    bool moves = false;
    KtVec3d translation;
    if (values)
    {
        const int* codes = _dofCodes.data() + fixed.firstDof;
        const float* given = values->values();
        int n = std::min(values->numValues(), fixed.numDofs);
        for (int k = 0; k < n; ++k)
            if (KaIsRotationDOF(codes[k]))
            {
                KtTurnAfter3d(
                    motion, codes[k] - kDofRX + 1, angleScale * given[k]);
                turns = true;
            }
            else if (KaIsTranslationDOF(codes[k]))
            {
                translation[codes[k] - kDofTX] = _lengthScale * given[k];
                moves = true;
            }
    }

    const bool isRoot = fixed.parent < 0;
    const KtMat3d& parentRotation =
        isRoot ? kWorldRotation : _posed[fixed.parent].rotation;
    const KtVec3d& parentEnd =
        isRoot ? _rootPosition : _posed[fixed.parent].end;

    // A body that does not turn keeps its parent's rotation exactly (C . C^-1
    // would be the identity only to rounding), and one that does not move
    // starts at its parent's end.
    Posed& posed = _posed[body];
    posed.relative =
        turns ? fixed.axisFrame * motion * fixed.axisFrame.transposed()
              : KtMat3d();
    posed.rotation = turns ? parentRotation * posed.relative : parentRotation;
    posed.start =
        moves ? parentEnd + parentRotation * (fixed.axisFrame * translation)
              : parentEnd;
    posed.end = posed.start + posed.rotation * fixed.boneVector;
}

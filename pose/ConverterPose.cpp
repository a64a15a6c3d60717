// ConverterPose: each body's systems formed once per frame, top-down, and the
// rest placements kept across frames.
#include "pose/ConverterPose.h"

#include "amc/KaAMC.h"
#include "asf/KaASF.h"
#include "asf/KaBoneFrame.h"
#include "geometry/KtAngles.h"
#include "geometry/KtEuler.h"
#include "pose/BodyTable.h"

namespace
{

const KtCoordSystem kIdentitySystem;

void applyRotation(KtCoordSystem& cs, int axis, float angle)
{
    switch (axis)
    {
    case kDofRX:
        cs.preRotateX(angle);
        break;
    case kDofRY:
        cs.preRotateY(angle);
        break;
    default:
        cs.preRotateZ(angle);
        break;
    }
}

} // namespace

void applyDOFValue(
    KtCoordSystem& cs, int dofKind, float value, float scale, int degrees)
{
    switch (dofKind)
    {
    case kDofTX:
        cs.preTranslateX(value * scale);
        break;
    case kDofTY:
        cs.preTranslateY(value * scale);
        break;
    case kDofTZ:
        cs.preTranslateZ(value * scale);
        break;
    case kDofRX:
    case kDofRY:
    case kDofRZ:
    {
        // The product is taken in double and only then rounded to float.
        float angle =
            degrees ? static_cast<float>(value * kKtRadiansPerDegree) : value;
        applyRotation(cs, dofKind, angle);
        break;
    }
    default:
        break;
    }
}

// The backward pass indexes the values from the last value, not the last
// DOF; the two only differ for a body whose value count does not match its
// DOFs, and then any index outside its values is skipped rather than read.
void applyDOFCodes(KtCoordSystem& cs,
                   const int* codes,
                   int numCodes,
                   const float* values,
                   int numValues,
                   float scale,
                   int degrees)
{
    for (int i = 0; i < numCodes && i < numValues; ++i)
        if (KaIsTranslationDOF(codes[i]))
            applyDOFValue(cs, codes[i], values[i], scale, degrees);
    int index = numValues - 1;
    for (int i = numCodes - 1; i >= 0 && index >= 0; --i, --index)
        if (KaIsRotationDOF(codes[i]))
            applyDOFValue(cs, codes[i], values[index], scale, degrees);
}

ConverterPose::ConverterPose(const KaASF& asf,
                             const BodyTable& bodies,
                             float scale,
                             int degrees)
    : _bodies(bodies)
    , _scale(scale)
    , _degrees(degrees)
    , _rootRest(rootRest(asf.root()))
{
    int count = bodies.count();
    for (KtDArray<int>* positions :
         {&_animatedAt, &_placementAt[0], &_placementAt[1]})
    {
        positions->_resize(count);
        for (int& position : *positions)
            position = -1;
    }
}

KtCoordSystem ConverterPose::rootRest(const KaASFRoot& root)
{
    KtCoordSystem rest;
    rest.setTranslationVector(root.position());
    rest.setRotationMatrix(
        KtComposeRotationMatrix(root.orientation(), root.axisOrder()));
    return rest;
}

void ConverterPose::startFrame()
{
    if (++_frame == 0) // after 2^32 frames the marks start again
    {
        for (Animated& entry : _animated)
            entry.frame = 0;
        _frame = 1;
    }
    _rootMoves = _bodies.values(BodyTable::kRoot) ? 1 : 0;
}

// Climbs to the nearest body already evaluated in this frame (or to the
// root), then evaluates the bodies on the way back down, so that a deep
// hierarchy needs no deep call stack and no body is evaluated twice.
const KtCoordSystem& ConverterPose::animated(int body)
{
    _animationPath.clear();
    for (int b = body; !_animatedInFrame(b); b = _bodies.parent(b))
    {
        _animationPath.push_back(b);
        if (b == BodyTable::kRoot)
            break;
    }
    for (auto b = _animationPath.rbegin(); b != _animationPath.rend(); ++b)
        _animate(*b);
    return _animatedEntry(body).system;
}

bool ConverterPose::_animatedInFrame(int body) const
{
    int at = _animatedAt[body];
    return at >= 0 && _animated[at].frame == _frame;
}

ConverterPose::Animated& ConverterPose::_animatedEntry(int body)
{
    int& at = _animatedAt[body];
    if (at < 0)
    {
        at = static_cast<int>(_animated.size());
        _animated.emplace_back();
    }
    return _animated[at];
}

const KtCoordSystem& ConverterPose::rest(int body)
{
    if (body != BodyTable::kRoot)
        _placement(body);
    return _placedRest(body);
}

void ConverterPose::_animate(int body)
{
    Animated& entry = _animatedEntry(body);
    KtCoordSystem& animated = entry.system;
    if (body == BodyTable::kRoot)
        animated = _placedRest(BodyTable::kRoot);
    else
        Kt4X4FloatMat::multiply(animated,
                                _placement(body).placed,
                                _animatedEntry(_bodies.parent(body)).system);
    if (const KaAMCBone* values = _bodies.values(body))
        applyDOFCodes(animated,
                      _bodies.codes(body),
                      _bodies.numCodes(body),
                      values->values(),
                      values->numValues(),
                      _scale,
                      _degrees);
    entry.frame = _frame;
}

// The rest system of a body already placed.
const KtCoordSystem& ConverterPose::_placedRest(int body) const
{
    if (body != BodyTable::kRoot)
        return _placements[_rootMoves][_placementAt[_rootMoves][body]].rest;
    return _rootMoves ? _rootRest : kIdentitySystem;
}

// Placed top-down like the animated systems; a parent is placed before its
// children, so its rest system is ready for them.
const ConverterPose::Placement& ConverterPose::_placement(int body)
{
    std::deque<Placement>& placements = _placements[_rootMoves];
    KtDArray<int>& placementAt = _placementAt[_rootMoves];
    if (placementAt[body] >= 0)
        return placements[placementAt[body]];
    _placementPath.clear();
    for (int b = body; b != BodyTable::kRoot && placementAt[b] < 0;
         b = _bodies.parent(b))
        _placementPath.push_back(b);
    for (auto b = _placementPath.rbegin(); b != _placementPath.rend(); ++b)
    {
        const KtCoordSystem& parentRest = _placedRest(_bodies.parent(*b));
        Placement& placement = placements.emplace_back();
        KtCoordSystem axisFrame;
        KaGetComposedBoneMatrices(
            &axisFrame, &placement.placed, *_bodies.bone(*b), parentRest);
        Kt4X4FloatMat::multiply(placement.rest, placement.placed, parentRest);
        placementAt[*b] = static_cast<int>(placements.size()) - 1;
    }
    return placements[placementAt[body]];
}

// PoseEvaluator: evaluateBodyFrame's systems for every body of a frame,
// each formed once, top-down, and the rest placements kept across frames.
#include "app/PoseEvaluator.h"

#include <cstring>

#include "amc/KaAMC.h"
#include "app/BodyTable.h"
#include "app/PoseEvaluation.h"
#include "asf/KaASF.h"
#include "asf/KaBoneFrame.h"
#include "geometry/KtEuler.h"

namespace
{

constexpr const char* kRootName = "root";
const KtCoordSystem kIdentitySystem;

} // namespace

PoseEvaluator::PoseEvaluator(const KaASF& asf,
                             const BodyTable& bodies,
                             float scale,
                             int degrees)
    : _bodies(bodies)
    , _scale(scale)
    , _degrees(degrees)
{
    int count = bodies.count();
    _target._resize(count);
    _parentTarget._resize(count);
    for (int body = 0; body < count; ++body)
    {
        const char* name = bodies.name(body);
        _target[body] = _evaluatedByName(asf, name);
        _parentTarget[body] = kIdentity;
        if (std::strcmp(name, kRootName) == 0)
            continue;
        const KaASFBone* bone = asf.findBone(name);
        if (bone && bone->parent())
            _parentTarget[body] =
                _evaluatedByName(asf, bone->parent()->name().text());
    }

    // The root's rest system when the frame moves it; the identity when not.
    const KaASFRoot& root = asf.root();
    _rootRest.setTranslationVector(root.position());
    _rootRest.setRotationMatrix(
        KtComposeRotationMatrix(root.orientation(), root.axisOrder()));
    _inverseOfIdentity.invert();

    _animatedSystems._resize(count);
    _animatedInFrame._resize(count);
    for (int moves = 0; moves < 2; ++moves)
    {
        _placements[moves]._resize(count);
        _placed[moves]._resize(count);
    }
}

// As evaluateBodyFrame resolves its name: exactly "root" is the root, any
// other name the first bone of that name ignoring case.
int PoseEvaluator::_evaluatedByName(const KaASF& asf, const char* name) const
{
    if (std::strcmp(name, kRootName) == 0)
        return BodyTable::kRoot;
    const KaASFBone* bone = asf.findBone(name);
    return bone ? _bodies.bodyOf(bone) : kIdentity;
}

void PoseEvaluator::startFrame()
{
    if (++_frame == 0) // after 2^32 frames the marks start again
    {
        for (unsigned& mark : _animatedInFrame)
            mark = 0;
        _frame = 1;
    }
    _rootMoves = _bodies.values(BodyTable::kRoot) ? 1 : 0;
}

// The parent's animated system is inverted and multiplied onto the body's;
// the identity's inverse is the same every time, so it is formed once.
KtPoint PoseEvaluator::position(int body)
{
    KtCoordSystem parent = _inverseOfIdentity;
    if (_parentTarget[body] != kIdentity)
    {
        parent = _animated(_parentTarget[body]);
        parent.invert();
    }
    KtCoordSystem system;
    if (_target[body] != kIdentity)
        system = _animated(_target[body]);
    Kt4X4FloatMat::multiply(system, system, parent);
    return system.translationVector();
}

// Climbs to the nearest body already evaluated in this frame (or to the
// root), then evaluates the bodies on the way back down, so that a deep
// hierarchy needs no deep call stack and no body is evaluated twice.
const KtCoordSystem& PoseEvaluator::_animated(int body)
{
    _animationPath.clear();
    for (int b = body; _animatedInFrame[b] != _frame; b = _bodies.parent(b))
    {
        _animationPath.push_back(b);
        if (b == BodyTable::kRoot)
            break;
    }
    for (auto b = _animationPath.rbegin(); b != _animationPath.rend(); ++b)
        _animate(*b);
    return _animatedSystems[body];
}

void PoseEvaluator::_animate(int body)
{
    KtCoordSystem& animated = _animatedSystems[body];
    if (body == BodyTable::kRoot)
        animated = _rest(BodyTable::kRoot);
    else
        Kt4X4FloatMat::multiply(animated,
                                _placement(body).placed,
                                _animatedSystems[_bodies.parent(body)]);
    if (const KaAMCBone* values = _bodies.values(body))
        applyDOFCodes(animated,
                      _bodies.codes(body),
                      _bodies.numCodes(body),
                      values->values(),
                      values->numValues(),
                      _scale,
                      _degrees);
    _animatedInFrame[body] = _frame;
}

const KtCoordSystem& PoseEvaluator::_rest(int body) const
{
    if (body != BodyTable::kRoot)
        return _placements[_rootMoves][body].rest;
    return _rootMoves ? _rootRest : kIdentitySystem;
}

// Placed top-down like the animated systems; a parent is placed before its
// children, so its rest system is ready for them.
const PoseEvaluator::Placement& PoseEvaluator::_placement(int body)
{
    KtDArray<Placement>& placements = _placements[_rootMoves];
    KtDArray<char>& placed = _placed[_rootMoves];
    _placementPath.clear();
    for (int b = body; b != BodyTable::kRoot && !placed[b];
         b = _bodies.parent(b))
        _placementPath.push_back(b);
    for (auto b = _placementPath.rbegin(); b != _placementPath.rend(); ++b)
    {
        const KtCoordSystem& parentRest = _rest(_bodies.parent(*b));
        Placement& placement = placements[*b];
        KtCoordSystem axisFrame;
        KaGetComposedBoneMatrices(
            &axisFrame, &placement.placed, *_bodies.bone(*b), parentRest);
        Kt4X4FloatMat::multiply(placement.rest, placement.placed, parentRest);
        placed[*b] = 1;
    }
    return placements[body];
}

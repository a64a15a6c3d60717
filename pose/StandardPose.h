// StandardPose: the standard skeleton pose in double precision, the forward
// kinematics that the public capture collections are made for and that the
// exporters share (not the converter's own pose, which keeps its quirks).
#pragma once

#include <vector>

#include "geometry/KtMat3d.h"

class KaAMCBone;
class KaASF;

// Bodies: 0 is the root, 1..n the skeleton's bones in bone-list order.
// Column vectors (KtMat3d.h); every length is in the skeleton's length unit
// (the file's value divided by it). For each body:
//   C   its axis frame: its axis angles (the root's orientation) composed in
//       the order of its axis word, first letter first (XYZ: Rz . Ry . Rx);
//   M   its motion in a frame: its rotation values composed in DOF order,
//       first listed first (rz rx ry: Ry . Rx . Rz); t its translation values.
// Then, p being the parent body:
//   root:  R = C . M . C^-1,  joint = position + C . t
//   bone:  R = R_p . C . M . C^-1
//          start = end_p + R_p . C . t   (end of the root: its joint)
//          end   = start + R . (direction . length)
// The direction is taken as written, not normalised.
class StandardPose
{
public:
    static constexpr int kRoot = 0;

    // Everything that does not change from frame to frame is taken from the
    // skeleton here; the pose keeps no reference to it. Its results wait
    // for the first evaluation.
    explicit StandardPose(const KaASF& asf);

    // values has count() entries: values[body] holds the body's values in
    // the frame in its DOF order, or is null when the frame lacks the body
    // (M = identity, t = 0). Angles are degrees when degrees is non-zero,
    // else radians. At most as many values as the body has DOFs are read,
    // and no more than it holds; an "l" DOF is ignored.
    void evaluate(const KaAMCBone* const* values, int degrees);
    // Every M the identity and every t zero.
    void evaluateRest();

    int count() const { return static_cast<int>(_bodies.size()); }
    // The parent body; kRoot for a bone that hangs from the root, -1 for the
    // root itself.
    int parent(int body) const { return _bodies[body].parent; }

    // Results of the last evaluation. For the root, start and end are both
    // its joint; relativeRotation is R_p^-1 . R (R itself for the root).
    const KtMat3d& rotation(int body) const { return _posed[body].rotation; }
    const KtMat3d& relativeRotation(int body) const
    {
        return _posed[body].relative;
    }
    const KtVec3d& start(int body) const { return _posed[body].start; }
    const KtVec3d& end(int body) const { return _posed[body].end; }

    // The skeleton's fixed parts, as the evaluation uses them.
    const KtMat3d& axisFrame(int body) const { return _bodies[body].axisFrame; }
    // Direction times length; zero for the root.
    const KtVec3d& boneVector(int body) const
    {
        return _bodies[body].boneVector;
    }
    // The root's position divided by the length unit.
    const KtVec3d& rootPosition() const { return _rootPosition; }

private:
    struct Body
    {
        KtMat3d axisFrame;
        KtVec3d boneVector;
        int parent = -1;
        // The body's numDofs DOF codes, from _dofCodes[firstDof] on.
        int firstDof = 0;
        int numDofs = 0;
    };
    struct Posed
    {
        KtMat3d rotation;
        KtMat3d relative;
        KtVec3d start;
        KtVec3d end;
    };

    void _addBodies(const KaASF& asf);
    void _orderParentsFirst();
    void _evaluateBody(int body, const KaAMCBone* values, double angleScale);

    std::vector<Body> _bodies;
    std::vector<int> _dofCodes;
    // Every body after its parent.
    std::vector<int> _visitOrder;
    std::vector<Posed> _posed;
    KtVec3d _rootPosition;
    double _lengthScale = 1.0;
};

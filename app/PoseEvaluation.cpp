// Pose evaluation: the world coordinate system of a body (the root or a
// bone), at rest and as animated by one frame of motion.
#include "app/PoseEvaluation.h"

#include <cstring>

#include "amc/KaAMC.h"
#include "asf/KaASF.h"
#include "asf/KaBoneFrame.h"
#include "geometry/KtCoordSystem.h"
#include "geometry/KtEuler.h"

namespace
{

// pi/180 in double, rounded to float only after the product.
constexpr double kRadiansPerDegree = 0.017453292519943295;

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

// Places one bone under its parent's systems: each becomes the bone's
// placed rest frame times the parent's system, and the animated one then
// takes the bone's values from the frame.
void placeBone(KtCoordSystem& animated,
               KtCoordSystem& rest,
               const KaASFBone& bone,
               const KaAMCField& frame,
               float scale,
               int degrees)
{
    KtCoordSystem axisFrame;
    KtCoordSystem placedFrame;
    KaGetComposedBoneMatrices(&axisFrame, &placedFrame, bone, rest);
    Kt4X4FloatMat::multiply(rest, placedFrame, rest);
    Kt4X4FloatMat::multiply(animated, placedFrame, animated);
    if (const KaAMCBone* values = frame.findBone(bone.name()))
        applyDOFValues(animated,
                       bone.dofGroup(),
                       values->values(),
                       values->numValues(),
                       scale,
                       degrees);
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
        float angle =
            degrees ? static_cast<float>(value * kRadiansPerDegree) : value;
        applyRotation(cs, dofKind, angle);
        break;
    }
    default:
        break;
    }
}

void applyDOFValues(KtCoordSystem& cs,
                    const KaASFDOFGroup& dofs,
                    const float* values,
                    int numValues,
                    float scale,
                    int degrees)
{
    const KtArray<int> codes = dofs.codes();
    applyDOFCodes(
        cs, codes.data(), codes.count(), values, numValues, scale, degrees);
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

void evaluateRootFrame(KtCoordSystem& animated,
                       KtCoordSystem& rest,
                       const KaASFRoot& root,
                       const KaAMCBone& values,
                       float scale,
                       int degrees)
{
    // The root's position is used as written; the length scale applies to
    // translation values only.
    rest = 1.0f;
    rest.setTranslationVector(root.position());
    rest.setRotationMatrix(
        KtComposeRotationMatrix(root.orientation(), root.axisOrder()));
    animated = rest;
    applyDOFValues(animated,
                   root.dofGroup(),
                   values.values(),
                   values.numValues(),
                   scale,
                   degrees);
}

// Walks from the root down to the body, so that a deep hierarchy needs no
// deep call stack; each bone is placed under the systems of its parent.
void evaluateBodyFrame(KtCoordSystem& animated,
                       KtCoordSystem& rest,
                       const KaASF& asf,
                       const KaAMCField& frame,
                       const char* name,
                       float scale,
                       int degrees)
{
    if (std::strcmp(name, "root") == 0)
    {
        if (const KaAMCBone* values = frame.findBone("root"))
            evaluateRootFrame(
                animated, rest, asf.root(), *values, scale, degrees);
        return;
    }
    const KaASFBone* body = asf.findBone(name);
    if (!body)
        return;
    KtArray<const KaASFBone*> chain;
    int depth = 0;
    for (const KaASFBone* bone = body; bone; bone = bone->parent())
        ++depth;
    chain._resize(depth);
    for (const KaASFBone* bone = body; bone; bone = bone->parent())
        chain[--depth] = bone;

    evaluateBodyFrame(animated, rest, asf, frame, "root", scale, degrees);
    for (const KaASFBone* bone : chain)
        placeBone(animated, rest, *bone, frame, scale, degrees);
}

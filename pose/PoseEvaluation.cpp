// The converter's pose by name, through the one pose engine.
#include "pose/PoseEvaluation.h"

#include "amc/KaAMC.h"
#include "asf/KaASF.h"
#include "geometry/KtCoordSystem.h"
#include "pose/BodyTable.h"
#include "pose/ConverterPose.h"

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

void evaluateRootFrame(KtCoordSystem& animated,
                       KtCoordSystem& rest,
                       const KaASFRoot& root,
                       const KaAMCBone& values,
                       float scale,
                       int degrees)
{
    rest = ConverterPose::rootRest(root);
    animated = rest;
    applyDOFValues(animated,
                   root.dofGroup(),
                   values.values(),
                   values.numValues(),
                   scale,
                   degrees);
}

void evaluateBodyFrame(KtCoordSystem& animated,
                       KtCoordSystem& rest,
                       const KaASF& asf,
                       const KaAMCField& frame,
                       const char* name,
                       float scale,
                       int degrees)
{
    BodyTable bodies(asf, nullptr);
    int body = bodies.bodyNamed(name);
    if (body == BodyTable::kNone)
        return;
    bodies.bind(frame);
    ConverterPose pose(asf, bodies, scale, degrees);
    pose.startFrame();
    animated = pose.animated(body);
    rest = pose.rest(body);
}

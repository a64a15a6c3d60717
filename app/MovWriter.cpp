// The MOV channel file: one line per frame, the frame's time followed by
// each present body's position and rotation channels.
#include "app/MovWriter.h"

#include <cstring>
#include <ostream>

#include "amc/KaAMC.h"
#include "app/MelWriter.h"
#include "app/PoseEvaluation.h"
#include "asf/KaASF.h"
#include "geometry/KtCoordSystem.h"
#include "toolkit/KtError.h"

namespace
{

// The position of a body relative to its parent bone's animated frame. For
// the root and for bones attached to it the parent stays the identity, so
// their positions are world positions; the asymmetry is intended.
KtPoint bodyPosition(const char* name,
                     const KaASF& asf,
                     const KaAMCField& frame,
                     float scale,
                     int units)
{
    KtCoordSystem parent;
    KtCoordSystem parentRest;
    KtCoordSystem body;
    KtCoordSystem bodyRest;
    if (std::strcmp(name, "root") != 0)
    {
        const KaASFBone* bone = asf.findBone(name);
        if (bone && bone->parent())
            evaluateBodyFrame(parent,
                              parentRest,
                              asf,
                              frame,
                              bone->parent()->name(),
                              scale,
                              units);
    }
    evaluateBodyFrame(body, bodyRest, asf, frame, name, scale, units);
    parent.invert();
    Kt4X4FloatMat::multiply(body, body, parent);
    return body.translationVector();
}

bool writeFrame(std::ostream& out,
                const KaASF& asf,
                const KaAMCField& frame,
                int fps,
                float scale,
                int units)
{
    out << static_cast<float>(frame.frameNumber()) / static_cast<float>(fps)
        << " ";
    if (const KaAMCBone* root = frame.findBone("root"))
    {
        writeBodyChannels(out,
                          "root",
                          asf,
                          frame,
                          asf.root().dofGroup(),
                          *root,
                          scale,
                          units);
        if (theExceptObj.errorOccurred())
        {
            KtError("Unable to convert transformations to MOV for \"root\".");
            return false;
        }
    }
    for (const KaASFBone* bone : asf.bones())
    {
        const KaAMCBone* values = frame.findBone(bone->name());
        if (!values)
            continue;
        writeBodyChannels(out,
                          bone->name(),
                          asf,
                          frame,
                          bone->dofGroup(),
                          *values,
                          scale,
                          units);
        if (theExceptObj.errorOccurred())
        {
            // Deliberately without a closing quote after the name: the
            // message has always read so.
            KtError("Unable to convert transformations to MOV for body \"%s.",
                    bone->name().text());
            return false;
        }
    }
    out << "\n";
    return true;
}

} // namespace

void writeBodyChannels(std::ostream& out,
                       const char* name,
                       const KaASF& asf,
                       const KaAMCField& frame,
                       const KaASFDOFGroup& dofs,
                       const KaAMCBone& values,
                       float scale,
                       int units)
{
    if (dofs.numDOFs() != values.numValues())
    {
        KtError("The number of degrees of freedom in the AMC does not match "
                "the number of degrees of freedom in the ASF.");
        return;
    }
    if (hasTranslationDOF(dofs))
    {
        KtPoint position = bodyPosition(name, asf, frame, scale, units);
        out << position.x << " " << position.y << " " << position.z << " ";
    }
    // Rotation values are copied as read: a motion in radians yields radian
    // values under the script's "degree" label, as it always has.
    int i = 0;
    for (const KaASFDOF* dof : dofs.dofs())
    {
        if (dof->isRotation())
            out << values.value(i) << " ";
        ++i;
    }
}

void writeMOVData(std::ostream& out,
                  const KaASF& asf,
                  const KaAMC& amc,
                  int fps)
{
    // Skeleton lengths in the unit that the script declares as inches.
    const float scale = static_cast<float>(1.0 / asf.header().lengthFactor);
    for (int i = 0; i < amc.numFields(); ++i)
        if (!writeFrame(out, asf, amc.field(i), fps, scale, amc.units()))
            return;
}

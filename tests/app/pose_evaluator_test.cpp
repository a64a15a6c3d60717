// BodyTable and PoseEvaluator: lookups by name position and the per-frame
// evaluation give exactly what search and evaluation by name give, with
// every quirk of names in skeletons and motions.
#include <cstring>
#include <initializer_list>
#include <string>

#include <gtest/gtest.h>

#include "app/BodyTable.h"
#include "app/PoseEvaluation.h"
#include "app/PoseEvaluator.h"
#include "documents.h"
#include "geometry/KtCoordSystem.h"

namespace
{

KaASFBone* addBone(KaASF& asf,
                   const char* name,
                   KaASFBone* parent,
                   std::initializer_list<int> dofs,
                   float twist)
{
    KaASFBone bone;
    bone.setName(name);
    bone.setDirection(KtPoint(0.3f, 1.0f, -0.2f));
    bone.setLength(1.5f);
    KtArray<float> axis(3);
    axis[0] = twist;
    axis[2] = 0.5f - twist;
    bone.setAxis(axis);
    KtArray<int> order(3);
    for (int i = 0; i < 3; ++i)
        order[i] = 3 - i;
    bone.setAxisOrder(order);
    for (int code : dofs)
        bone.dofGroup().addDOF(code);
    KaASFBone* added = asf.addBone(bone);
    added->setParent(parent);
    return added;
}

// Evaluation by name reaches the first bone of a name, ignoring case, and
// the root for a bone named "root"; a bone whose parent is named "root" is
// placed under the real root's systems.
KaASF quirkySkeleton()
{
    KaASF asf;
    for (int code : {kDofTX, kDofTY, kDofTZ, kDofRZ, kDofRY, kDofRX})
        asf.root().dofGroup().addDOF(code);
    asf.root().setPosition(KtPoint(1.0f, -2.0f, 0.5f));
    asf.root().setAxisOrient(KtPoint(0.1f, 0.2f, -0.3f));
    KaASFBone* hip = addBone(asf, "hip", nullptr, {kDofRX, kDofRY}, 0.2f);
    KaASFBone* spine =
        addBone(asf, "spine", hip, {kDofTX, kDofTY, kDofTZ, kDofRZ}, -0.4f);
    KaASFBone* upper = addBone(asf, "SPINE", spine, {kDofTY, kDofRX}, 0.1f);
    KaASFBone* fake = addBone(asf, "root", upper, {kDofTX}, 0.6f);
    KaASFBone* arm = addBone(asf, "arm", fake, {kDofTX, kDofRY}, 0.7f);
    addBone(asf, "hand", arm, {kDofTZ, kDofRX, kDofRY}, 0.3f);
    addBone(asf, "free", nullptr, {kDofTX, kDofTY}, 0.0f);
    return asf;
}

// Names that differ in case (the first is found), a frame with fewer bones
// than names, a parent with fewer values than DOFs, unnamed extra bones.
const char* kQuirkyMotion = ":FULLY-SPECIFIED\n:DEGREES\n"
                            "1\nroot 1 2 3 10 20 30\nhip 5 6\n"
                            "spine 0.5 1 1.5 40\nSPINE 2 3\nArm 1 2\n"
                            "hand 0.1 0.2 0.3\nfree 4 5\n"
                            "2\nroot 4 5 6 7 8 9\nhip 1 2\n"
                            "3\nROOT 9 8 7 6 5 4\nhip 1\nspine 1 1 1 1\n"
                            "SPINE 1 1\nArm 2\nhand 1 1 1\nfree 1 1\n"
                            "extra 5\n"
                            "4\nhip -3 4\nspine 2 1 2 5\nSPINE 3 3\n";

// The position as the MOV writer defines it, evaluated by name.
KtPoint positionByName(const KaASF& asf,
                       const KaAMCField& frame,
                       const char* name,
                       float scale,
                       int degrees)
{
    KtCoordSystem parent;
    KtCoordSystem parentRest;
    KtCoordSystem body;
    KtCoordSystem bodyRest;
    const KaASFBone* bone = asf.findBone(name);
    if (std::strcmp(name, "root") != 0 && bone && bone->parent())
        evaluateBodyFrame(parent,
                          parentRest,
                          asf,
                          frame,
                          bone->parent()->name(),
                          scale,
                          degrees);
    evaluateBodyFrame(body, bodyRest, asf, frame, name, scale, degrees);
    parent.invert();
    Kt4X4FloatMat::multiply(body, body, parent);
    return body.translationVector();
}

} // namespace

TEST(BodyTable, FindsWhatASearchByNameFinds)
{
    KaASF asf = quirkySkeleton();
    KaAMC amc = motionFrom(kQuirkyMotion);
    KaAMC renamed = amc; // a field whose names no longer follow positions
    KtStr other("hand");
    renamed.field(0).bone(1).setName(&other);
    for (const KaAMC* motion : {&amc, &renamed})
    {
        BodyTable bodies(asf, &motion->boneNames());
        for (int f = 0; f < motion->numFields(); ++f)
        {
            const KaAMCField& frame = motion->field(f);
            bodies.bind(frame);
            for (int body = 0; body < bodies.count(); ++body)
                EXPECT_EQ(frame.findBone(bodies.name(body)),
                          bodies.values(body))
                    << "frame " << f << ", body " << bodies.name(body);
        }
    }
}

TEST(PoseEvaluator, GivesTheFloatsOfEvaluationByName)
{
    KaASF asf = quirkySkeleton();
    KaAMC amc = motionFrom(kQuirkyMotion);
    BodyTable bodies(asf, &amc.boneNames());
    const float scale = static_cast<float>(1.0 / 0.45);
    for (int degrees : {0, 1})
    {
        PoseEvaluator pose(asf, bodies, scale, degrees);
        for (int f = 0; f < amc.numFields(); ++f)
        {
            bodies.bind(amc.field(f));
            pose.startFrame();
            // Children before parents: the order of the questions must not
            // matter.
            for (int body = bodies.count() - 1; body >= 0; --body)
            {
                KtPoint expected = positionByName(
                    asf, amc.field(f), bodies.name(body), scale, degrees);
                KtPoint actual = pose.position(body);
                EXPECT_EQ(0, std::memcmp(&expected, &actual, sizeof actual))
                    << "frame " << f << ", body " << bodies.name(body)
                    << ", degrees " << degrees;
            }
        }
    }
}

// Pose evaluation: DOF values applied as "pre" operations in the prescribed
// order and units, bodies evaluated down from the root, and the converter's
// fast path (BodyTable, PoseEvaluator) against search and evaluation by
// name, with every quirk of names in skeletons and motions.
#include <cmath>
#include <initializer_list>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "app/BodyTable.h"
#include "app/MovWriter.h"
#include "app/PoseEvaluation.h"
#include "app/PoseEvaluator.h"
#include "asf/KaAxisOrder.h"
#include "documents.h"
#include "geometry/KtCoordSystem.h"
#include "support/geometry_helpers.h"

namespace
{
constexpr int kX = 0;
constexpr int kY = 1;
constexpr int kZ = 2;
constexpr float kQuarter = 1.5707963267948966f;

// The axis order Z, Y, X.
KtArray<int> reversedOrder()
{
    KtArray<int> order;
    KaAxisOrderFromWord("ZYX", &order);
    return order;
}

// A bone with a tilted direction and its own axis, under parent.
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
    bone.setAxisOrder(reversedOrder());
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
    asf.root().setAxisOrder(reversedOrder());
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

// Names that differ in case (the first is found), frames with fewer bones
// than names (the last one without the root, after frames that move it), a
// parent with fewer values than DOFs, unnamed extra bones.
const char* kQuirkyMotion = "1\nhip 5 6\nspine 0.5 1 1.5 40\n"
                            "root 1 2 3 10 20 30\nSPINE 2 3\nArm 1 2\n"
                            "hand 0.1 0.2 0.3\nfree 4 5\n"
                            "2\nhip 1 2\nspine 1 2 1 4\nROOT 4 5 6 7 8 9\n"
                            "3\nhip 1\nspine 1 1 1 1\nroot 9 8 7 6 5 4\n"
                            "SPINE 1 1\nArm 2\nhand 1 1 1\nfree 1 1\nextra 5\n"
                            "4\nhip -3 4\nspine 2 1 2 5\n";

// A position as the MOV file holds it, exactly (nine digits tell floats
// apart).
std::string exactly(const KtPoint& p)
{
    std::ostringstream out;
    out.precision(9);
    out << p.x << ' ' << p.y << ' ' << p.z << ' ';
    return out.str();
}

} // namespace

// Translations first, in DOF order, then rotations from the last DOF back,
// each through a "pre" operation (the last one applied stands leftmost),
// their values counted back from the last value; too few values are never
// read past their end. Angles are degrees only when the flag says so;
// translations are scaled; other kinds are ignored.
TEST(ApplyDOFValues, TranslationsFirstThenRotationsFromTheLastValue)
{
    const float scale = static_cast<float>(1.0 / 0.45);
    // DOFs, values, degrees flag, expected frame.
    // clang-format off
    const std::tuple<std::vector<int>, std::vector<float>, int, Kt4X4FloatMat> cases[] = {
        {{kDofRX}, {90}, 1, rotationMatrix(kX, kQuarter)},
        {{kDofRX}, {90}, 0, rotationMatrix(kX, 90)},
        {{kDofTX, kDofL}, {10, 5}, 1, translationMatrix(22.2222f, 0, 0)},
        {{kDofTX, kDofTY, kDofTZ, kDofRZ, kDofRY, kDofRX}, {0.45f, 0.9f, 1.35f, 0.3f, 0.2f, 0.1f}, 0,
         rotationMatrix(kZ, 0.3f) * rotationMatrix(kY, 0.2f) * rotationMatrix(kX, 0.1f) * translationMatrix(1, 2, 3)},
        // tx takes the one value and ty finds none; counting back from the
        // last value, rz takes it too and rx finds none.
        {{kDofTX, kDofRX, kDofTY, kDofRZ}, {0.45f}, 0, rotationMatrix(kZ, 0.45f) * translationMatrix(1, 0, 0)}};
    // clang-format on
    for (const auto& [dofs, values, degrees, expected] : cases)
    {
        KaASFDOFGroup group;
        for (int code : dofs)
            group.addDOF(code);
        KtCoordSystem cs;
        int count = static_cast<int>(values.size());
        applyDOFValues(cs, group, values.data(), count, scale, degrees);
        EXPECT_MATRIX_NEAR(expected, cs) << dofs.size();
    }
}

// A frame without root values leaves the root at the identity, wherever the
// skeleton places it; a bone absent from the frame keeps its rest placement
// under its parent's animated frame. With values the root starts from its
// position as written (the length unit does not apply) and orientation.
TEST(EvaluateBodyFrame, WalksDownFromTheRoot)
{
    KaASF asf = skeletonFrom(
        ":version 1.10\n:units length 0.5 angle rad\n"
        ":root order TX RZ axis XYZ position 1 2 3 orientation 0 0 0.5\n"
        ":bonedata\n" +
        boneBlock("a", "rz") + boneBlock("b", "rx") +
        ":hierarchy\n  begin\n    root a\n    a b\n  end\n");
    KaAMC amc = motionFrom("1\na 0.25\nroot 4 0.25\n2\na 0.25\n", "RADIANS");
    const Kt4X4FloatMat identity;
    const Kt4X4FloatMat rootRest =
        rotationMatrix(kZ, 0.5f) * translationMatrix(1, 2, 3);
    // Field, body, rest and animated frames.
    const std::tuple<int, const char*, Kt4X4FloatMat, Kt4X4FloatMat> cases[] = {
        {1, "root", identity, identity},
        // b sits at a's end (2, 0, 0) in a's rest orientation.
        {1,
         "b",
         translationMatrix(2, 0, 0),
         translationMatrix(2, 0, 0) * rotationMatrix(kZ, 0.25f)},
        // 4 in the length unit 0.5 is 8.
        {0,
         "root",
         rootRest,
         rotationMatrix(kZ, 0.25f) * translationMatrix(8, 0, 0) * rootRest},
    };
    for (const auto& [field, body, restFrame, animatedFrame] : cases)
    {
        KtCoordSystem animated;
        KtCoordSystem rest;
        evaluateBodyFrame(animated, rest, asf, amc.field(field), body, 2.0f, 0);
        EXPECT_MATRIX_NEAR(restFrame, rest) << body;
        EXPECT_MATRIX_NEAR(animatedFrame, animated) << body;
    }
}

// The table binds each body to what a search by name finds, also in a field
// whose names no longer follow positions. The evaluator's positions are
// those that writeBodyChannels evaluates by name, whatever order the bodies
// are asked in.
TEST(PoseEvaluator, GivesWhatSearchAndEvaluationByNameGive)
{
    KaASF asf = quirkySkeleton();
    KaAMC amc = motionFrom(kQuirkyMotion);
    KaAMC renamed = amc;
    KtStr other("hand");
    renamed.field(0).bone(1).setName(&other);
    const float scale = static_cast<float>(1.0 / 0.45);
    for (const KaAMC* motion : {&amc, &renamed})
        for (int degrees : {0, 1})
        {
            BodyTable bodies(asf, &motion->boneNames());
            PoseEvaluator pose(asf, bodies, scale, degrees);
            for (int f = 0; f < motion->numFields(); ++f)
            {
                const KaAMCField& frame = motion->field(f);
                bodies.bind(frame);
                pose.startFrame();
                for (int body = bodies.count() - 1; body >= 0; --body)
                {
                    const char* name = bodies.name(body);
                    SCOPED_TRACE(testing::Message()
                                 << "frame " << f << ", " << name
                                 << ", degrees " << degrees);
                    const KaAMCBone* values = bodies.values(body);
                    EXPECT_EQ(frame.findBone(name), values);
                    // Only the positions that the file holds.
                    if (!values || !bodies.translates(body) ||
                        values->numValues() != bodies.numCodes(body))
                        continue;
                    std::ostringstream byName;
                    byName.precision(9);
                    writeBodyChannels(byName,
                                      name,
                                      asf,
                                      frame,
                                      bodies.dofGroup(body),
                                      *values,
                                      scale,
                                      degrees);
                    std::string position = exactly(pose.position(body));
                    EXPECT_EQ(position,
                              byName.str().substr(0, position.size()));
                }
            }
        }
}

// The converter's pose where no known capture reaches it: values that do
// not fit their DOFs, radians, other DOF kinds, a frame without root values.
#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "geometry/KtCoordSystem.h"
#include "pose/BodyTable.h"
#include "pose/ConverterPose.h"
#include "pose/PoseEvaluation.h"
#include "support/documents.h"
#include "support/geometry_helpers.h"
#include "support/heap_watch.h"

constexpr int kX = 0, kZ = 2;

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
        {{kDofRX}, {90}, 0, rotationMatrix(kX, 90)},
        {{kDofTX, kDofL}, {10, 5}, 1, translationMatrix(22.2222f, 0, 0)},
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
// under its parent's animated frame: b sits at a's end (2, 0, 0).
TEST(EvaluateBodyFrame, AFrameWithoutRootValuesLeavesTheRootAtTheIdentity)
{
    KaASF asf = skeletonFrom(
        ":version 1.10\n:units length 0.5 angle rad\n"
        ":root order TX RZ axis XYZ position 1 2 3 orientation 0 0 0.5\n"
        ":bonedata\n" +
        boneBlock("a", "rz") + boneBlock("b", "rx") +
        ":hierarchy\n  begin\n    root a\n    a b\n  end\n");
    KaAMC amc = motionFrom("1\na 0.25\nroot 4 0.25\n2\na 0.25\n", "RADIANS");
    KtCoordSystem animated, rest;
    evaluateBodyFrame(animated, rest, asf, amc.field(1), "root", 2.0f, 0);
    EXPECT_MATRIX_NEAR(Kt4X4FloatMat(), rest);
    EXPECT_MATRIX_NEAR(Kt4X4FloatMat(), animated);
    evaluateBodyFrame(animated, rest, asf, amc.field(1), "b", 2.0f, 0);
    EXPECT_MATRIX_NEAR(translationMatrix(2, 0, 0), rest);
    EXPECT_MATRIX_NEAR(translationMatrix(2, 0, 0) * rotationMatrix(kZ, 0.25f),
                       animated);
}

// Only the bodies that a frame reaches get coordinate systems: a skeleton of
// many bones that the motion does not move costs a few numbers per bone.
TEST(ConverterPose, HoldsSystemsOnlyForTheBodiesItEvaluates)
{
    const int bones = 20000;
    std::string bonedata;
    for (int i = 0; i < bones; ++i)
        bonedata += boneBlock("b" + std::to_string(i), "rx");
    KaASF asf = skeletonFrom(skeletonText("TX TY TZ RX RY RZ", bonedata, ""));
    KaAMC amc = motionFrom("1\nroot 1 2 3 4 5 6\n");
    BodyTable bodies(asf, &amc.boneNames());
    HeapWatch watch;
    ConverterPose pose(asf, bodies, 1.0f, 1);
    bodies.bind(amc.field(0));
    pose.startFrame();
    pose.animated(BodyTable::kRoot);
    EXPECT_LT(watch.peakGrowth(), 16u * bones);
}

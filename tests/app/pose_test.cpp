// Pose evaluation: DOF values applied as "pre" operations in the prescribed
// order and units, and bodies evaluated down from the root.
#include <cmath>

#include <gtest/gtest.h>

#include "app/PoseEvaluation.h"
#include "documents.h"
#include "geometry/KtCoordSystem.h"
#include "support/geometry_helpers.h"
#include "support/test_helpers.h"

namespace
{

// Elementary frames written out from their definitions (row vectors).
Kt4X4FloatMat rotationX(float a)
{
    Kt4X4FloatMat m;
    m[1][1] = std::cos(a);
    m[1][2] = std::sin(a);
    m[2][1] = -std::sin(a);
    m[2][2] = std::cos(a);
    return m;
}

Kt4X4FloatMat rotationY(float a)
{
    Kt4X4FloatMat m;
    m[0][0] = std::cos(a);
    m[0][2] = -std::sin(a);
    m[2][0] = std::sin(a);
    m[2][2] = std::cos(a);
    return m;
}

Kt4X4FloatMat rotationZ(float a)
{
    Kt4X4FloatMat m;
    m[0][0] = std::cos(a);
    m[0][1] = std::sin(a);
    m[1][0] = -std::sin(a);
    m[1][1] = std::cos(a);
    return m;
}

Kt4X4FloatMat translation(float x, float y, float z)
{
    Kt4X4FloatMat m;
    m[3][0] = x;
    m[3][1] = y;
    m[3][2] = z;
    return m;
}

Kt4X4FloatMat product(const Kt4X4FloatMat& a, const Kt4X4FloatMat& b)
{
    Kt4X4FloatMat m(0.0f);
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            for (int k = 0; k < 4; ++k)
                m[i][j] += a[i][k] * b[k][j];
    return m;
}

constexpr float kQuarter = 1.5707963267948966f;

} // namespace

TEST(ApplyDOFValue, RotationsHonourTheDegreesFlag)
{
    KtCoordSystem degrees;
    applyDOFValue(degrees, kDofRX, 90.0f, 1.0f, 1);
    EXPECT_MATRIX_NEAR(rotationX(kQuarter), degrees);
    KtCoordSystem radians;
    applyDOFValue(radians, kDofRX, 90.0f, 1.0f, 0);
    EXPECT_MATRIX_NEAR(rotationX(90.0f), radians);
}

TEST(ApplyDOFValue, TranslationsAreScaledAndOtherKindsIgnored)
{
    KtCoordSystem cs;
    applyDOFValue(cs, kDofTX, 10.0f, static_cast<float>(1.0 / 0.45), 1);
    EXPECT_NEAR(22.2222f, cs.translationVector().x, 1e-4);
    applyDOFValue(cs, kDofL, 5.0f, 1.0f, 1);
    applyDOFValue(cs, kDofInvalid, 5.0f, 1.0f, 1);
    EXPECT_MATRIX_NEAR(translation(10.0f / 0.45f, 0, 0), cs);
}

TEST(ApplyDOFValues, TranslationsFirstThenRotationsFromTheLastDof)
{
    KaASFDOFGroup root;
    for (int code : {kDofTX, kDofTY, kDofTZ, kDofRZ, kDofRY, kDofRX})
        root.addDOF(code);
    const float values[] = {1, 2, 3, 0.3f, 0.2f, 0.1f};
    KtCoordSystem cs;
    applyDOFValues(cs, root, values, 6, 1.0f, 0);
    // Translations, then pre-rotations about X, Y and Z in that order: the
    // last one applied stands leftmost.
    Kt4X4FloatMat expected =
        product(rotationZ(0.3f),
                product(rotationY(0.2f),
                        product(rotationX(0.1f), translation(1, 2, 3))));
    EXPECT_MATRIX_NEAR(expected, cs);
}

TEST(ApplyDOFValues, TooFewValuesAreIndexedFromTheLastAndNeverPastTheEnd)
{
    KaASFDOFGroup group;
    for (int code : {kDofTX, kDofRX, kDofRY, kDofRZ})
        group.addDOF(code);
    const float one[] = {0.5f};
    KtCoordSystem cs;
    applyDOFValues(cs, group, one, 1, 1.0f, 0);
    // tx takes values[0]; counting back from the last value, rz takes it
    // too, and the other rotations find no value.
    EXPECT_MATRIX_NEAR(product(rotationZ(0.5f), translation(0.5f, 0, 0)), cs);
}

TEST(EvaluateBodyFrame, WithoutRootValuesBonesKeepTheirRestUnderTheOrigin)
{
    KaASF asf =
        skeletonFrom(skeletonText("TX TY TZ",
                                  boneBlock("a", "rz") + boneBlock("b", "rx"),
                                  "    root a\n    a b\n"));
    // b is absent: it keeps its rest placement under a's animated frame.
    KaAMC amc = motionFrom(":FULLY-SPECIFIED\n:RADIANS\n1\na 0.25\n");
    KtCoordSystem animated;
    KtCoordSystem rest;
    evaluateBodyFrame(animated, rest, asf, amc.field(0), "b", 1.0f, 0);
    // a: rest identity at the origin, animated by its z turn; b sits at
    // a's end (1, 0, 0) in a's rest orientation.
    EXPECT_MATRIX_NEAR(translation(1, 0, 0), rest);
    EXPECT_MATRIX_NEAR(product(translation(1, 0, 0), rotationZ(0.25f)),
                       animated);

    KtCoordSystem rootAnimated;
    KtCoordSystem rootRest;
    evaluateBodyFrame(
        rootAnimated, rootRest, asf, amc.field(0), "root", 1.0f, 0);
    EXPECT_MATRIX_NEAR(Kt4X4FloatMat(), rootAnimated);
    EXPECT_MATRIX_NEAR(Kt4X4FloatMat(), rootRest);
}

TEST(EvaluateRootFrame, StartsFromThePositionAsWrittenAndTheOrientation)
{
    KaASF asf = skeletonFrom(
        ":version 1.10\n:units length 0.5 angle rad\n"
        ":root order TX RZ axis XYZ position 1 2 3 orientation 0 0 0.5\n"
        ":bonedata\n");
    KaAMC amc = motionFrom(":FULLY-SPECIFIED\n:RADIANS\n1\nroot 4 0.25\n");
    KtCoordSystem animated;
    KtCoordSystem rest;
    evaluateRootFrame(
        animated, rest, asf.root(), *amc.field(0).findBone("root"), 2.0f, 0);
    Kt4X4FloatMat restExpected = product(rotationZ(0.5f), translation(1, 2, 3));
    EXPECT_MATRIX_NEAR(restExpected, rest);
    EXPECT_MATRIX_NEAR(
        product(rotationZ(0.25f), product(translation(8, 0, 0), restExpected)),
        animated);
}

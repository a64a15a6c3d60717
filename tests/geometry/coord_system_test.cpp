// KtCoordSystem: pre- and post-operations against the elementary matrices,
// and the accessors of its blocks.
#include <cmath>
#include <random>
#include <sstream>

#include <gtest/gtest.h>

#include "geometry/KtCoordSystem.h"
#include "geometry/KtVectorAlgo.h"
#include "support/geometry_helpers.h"

namespace
{

constexpr float kT = -1.3f;
constexpr float kV[3] = {0.6f, -1.3f, 2.2f};
constexpr float kZAxis[3] = {0.0f, 0.0f, 0.5f}; // any length will do

} // namespace

TEST(KtCoordSystem, PreOperationsMultiplyOnTheLeftPostOnTheRight)
{
    using Apply = void (*)(KtCoordSystem & frame, bool post);
    Kt4X4FloatMat scale;
    for (int i = 0; i < 3; ++i)
        scale[i][i] = kV[i];
    // clang-format off
    const struct { Apply apply; Kt4X4FloatMat elementary; } operations[] = {
        {[](KtCoordSystem& f, bool post) { post ? f.postTranslateX(kT) : f.preTranslateX(kT); }, translationMatrix(kT, 0, 0)},
        {[](KtCoordSystem& f, bool post) { post ? f.postTranslateY(kT) : f.preTranslateY(kT); }, translationMatrix(0, kT, 0)},
        {[](KtCoordSystem& f, bool post) { post ? f.postTranslateZ(kT) : f.preTranslateZ(kT); }, translationMatrix(0, 0, kT)},
        {[](KtCoordSystem& f, bool post) { post ? f.postTranslate(kV) : f.preTranslate(kV[0], kV[1], kV[2]); }, translationMatrix(kV[0], kV[1], kV[2])},
        {[](KtCoordSystem& f, bool post) { post ? f.postScale(kV[0], kV[1], kV[2]) : f.preScale(kV); }, scale},
        {[](KtCoordSystem& f, bool post) { post ? f.postRotateX(kT) : f.preRotateX(kT); }, rotationMatrix(0, kT)},
        {[](KtCoordSystem& f, bool post) { post ? f.postRotateY(kT) : f.preRotateY(kT); }, rotationMatrix(1, kT)},
        {[](KtCoordSystem& f, bool post) { post ? f.postRotateZ(kT) : f.preRotateZ(kT); }, rotationMatrix(2, kT)},
        {[](KtCoordSystem& f, bool post) { post ? f.postRotateAxis(kZAxis, kT) : f.preRotateAxis(kZAxis, kT); }, rotationMatrix(2, kT)}};
    // clang-format on
    // A general matrix: not rigid, column 3 not (0, 0, 0, 1), so that a row
    // or column operation that skips an element shows.
    std::mt19937 random(17);
    std::uniform_real_distribution<float> value(-2.0f, 2.0f);
    KtCoordSystem frame;
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            frame[i][j] = value(random);
    for (const auto& op : operations)
    {
        KtCoordSystem pre = frame;
        KtCoordSystem post = frame;
        op.apply(pre, false);
        op.apply(post, true);
        EXPECT_MATRIX_NEAR(op.elementary * frame, pre)
            << "operation " << &op - operations;
        EXPECT_MATRIX_NEAR(frame * op.elementary, post)
            << "operation " << &op - operations;
    }
}

// A translation given after a rotation follows the rotated axes; the
// accessors and reorthogonalize() touch their own block only.
TEST(KtCoordSystem, BlockAccessorsTouchOnlyTheirBlock)
{
    KtCoordSystem frame;
    EXPECT_POINT_NEAR(KtPoint(), frame.translationVector());
    frame.preRotateZ(1.57079633f);
    frame.preTranslateX(5.0f);
    EXPECT_POINT_NEAR(KtPoint(0.0f, 5.0f, 0.0f), frame.translationVector());
    frame[1][3] = 0.5f;
    frame[0][1] += 1e-3f;
    KtCoordSystem copy = frame;
    Kt3X3FloatMat r;
    frame.getRotationMatrix(&r);
    frame.setRotationMatrix(Kt3X3FloatMat(0.0f));
    frame.setTranslationVector(KtPoint(7.0f, 8.0f, 9.0f));
    EXPECT_EQ(0.5f, frame[1][3]);
    frame.setRotationMatrix(r);
    frame.setTranslationVector(copy.translationVector());
    EXPECT_EQ(copy, frame);
    KtReorthogonalize(&r);
    copy.setRotationMatrix(r);
    frame.reorthogonalize();
    EXPECT_EQ(copy, frame);
}

// KtCoordSystem: pre- and post-operations against the elementary matrices,
// the accessors of its blocks and its print form.
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

// The elementary matrices as the frame's conventions draw them: translation
// in row 3, rotations turning axis (code + 1) toward axis (code + 2).
Kt4X4FloatMat translation(float x, float y, float z)
{
    Kt4X4FloatMat e;
    e.setRow(3, Kt4X4FloatMat::KtRow({x, y, z, 1.0f}));
    return e;
}

Kt4X4FloatMat rotation(int axis, float a)
{
    int p = (axis + 1) % 3;
    int q = (axis + 2) % 3;
    Kt4X4FloatMat e;
    e[p][p] = e[q][q] = cosf(a);
    e[p][q] = sinf(a);
    e[q][p] = -sinf(a);
    return e;
}

KtPoint mapped(KtPoint p, const Kt4X4FloatMat& m)
{
    p.applyMatrix(m);
    return p;
}

} // namespace

TEST(KtCoordSystem, PreRotationOnTheIdentityGivesTheElementaryRows)
{
    // An angle whose float cosine and sine differ from the double ones
    // rounded to float, read at run time so that the library computes both.
    volatile float angle = 0x1.00b4aap-1f;
    const float a = angle;
    KtCoordSystem frame;
    frame.preRotateX(a);
    Kt4X4FloatMat expected;
    expected.setRow(1, Kt4X4FloatMat::KtRow({0, cosf(a), sinf(a), 0}));
    expected.setRow(2, Kt4X4FloatMat::KtRow({0, -sinf(a), cosf(a), 0}));
    EXPECT_EQ(expected, frame);
    frame.preRotateX(-a);
    EXPECT_MATRIX_NEAR(Kt4X4FloatMat::MultiplicativeIdentity, frame);
}

TEST(KtCoordSystem, PreOperationsMultiplyOnTheLeftPostOnTheRight)
{
    using Apply = void (*)(KtCoordSystem & frame, bool post);
    Kt4X4FloatMat scale;
    for (int i = 0; i < 3; ++i)
        scale[i][i] = kV[i];
    // clang-format off
    const struct { Apply apply; Kt4X4FloatMat elementary; } operations[] = {
        {[](KtCoordSystem& f, bool post) { post ? f.postTranslateX(kT) : f.preTranslateX(kT); }, translation(kT, 0, 0)},
        {[](KtCoordSystem& f, bool post) { post ? f.postTranslateY(kT) : f.preTranslateY(kT); }, translation(0, kT, 0)},
        {[](KtCoordSystem& f, bool post) { post ? f.postTranslateZ(kT) : f.preTranslateZ(kT); }, translation(0, 0, kT)},
        {[](KtCoordSystem& f, bool post) { post ? f.postTranslate(kV) : f.preTranslate(kV[0], kV[1], kV[2]); }, translation(kV[0], kV[1], kV[2])},
        {[](KtCoordSystem& f, bool post) { post ? f.postScale(kV[0], kV[1], kV[2]) : f.preScale(kV); }, scale},
        {[](KtCoordSystem& f, bool post) { post ? f.postRotateX(kT) : f.preRotateX(kT); }, rotation(0, kT)},
        {[](KtCoordSystem& f, bool post) { post ? f.postRotateY(kT) : f.preRotateY(kT); }, rotation(1, kT)},
        {[](KtCoordSystem& f, bool post) { post ? f.postRotateZ(kT) : f.preRotateZ(kT); }, rotation(2, kT)},
        {[](KtCoordSystem& f, bool post) { post ? f.postRotateAxis(kZAxis, kT) : f.preRotateAxis(kZAxis, kT); }, rotation(2, kT)}};
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
        Kt4X4FloatMat expected;
        Kt4X4FloatMat::multiply(expected, op.elementary, frame);
        EXPECT_MATRIX_NEAR(expected, pre) << "operation " << &op - operations;
        Kt4X4FloatMat::multiply(expected, frame, op.elementary);
        EXPECT_MATRIX_NEAR(expected, post) << "operation " << &op - operations;
    }
}

TEST(KtCoordSystem, TranslationAfterARotationFollowsTheRotatedAxes)
{
    KtCoordSystem frame;
    frame.preRotateZ(1.57079633f);
    frame.preTranslateX(5.0f);
    EXPECT_POINT_NEAR(KtPoint(0.0f, 5.0f, 0.0f), frame.translationVector());
}

TEST(KtCoordSystem, BlockAccessorsTouchOnlyTheirBlock)
{
    KtCoordSystem frame;
    EXPECT_POINT_NEAR(KtPoint(), frame.translationVector());
    frame.preRotateY(0.3f);
    frame.postTranslate(1.0f, 2.0f, 3.0f);
    frame[1][3] = 0.5f;
    KtCoordSystem copy = frame;
    Kt3X3FloatMat r;
    frame.getRotationMatrix(&r);
    frame.setRotationMatrix(Kt3X3FloatMat(0.0f));
    frame.setTranslationVector(KtPoint(7.0f, 8.0f, 9.0f));
    EXPECT_EQ(0.5f, frame[1][3]);
    frame.setRotationMatrix(r);
    frame.setTranslationVector(copy.translationVector());
    EXPECT_EQ(copy, frame);
}

TEST(KtCoordSystem, AxisRotationKeepsItsAxisAndIgnoresAZeroAxis)
{
    const float axis[3] = {1.0f, -2.0f, 0.5f};
    KtCoordSystem frame;
    frame.preRotateAxis(axis, 1.1f);
    KtPoint a(axis[0], axis[1], axis[2]);
    EXPECT_POINT_NEAR(a, mapped(a, frame));
    float trace = frame[0][0] + frame[1][1] + frame[2][2];
    EXPECT_NEAR(1.0f + 2.0f * std::cos(1.1f), trace, kGeometryTolerance);
    const float none[3] = {0.0f, 0.0f, 0.0f};
    KtCoordSystem unchanged = frame;
    unchanged.preRotateAxis(none, 1.0f);
    unchanged.postRotateAxis(none, 1.0f);
    EXPECT_EQ(frame, unchanged);
}

TEST(KtCoordSystem, ShiftedRotationTurnsAboutTheGivenPoint)
{
    KtCoordSystem frame;
    frame.preRotateY(0.8f);
    frame.preRotateX(-0.4f);
    frame.setTranslationVector(KtPoint(1.0f, 2.0f, 3.0f));
    Kt3X3FloatMat r;
    frame.getRotationMatrix(&r);
    frame.shiftRotationPoint(KtPoint(4.0f, -1.0f, 2.0f));
    // The pivot moves by the translation alone; around it, the rotation.
    EXPECT_POINT_NEAR(KtPoint(5.0f, 1.0f, 5.0f),
                      mapped(KtPoint(4.0f, -1.0f, 2.0f), frame));
    KtPoint turned(0.5f, 0.25f, -1.0f);
    turned.applyMatrix(r);
    EXPECT_POINT_NEAR(KtPoint(turned.x + 5, turned.y + 1, turned.z + 5),
                      mapped(KtPoint(4.5f, -0.75f, 1.0f), frame));
}

TEST(KtCoordSystem, ReorthogonalizeCleansOnlyTheRotationBlock)
{
    KtCoordSystem frame;
    frame.preRotateZ(0.3f);
    frame.setTranslationVector(KtPoint(7.0f, 8.0f, 9.0f));
    frame[0][1] += 1e-3f;
    Kt3X3FloatMat expected;
    frame.getRotationMatrix(&expected);
    KtReorthogonalize(&expected);
    KtCoordSystem untouched = frame;
    untouched.setRotationMatrix(expected);
    frame.reorthogonalize();
    EXPECT_EQ(untouched, frame);
}

TEST(KtCoordSystem, PrintsOneBracketedLinePerRow)
{
    KtCoordSystem frame;
    frame.setTranslationVector(KtPoint(1.5f, -2.0f, 0.0f));
    std::ostringstream out;
    out << frame;
    EXPECT_EQ("[\n  [ 1 0 0 0]\n  [ 0 1 0 0]\n  [ 0 0 1 0]\n  [ 1.5 -2 0 1]\n]",
              out.str());
}

#include <cmath>
#include <random>
#include <sstream>

#include <gtest/gtest.h>

#include "geometry/KtCoordSystem.h"
#include "geometry/KtVectorAlgo.h"
#include "support/geometry_helpers.h"
#include "toolkit/KtError.h"

namespace
{

// Not a rigid frame: column 3 and a stretched row take part too.
Kt4X4FloatMat generalMatrix()
{
    Kt4X4FloatMat m = rotationMatrix(0, 0.3f) * translationMatrix(1, -2, 3);
    m[0][3] = 0.5f;
    m[1][1] = 2.0f;
    return m;
}

} // namespace

// Frames with moderate elements take an unrolled expansion, others the
// general routine. A singular matrix is not refused: it silently gives NaN.
TEST(Kt4X4FloatMat, InvertsFramesAndGivesNaNForASingularMatrix)
{
    const Kt4X4FloatMat frame = rotationMatrix(2, 0.5f) *
                                rotationMatrix(0, -1.2f) *
                                translationMatrix(3, -4, 5);
    Kt4X4FloatMat far = translationMatrix(3e9f, 0, 0);
    far[1][1] = 2.0f;
    for (const Kt4X4FloatMat& m : {frame, far, generalMatrix()})
    {
        Kt4X4FloatMat inverse = m;
        inverse.invert();
        EXPECT_MATRIX_NEAR(Kt4X4FloatMat(), inverse * m);
    }
    Kt4X4FloatMat zero(0.0f);
    zero.invert();
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            EXPECT_TRUE(std::isnan(zero[i][j]));
    EXPECT_FALSE(theExceptObj.exceptionOccurred());
}

// _sinCosAngle has its own short pi.
TEST(Kt4X4FloatMat, DeterminantsAdjugateAndSinCosAngle)
{
    Kt4X4FloatMat m(2.0f);
    m[0][3] = 5.0f; // still triangular: the product of the diagonal
    EXPECT_EQ(16.0f, m._subDeterminant(m.Map, m.Map, 4));
    EXPECT_EQ(1.0f, m._subDeterminant(m.Map, m.Map, 0));
    EXPECT_EQ(0.0f, m._subDeterminant(m.Map, m.Map, 5));
    // adj(M) . M = det(M) . I for any matrix.
    const Kt4X4FloatMat general = generalMatrix();
    Kt4X4FloatMat adjugate = general;
    EXPECT_MATRIX_NEAR(
        Kt4X4FloatMat(Kt4X4FloatMat::_matrixDeterminant(general.elements())),
        adjugate.adjoint() * general);
    // A sine for which the short and the full pi round to different floats.
    const double sine = 0x1.075abep-1;
    EXPECT_EQ(static_cast<float>(3.14159265359 - std::asin(sine)),
              Kt4X4FloatMat::_sinCosAngle(sine, -1.0f));
    EXPECT_EQ(static_cast<float>(-std::asin(1.0)),
              Kt4X4FloatMat::_sinCosAngle(-1.5f, 1.0f)); // clamped
}

// A frame prints one bracketed line per row, its own way.
TEST(Kt4X4FloatMat, PrintsRowsInBrackets)
{
    Kt3X3FloatMat m3;
    m3.setRow(1, Kt3X3FloatMat::KtRow({4.0f, 5.5f, -6.0f}));
    KtCoordSystem frame;
    frame.setTranslationVector(KtPoint(1.5f, -2.0f, 0.0f));
    std::ostringstream out;
    out << m3 << Kt4X4FloatMat(0.25f) << frame;
    EXPECT_EQ("[\n[1  0  0]\n [4  5.5  -6]\n [0  0  1]\n]"
              "[\n[0.25  0  0  0]\n [0  0.25  0  0]\n [0  0  0.25  0]\n"
              " [0  0  0  0.25]\n]"
              "[\n  [ 1 0 0 0]\n  [ 0 1 0 0]\n  [ 0 0 1 0]\n  [ 1.5 -2 0 1]\n]",
              out.str());
}

// M = D R with D = diag(sqrt 1.5, 1, sqrt 0.8) and R a quarter turn about z
// becomes M S, where S is diagonal: the series of (1 + x)^(-1/2) over
// exactly nine terms at x = 0, 0.5 and -0.2. At 0.5 the nine terms leave
// sqrt(1.5) S = 0.999857 (a tenth term would move it by 1e-4); S M would
// scale other rows.
TEST(KtReorthogonalize, SumsExactlyNineTermsOfTheSeries)
{
    Kt3X3FloatMat m(0.0f);
    m[0][1] = std::sqrt(1.5f);
    m[1][0] = -1.0f;
    m[2][2] = std::sqrt(0.8f);
    Kt3X3FloatMat expected = m;
    expected[0][1] = 0.999857284f;
    expected[2][2] = 0.99999998f;
    KtReorthogonalize(&m);
    EXPECT_MATRIX_NEAR(expected, m);
}

// Unit results: a triangle's normal (zero when it is degenerate) and a
// perpendicular of any vector.
TEST(KtVectorAlgo, CrossDotNormalAndPerpendicular)
{
    KtPoint v(3, -1, 2);
    KtPoint p;
    KtGetCrossProduct(&p, KtPoint(1, 0, 0), KtPoint(0, 1, 0));
    EXPECT_POINT_NEAR(KtPoint(0, 0, 1), p);
    EXPECT_FLOAT_EQ(32.0f, KtDotProduct(KtPoint(1, 2, 3), KtPoint(4, 5, 6)));
    EXPECT_POINT_NEAR(
        KtPoint(0, 0, 1),
        KtTriangleNormal(KtPoint(), KtPoint(2, 0, 0), KtPoint(0, 3, 0)));
    EXPECT_POINT_NEAR(
        KtPoint(), KtTriangleNormal(v, KtPoint(6, -2, 4), KtPoint(9, -3, 6)));
    KtArbitraryPerpendicular(&p, v);
    EXPECT_NEAR(0.0f, KtDotProduct(p, v), 1e-6f);
    EXPECT_NEAR(1.0f, KtDotProduct(p, p), 1e-6f);
}

// A frame's pre-operations multiply it on the left, post-operations on the
// right, each by its elementary matrix.
TEST(KtCoordSystem, PreOperationsMultiplyOnTheLeftPostOnTheRight)
{
    constexpr static float kT = -1.3f;
    constexpr static float kV[3] = {0.6f, -1.3f, 2.2f};
    constexpr static float kZAxis[3] = {0.0f, 0.0f, 0.5f}; // any length
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

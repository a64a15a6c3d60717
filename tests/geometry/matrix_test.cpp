// 3x3 and 4x4 matrices, points taken through them, reorthogonalization
// and the way numbers reach a stream.
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <random>
#include <sstream>
#include <vector>

#include <gtest/gtest.h>

#include "geometry/KtCoordSystem.h"
#include "geometry/KtVectorAlgo.h"
#include "support/geometry_helpers.h"
#include "toolkit/KtError.h"

namespace
{

// A rotation with a translation, built by frame operations.
KtCoordSystem randomRigidFrame(std::mt19937& random)
{
    std::uniform_real_distribution<float> value(-3.1f, 3.1f);
    KtCoordSystem frame;
    frame.preRotateZ(value(random));
    frame.preRotateY(value(random));
    frame.preRotateX(value(random));
    frame.postTranslate(3 * value(random), 3 * value(random), value(random));
    return frame;
}

Kt4X4FloatMat randomMatrix(std::mt19937& random)
{
    std::uniform_real_distribution<float> value(-2.0f, 2.0f);
    Kt4X4FloatMat m;
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            m[i][j] = value(random);
    return m;
}

} // namespace

TEST(Kt4X4FloatMat, ScalarFillsTheDiagonalAndOnlyNaNIsInvalid)
{
    Kt4X4FloatMat m;
    EXPECT_EQ(Kt4X4FloatMat::MultiplicativeIdentity, m);
    m[3][0] = 7.0f;
    m = 2.5f;
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            EXPECT_EQ(i == j ? 2.5f : 0.0f, m[i][j]) << i << "," << j;
    const float inf = std::numeric_limits<float>::infinity();
    for (float value : {inf, -inf, std::numeric_limits<float>::quiet_NaN()})
    {
        m[2][3] = value;
        Kt3X3FloatMat m3;
        m3[1][0] = value;
        EXPECT_EQ(!std::isnan(value), m.isValid() && m3.isValid()) << value;
    }
}

// Every product goes through the installed routine; its result may be
// written into either operand.
TEST(Kt4X4FloatMat, ProductsGoThroughTheHookAndMayOverwriteAnOperand)
{
    std::mt19937 random(7);
    Kt4X4FloatMat a = randomMatrix(random);
    Kt4X4FloatMat b = randomMatrix(random);
    Kt4X4FloatMat separate;
    Kt4X4FloatMat::_multiply(separate.elements(), a.elements(), b.elements());
    Kt4X4FloatMat::KtMultFunc saved = Kt4X4FloatMat::_multfunc;
    static int calls = 0;
    Kt4X4FloatMat::_multfunc = [](auto& res, const auto& a, const auto& b)
    {
        ++calls;
        Kt4X4FloatMat::_multiply(res, a, b);
    };
    Kt4X4FloatMat left = a;
    Kt4X4FloatMat::multiply(left, left, b);
    Kt4X4FloatMat::multiply(b, a, b);
    const float axis[3] = {1.0f, 1.0f, 0.0f};
    KtCoordSystem frame;
    frame.preRotateAxis(axis, 0.5f);
    frame.postRotateAxis(axis, 0.5f);
    Kt4X4FloatMat::_multfunc = saved;
    EXPECT_EQ(4, calls);
    EXPECT_EQ(separate, left);
    EXPECT_EQ(separate, b);
}

// Inversion has an unrolled expansion for frames of moderate elements; it
// must give the general routines' floats bit for bit, signed zeros and
// singular results included.
TEST(Kt4X4FloatMat, InversionGivesTheCofactorRoutinesFloatsExactly)
{
    std::mt19937 random(5);
    std::vector<Kt4X4FloatMat> matrices = {
        Kt4X4FloatMat(), Kt4X4FloatMat(0.0f), Kt4X4FloatMat(-0.0f)};
    // Sparse matrices sum many signed zeros.
    const float sparse[] = {0.0f, -0.0f, 0.0f, -0.0f, 1.0f, -1.0f, 0.5f};
    for (int trial = 0; trial < 300; ++trial)
    {
        matrices.push_back(randomRigidFrame(random));
        Kt4X4FloatMat m = randomMatrix(random);
        m[3][trial % 4] *= std::ldexp(1.0f, trial % 40 - 10); // up to 2^30
        matrices.push_back(m);
        for (int i = 0; i < 4; ++i)
            for (int j = 0; j < 4; ++j)
                if (random() % 4)
                    m[i][j] = sparse[random() % 7];
        matrices.push_back(m);
    }
    for (const Kt4X4FloatMat& m : matrices)
    {
        Kt4X4FloatMat general = m;
        float det = general._subDeterminant(general.Map, general.Map, 4);
        general.transpose();
        Kt4X4FloatMat expected;
        for (int i = 0; i < 4; ++i)
            for (int j = 0; j < 4; ++j)
                expected[i][j] =
                    general._subCofactor(general.Map, general.Map, 4, i, j) /
                    det;
        Kt4X4FloatMat inverse = m;
        inverse.invert();
        ASSERT_EQ(0, std::memcmp(&expected, &inverse, sizeof inverse))
            << m << "\n"
            << inverse << "\n"
            << expected;
    }
}

// A singular matrix is not refused: it silently gives NaN.
TEST(Kt4X4FloatMat, InvertingASingularMatrixGivesNaNSilently)
{
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
    std::mt19937 random(3);
    Kt4X4FloatMat general = randomMatrix(random);
    float det = Kt4X4FloatMat::_matrixDeterminant(general.elements());
    Kt4X4FloatMat adjugate = general;
    EXPECT_MATRIX_NEAR(Kt4X4FloatMat(det), adjugate.adjoint() * general);
    // A sine for which the short and the full pi round to different floats.
    const double sine = 0x1.075abep-1;
    float angle = Kt4X4FloatMat::_sinCosAngle(sine, -1.0f);
    EXPECT_EQ(static_cast<float>(3.14159265359 - std::asin(sine)), angle);
    EXPECT_NE(static_cast<float>(3.141592653589793 - std::asin(sine)), angle);
    EXPECT_EQ(static_cast<float>(-std::asin(1.0)),
              Kt4X4FloatMat::_sinCosAngle(-1.5f, 1.0f)); // clamped
}

TEST(Kt4X4FloatMat, PointsAreRowsTakenWithAOne)
{
    KtCoordSystem frame;
    frame.preRotateZ(1.57079633f);
    frame.setTranslationVector(KtPoint(1.0f, 2.0f, 3.0f));
    KtPoint p(0.5f, -1.0f, 2.0f);
    p.applyMatrix(frame);
    EXPECT_POINT_NEAR(KtPoint(2.0f, 2.5f, 5.0f), p);
    // A projective matrix: the result is divided by w.
    Kt4X4FloatMat projective;
    projective[2][3] = 1.0f;
    KtPoint projected(2.0f, 4.0f, 1.0f);
    projected.applyMatrix(projective);
    EXPECT_POINT_NEAR(KtPoint(1.0f, 2.0f, 0.5f), projected);
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

// For M = D R (D diagonal, R a rotation) the result is D S R, where S holds
// the series of (1 + x)^(-1/2) at x = d^2 - 1 for each diagonal element d,
// summed over exactly nine terms (c(n) = c(n - 1) (1 - 2n) / 2n): at x = 0.5
// a tenth would still move the result by more than the tolerance. R does not
// commute with D, so the order of the product shows too.
TEST(KtReorthogonalize, SumsExactlyNineTermsOfTheSeries)
{
    auto series = [](double x)
    {
        double sum = 1.0;
        double term = 1.0;
        for (int n = 1; n <= 9; ++n)
            sum += term *= x * (1.0 - 2 * n) / (2 * n);
        return sum;
    };
    const float d[3] = {std::sqrt(1.5f), 1.0f, std::sqrt(0.8f)};
    std::mt19937 random(5);
    Kt3X3FloatMat m, expected;
    randomRigidFrame(random).getRotationMatrix(&m);
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
        {
            expected[i][j] = d[i] * series(d[i] * d[i] - 1.0) * m[i][j];
            m[i][j] *= d[i];
        }
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

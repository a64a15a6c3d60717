// Points, 3x3 and 4x4 matrices, vector functions and the way numbers reach a
// stream.
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

int productCalls = 0;
void countingProduct(Kt4X4FloatMat::KtElements& res,
                     const Kt4X4FloatMat::KtElements& a,
                     const Kt4X4FloatMat::KtElements& b)
{
    ++productCalls;
    Kt4X4FloatMat::_multiply(res, a, b);
}

} // namespace

TEST(Kt4X4FloatMat, ScalarFillsTheDiagonalOnlyAndDefaultIsTheIdentity)
{
    Kt4X4FloatMat m;
    EXPECT_EQ(Kt4X4FloatMat::MultiplicativeIdentity, m);
    m[3][0] = 7.0f;
    m = 2.5f;
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            EXPECT_EQ(i == j ? 2.5f : 0.0f, m[i][j]) << i << "," << j;
}

TEST(Kt4X4FloatMat, ProductMayBeWrittenIntoAnOperand)
{
    std::mt19937 random(7);
    Kt4X4FloatMat a = randomMatrix(random);
    Kt4X4FloatMat b = randomMatrix(random);
    Kt4X4FloatMat separate;
    Kt4X4FloatMat::_multiply(separate.elements(), a.elements(), b.elements());
    Kt4X4FloatMat left = a;
    Kt4X4FloatMat::multiply(left, left, b);
    EXPECT_EQ(separate, left);
    Kt4X4FloatMat::multiply(b, a, b);
    EXPECT_EQ(separate, b);
}

TEST(Kt4X4FloatMat, EveryProductGoesThroughTheInstalledRoutine)
{
    Kt4X4FloatMat::KtMultFunc saved = Kt4X4FloatMat::_multfunc;
    Kt4X4FloatMat::_multfunc = &countingProduct;
    productCalls = 0;
    KtCoordSystem frame;
    Kt4X4FloatMat::multiply(frame, frame, frame);
    const float axis[3] = {1.0f, 1.0f, 0.0f};
    frame.preRotateAxis(axis, 0.5f);
    frame.postRotateAxis(axis, 0.5f);
    Kt4X4FloatMat::_multfunc = saved;
    EXPECT_EQ(3, productCalls);
}

TEST(Kt4X4FloatMat, InvertingARigidFrameGivesItsInverse)
{
    std::mt19937 random(11);
    for (int trial = 0; trial < 200; ++trial)
    {
        KtCoordSystem frame = randomRigidFrame(random);
        Kt4X4FloatMat inverse = frame;
        Kt4X4FloatMat product;
        Kt4X4FloatMat::multiply(product, inverse.invert(), frame);
        ASSERT_MATRIX_NEAR(Kt4X4FloatMat::MultiplicativeIdentity, product);
        Kt4X4FloatMat::multiply(product, frame, inverse);
        ASSERT_MATRIX_NEAR(Kt4X4FloatMat::MultiplicativeIdentity, product);
    }
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

TEST(Kt4X4FloatMat, InvertingASingularMatrixGivesNaNSilently)
{
    Kt4X4FloatMat zero(0.0f);
    zero.invert();
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            EXPECT_TRUE(std::isnan(zero[i][j]));
    EXPECT_FALSE(theExceptObj.exceptionOccurred());
}

TEST(Kt4X4FloatMat, DeterminantsAndAdjugate)
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
    Kt4X4FloatMat product = general;
    Kt4X4FloatMat::multiply(product, product.adjoint(), general);
    EXPECT_MATRIX_NEAR(Kt4X4FloatMat(det), product);
}

TEST(Kt4X4FloatMat, IsValidRejectsOnlyNaN)
{
    const float inf = std::numeric_limits<float>::infinity();
    for (float value : {inf, -inf, std::numeric_limits<float>::quiet_NaN()})
    {
        Kt4X4FloatMat m4;
        m4[2][3] = value;
        Kt3X3FloatMat m3;
        m3[1][0] = value;
        EXPECT_EQ(!std::isnan(value), m4.isValid()) << value;
        EXPECT_EQ(!std::isnan(value), m3.isValid()) << value;
    }
}

TEST(Kt4X4FloatMat, SinCosAngleUsesItsOwnShortPi)
{
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

TEST(Kt4X4FloatMat, PrintsRowsInBrackets)
{
    Kt3X3FloatMat m3;
    m3.setRow(1, Kt3X3FloatMat::KtRow({4.0f, 5.5f, -6.0f}));
    std::ostringstream out;
    out << m3 << Kt4X4FloatMat(0.25f);
    EXPECT_EQ("[\n[1  0  0]\n [4  5.5  -6]\n [0  0  1]\n]"
              "[\n[0.25  0  0  0]\n [0  0.25  0  0]\n [0  0  0.25  0]\n"
              " [0  0  0  0.25]\n]",
              out.str());
}

TEST(KtPoint, SortsByXThenYThenZ)
{
    EXPECT_TRUE(KtPoint(-1, 5, 5) < KtPoint(0, -2, -9));
    EXPECT_TRUE(KtPoint(0, -2, 9) < KtPoint(0, 3, -4));
    EXPECT_TRUE(KtPoint(0, 3, 2) > KtPoint(0, 3, -4));
    EXPECT_FALSE(KtPoint(1, 2, 3) < KtPoint(1, 2, 3));
}

TEST(KtVectorAlgo, ProductsNormalsAndPerpendiculars)
{
    KtPoint x(1.0f, 0.0f, 0.0f);
    KtPoint z;
    KtGetCrossProduct(&z, x, KtPoint(0.0f, 1.0f, 0.0f));
    EXPECT_POINT_NEAR(KtPoint(0.0f, 0.0f, 1.0f), z);
    KtGetCrossProduct(&x, x, KtPoint(2.0f, 0.0f, 0.0f)); // parallel, aliased
    EXPECT_POINT_NEAR(KtPoint(), x);
    EXPECT_POINT_NEAR(
        KtPoint(0.0f, 0.0f, 1.0f),
        KtTriangleNormal(KtPoint(1, 1, 2), KtPoint(4, 1, 2), KtPoint(1, 3, 2)));
    EXPECT_POINT_NEAR(KtPoint(), KtTriangleNormal(x, x, KtPoint(2, 2, 2)));
    for (KtPoint v :
         {KtPoint(2, 0, 0), KtPoint(0, -3, 0), KtPoint(-5, 0.1f, 4), KtPoint()})
    {
        KtPoint n;
        KtArbitraryPerpendicular(&n, v);
        float length = KtDotProduct(v, v) == 0.0f ? 0.0f : 1.0f;
        EXPECT_NEAR(length, KtDotProduct(n, n), kGeometryTolerance) << v;
        EXPECT_NEAR(0.0f, KtDotProduct(v, n), kGeometryTolerance) << v;
    }
}

TEST(KtReorthogonalize, RestoresASlightlyPerturbedRotation)
{
    std::mt19937 random(5);
    std::uniform_real_distribution<float> noise(-2e-3f, 2e-3f);
    for (int trial = 0; trial < 100; ++trial)
    {
        Kt3X3FloatMat m;
        randomRigidFrame(random).getRotationMatrix(&m);
        for (int i = 0; i < 3; ++i)
            for (int j = 0; j < 3; ++j)
                m[i][j] += noise(random);
        KtReorthogonalize(&m);
        Kt3X3FloatMat gram = m;
        gram.transpose();
        Kt3X3FloatMat::_multiply(
            gram.elements(), gram.elements(), m.elements());
        ASSERT_MATRIX_NEAR(Kt3X3FloatMat::MultiplicativeIdentity, gram);
    }
}

TEST(KtReorthogonalize, SumsExactlyNineTermsOfTheSeries)
{
    // For s I the series runs on x = s^2 - 1 alone; at x = 0.5 a tenth term
    // would still move the result by more than the tolerance. The binomial
    // coefficients of (1 + x)^(-1/2): c(n) = c(n - 1) (1 - 2n) / 2n.
    const float s = std::sqrt(1.5f);
    double x = static_cast<double>(s) * s - 1.0;
    double sum = 1.0;
    double term = 1.0;
    for (int n = 1; n <= 9; ++n)
        sum += term *= x * (1.0 - 2 * n) / (2 * n);
    Kt3X3FloatMat m(s);
    KtReorthogonalize(&m);
    EXPECT_MATRIX_NEAR(Kt3X3FloatMat(static_cast<float>(s * sum)), m);
}

// Our numbers reach a stream through the standard insertion, which must
// format like the C print functions with the stream's width and precision.
TEST(FloatStreamInsertion, MatchesTheCPrintFormatChosenByTheFlags)
{
    using std::ios_base;
    // clang-format off
    const struct { ios_base::fmtflags flags; const char* format; } rules[] = {
        {ios_base::fmtflags(), "%*.*g"}, {ios_base::uppercase, "%*.*G"},
        {ios_base::fixed, "%*.*f"}, {ios_base::scientific, "%*.*e"},
        {ios_base::scientific | ios_base::uppercase, "%*.*E"}};
    // clang-format on
    for (const auto& rule : rules)
        for (float value : {0.1f, -2.5f, 1234567.0f, 1e-7f, 3.4028235e38f})
            for (int width : {0, 12})
                for (int precision : {6, 0, 9})
                {
                    std::ostringstream out;
                    out.flags(rule.flags);
                    out.width(width);
                    out.precision(precision);
                    out << value;
                    char c[80];
                    std::snprintf(c, 80, rule.format, width, precision, value);
                    EXPECT_EQ(c, out.str()) << rule.format;
                }
    std::ostringstream out;
    out << 0.1f << " " << std::fixed << 0.1f;
    EXPECT_EQ("0.1 0.100000", out.str());
}

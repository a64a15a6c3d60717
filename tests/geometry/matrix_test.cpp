// Points, 3x3 and 4x4 matrices, vector functions and the way numbers reach a
// stream.
#include <cmath>
#include <cstdio>
#include <limits>
#include <random>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "geometry/Kt3X3FloatMat.h"
#include "geometry/Kt4X4FloatMat.h"
#include "geometry/KtCoordSystem.h"
#include "geometry/KtPoint.h"
#include "geometry/KtVectorAlgo.h"
#include "support/geometry_helpers.h"
#include "toolkit/KtError.h"

namespace
{

constexpr float kQuarterTurn = 1.57079633f;

template <class Matrix, int N>
Matrix randomMatrix(std::mt19937& random)
{
    std::uniform_real_distribution<float> value(-2.0f, 2.0f);
    Matrix m;
    for (int i = 0; i < N; ++i)
        for (int j = 0; j < N; ++j)
            m[i][j] = value(random);
    return m;
}

// A rotation with a translation, built by frame operations.
KtCoordSystem randomRigidFrame(std::mt19937& random)
{
    std::uniform_real_distribution<float> angle(-3.1f, 3.1f);
    std::uniform_real_distribution<float> offset(-10.0f, 10.0f);
    KtCoordSystem frame;
    frame.preRotateZ(angle(random));
    frame.preRotateY(angle(random));
    frame.preRotateX(angle(random));
    frame.setTranslationVector(
        KtPoint(offset(random), offset(random), offset(random)));
    return frame;
}

template <class Matrix, int N>
std::string printed(const Matrix& m)
{
    std::ostringstream out;
    m.printOn(out);
    return out.str();
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
    m[0][1] = 4.0f;
    m.setDiagonal(-1.0f);
    EXPECT_EQ(4.0f, m[0][1]);
    EXPECT_EQ(-1.0f, m[3][3]);
    EXPECT_EQ(Kt3X3FloatMat(0.0f), Kt3X3FloatMat() = 0.0f);
}

TEST(Kt4X4FloatMat, ProductIsRowTimesColumnEvenIntoAnOperand)
{
    std::mt19937 random(7);
    Kt4X4FloatMat a = randomMatrix<Kt4X4FloatMat, 4>(random);
    Kt4X4FloatMat b = randomMatrix<Kt4X4FloatMat, 4>(random);
    Kt4X4FloatMat product;
    Kt4X4FloatMat::_multiply(product.elements(), a.elements(), b.elements());
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
        {
            float sum = 0.0f;
            for (int k = 0; k < 4; ++k)
                sum += a[i][k] * b[k][j];
            EXPECT_EQ(sum, product[i][j]);
        }
    Kt4X4FloatMat left = a;
    Kt4X4FloatMat::_multiply(left.elements(), left.elements(), b.elements());
    EXPECT_EQ(product, left);
    Kt4X4FloatMat right = b;
    Kt4X4FloatMat::multiply(right, a, right);
    EXPECT_EQ(product, right);

    Kt3X3FloatMat a3 = randomMatrix<Kt3X3FloatMat, 3>(random);
    Kt3X3FloatMat b3 = randomMatrix<Kt3X3FloatMat, 3>(random);
    Kt3X3FloatMat product3;
    Kt3X3FloatMat::_multiply(product3.elements(), a3.elements(), b3.elements());
    Kt3X3FloatMat::_multiply(a3.elements(), a3.elements(), b3.elements());
    EXPECT_EQ(product3, a3);
}

namespace
{
int productCalls = 0;
void countingProduct(Kt4X4FloatMat::KtElements& res,
                     const Kt4X4FloatMat::KtElements& a,
                     const Kt4X4FloatMat::KtElements& b)
{
    ++productCalls;
    Kt4X4FloatMat::_multiply(res, a, b);
}
} // namespace

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
        inverse.invert();
        Kt4X4FloatMat product;
        Kt4X4FloatMat::multiply(product, inverse, frame);
        EXPECT_MATRIX_NEAR(Kt4X4FloatMat::MultiplicativeIdentity, product);
        Kt4X4FloatMat::multiply(product, frame, inverse);
        EXPECT_MATRIX_NEAR(Kt4X4FloatMat::MultiplicativeIdentity, product);
    }
}

TEST(Kt4X4FloatMat, InvertingASingularMatrixGivesNaNSilently)
{
    Kt4X4FloatMat zero(0.0f);
    zero.invert();
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            EXPECT_TRUE(std::isnan(zero[i][j]));
    EXPECT_FALSE(zero.isValid());
    EXPECT_FALSE(theExceptObj.exceptionOccurred());
}

TEST(Kt4X4FloatMat, DeterminantsCofactorsAndAdjugate)
{
    // Upper triangular: the determinant is the product of the diagonal.
    Kt4X4FloatMat m(0.0f);
    const float rows[4][4] = {
        {2, 7, -1, 3}, {0, -3, 5, 1}, {0, 0, 4, 8}, {0, 0, 0, 0.5f}};
    for (int i = 0; i < 4; ++i)
        m.setRow(i, Kt4X4FloatMat::KtRow(rows[i]));
    EXPECT_EQ(-12.0f, Kt4X4FloatMat::_matrixDeterminant(m.elements()));
    const int pickRows[2] = {0, 1};
    const int pickCols[2] = {1, 3};
    EXPECT_EQ(7.0f * 1 - 3.0f * -3, m._subDeterminant(pickRows, pickCols, 2));
    EXPECT_EQ(3.0f, m._subCofactor(pickRows, pickCols, 2, 0, 1)); // -(-3)
    EXPECT_EQ(1.0f, m._subDeterminant(pickRows, pickCols, 0));
    EXPECT_EQ(0.0f, m._subDeterminant(Kt4X4FloatMat::Map, pickCols, 5));
    int shortened[3] = {};
    Kt4X4FloatMat::_removePosFromIntVec(shortened, Kt4X4FloatMat::Map, 4, 2);
    EXPECT_EQ(0, shortened[0]);
    EXPECT_EQ(1, shortened[1]);
    EXPECT_EQ(3, shortened[2]);

    // adj(M) . M = det(M) . I for any matrix.
    std::mt19937 random(3);
    Kt4X4FloatMat general = randomMatrix<Kt4X4FloatMat, 4>(random);
    float det = Kt4X4FloatMat::_matrixDeterminant(general.elements());
    Kt4X4FloatMat product = general;
    product.adjoint();
    Kt4X4FloatMat::multiply(product, product, general);
    EXPECT_MATRIX_NEAR(Kt4X4FloatMat(det), product);
    EXPECT_EQ(
        Kt4X4FloatMat::_matrixCofactor(general.elements(), 1, 2),
        general._subCofactor(Kt4X4FloatMat::Map, Kt4X4FloatMat::Map, 4, 1, 2));
}

TEST(Kt4X4FloatMat, IsValidRejectsOnlyNaN)
{
    const float inf = std::numeric_limits<float>::infinity();
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const struct
    {
        float value;
        bool valid;
    } cases[] = {{inf, true}, {-inf, true}, {3.4e38f, true}, {nan, false}};
    for (const auto& c : cases)
    {
        Kt4X4FloatMat m4;
        m4[2][3] = c.value;
        Kt3X3FloatMat m3;
        m3[1][0] = c.value;
        EXPECT_EQ(c.valid, m4.isValid()) << c.value;
        EXPECT_EQ(c.valid, m3.isValid()) << c.value;
        EXPECT_EQ(c.valid, m4 == m4) << c.value;
    }
}

TEST(Kt4X4FloatMat, SinCosAngleUsesItsOwnShortPi)
{
    // A sine for which the short and the full pi round to different floats.
    const float sine = 0x1.075abep-1f;
    EXPECT_EQ(static_cast<float>(3.14159265359 - std::asin(double(sine))),
              Kt4X4FloatMat::_sinCosAngle(sine, -1.0f));
    EXPECT_NE(static_cast<float>(3.141592653589793 - std::asin(double(sine))),
              Kt4X4FloatMat::_sinCosAngle(sine, -1.0f));
    EXPECT_EQ(static_cast<float>(std::asin(0.5)),
              Kt4X4FloatMat::_sinCosAngle(0.5f, 1.0f));
    EXPECT_EQ(static_cast<float>(3.14159265359 - std::asin(0.5)),
              Kt4X4FloatMat::_sinCosAngle(0.5f, -0.1f));
    EXPECT_EQ(static_cast<float>(3.14159265359 + std::asin(1.0)),
              Kt4X4FloatMat::_sinCosAngle(-1.5f, -1.0f));
}

TEST(Kt4X4FloatMat, PointAndVectorProducts)
{
    KtCoordSystem frame;
    frame.preRotateZ(0.5f);
    frame.setTranslationVector(KtPoint(1.0f, 2.0f, 3.0f));
    KtPoint p(0.5f, -1.0f, 2.0f);

    KtPoint moved;
    Kt4X4FloatMat::_preMultPoint(&moved, p, frame);
    Kt3X3FloatMat rotation;
    frame.getRotationMatrix(&rotation);
    KtPoint turned = p;
    turned.applyMatrix(rotation);
    EXPECT_POINT_NEAR(KtPoint(turned.x + 1, turned.y + 2, turned.z + 3), moved);

    Kt4X4FloatMat transposed = frame;
    transposed.transpose();
    KtPoint column;
    Kt4X4FloatMat::_postMultPoint(&column, transposed, p);
    EXPECT_POINT_NEAR(moved, column);
    Kt3X3FloatMat::_postMultPoint(&column, rotation, p);
    Kt3X3FloatMat::_preMultPoint(&turned, p, rotation.transpose());
    EXPECT_POINT_NEAR(turned, column);

    // A projective matrix: the result is divided by w.
    Kt4X4FloatMat projective;
    projective[2][3] = 1.0f;
    KtPoint projected(2.0f, 4.0f, 1.0f);
    projected.applyMatrix(projective);
    EXPECT_POINT_NEAR(KtPoint(1.0f, 2.0f, 0.5f), projected);

    // A direction (w = 0) is turned but not moved.
    float v[4] = {1.0f, 2.0f, 3.0f, 0.0f};
    Kt4X4FloatMat::_preMultVector(&v, v, frame.elements());
    KtPoint direction(1.0f, 2.0f, 3.0f);
    direction.applyMatrix(frame);
    EXPECT_POINT_NEAR(
        KtPoint(v[0], v[1], v[2]),
        KtPoint(direction.x - 1, direction.y - 2, direction.z - 3));
    EXPECT_EQ(0.0f, v[3]);
}

TEST(Kt4X4FloatMat, PrintsRowsInBracketsAndRowsCarryTheirOperations)
{
    Kt3X3FloatMat m3;
    m3.setRow(1, Kt3X3FloatMat::KtRow({4.0f, 5.5f, -6.0f}));
    EXPECT_EQ("[\n[1  0  0]\n [4  5.5  -6]\n [0  0  1]\n]",
              (printed<Kt3X3FloatMat, 3>(m3)));
    Kt4X4FloatMat m4(0.25f);
    EXPECT_EQ("[\n[0.25  0  0  0]\n [0  0.25  0  0]\n [0  0  0.25  0]\n"
              " [0  0  0  0.25]\n]",
              (printed<Kt4X4FloatMat, 4>(m4)));

    Kt4X4FloatMat::KtRow row = m4.row(0);
    row.scale(8.0f);
    row /= 2.0f;
    row -= Kt4X4FloatMat::KtRow({1.0f, 1.0f, 0.0f, 0.0f});
    EXPECT_EQ(Kt4X4FloatMat::KtRow({0.0f, -1.0f, 0.0f, 0.0f}), row);
    EXPECT_EQ(0.25f, m4[0][0]); // a row is a copy
}

TEST(KtPoint, AppliesMatricesAsARowVectorAndSortsByCoordinates)
{
    KtCoordSystem frame;
    frame.preRotateZ(kQuarterTurn);
    frame.setTranslationVector(KtPoint(0.0f, 0.0f, 5.0f));
    KtPoint p(1.0f, 0.0f, 0.0f);
    p.applyMatrix(frame);
    EXPECT_POINT_NEAR(KtPoint(0.0f, 1.0f, 5.0f), p);

    const KtPoint sorted[] = {
        {-1, 5, 5}, {0, -2, 9}, {0, 3, -4}, {0, 3, 2}, {1, -9, -9}};
    for (int a = 0; a < 5; ++a)
        for (int b = 0; b < 5; ++b)
        {
            EXPECT_EQ(a < b, sorted[a] < sorted[b]) << a << " " << b;
            EXPECT_EQ(a > b, sorted[a] > sorted[b]) << a << " " << b;
        }
    std::ostringstream out;
    out << KtPoint(1.5f, -2.0f, 0.1f);
    EXPECT_EQ("(1.5, -2, 0.1)", out.str());
}

TEST(KtVectorAlgo, ProductsNormalsAndPerpendiculars)
{
    KtPoint z;
    KtPoint x(1.0f, 0.0f, 0.0f);
    KtGetCrossProduct(&z, x, KtPoint(0.0f, 1.0f, 0.0f));
    EXPECT_POINT_NEAR(KtPoint(0.0f, 0.0f, 1.0f), z);
    KtGetCrossProduct(&x, x, KtPoint(2.0f, 0.0f, 0.0f)); // parallel, aliased
    EXPECT_POINT_NEAR(KtPoint(), x);
    EXPECT_EQ(32.0f, KtDotProduct(KtPoint(1, 2, 3), KtPoint(4, 5, 6)));

    EXPECT_POINT_NEAR(
        KtPoint(0.0f, 0.0f, 1.0f),
        KtTriangleNormal(KtPoint(1, 1, 2), KtPoint(4, 1, 2), KtPoint(1, 3, 2)));
    EXPECT_POINT_NEAR(
        KtPoint(),
        KtTriangleNormal(KtPoint(0, 0, 0), KtPoint(1, 1, 1), KtPoint(2, 2, 2)));

    const KtPoint vectors[] = {
        {1, 0, 0}, {0, -3, 0}, {0, 0, 2}, {1, 2, 3}, {-5, 0.1f, 4}, {0, 0, 0}};
    for (const KtPoint& v : vectors)
    {
        KtPoint perpendicular;
        KtArbitraryPerpendicular(&perpendicular, v);
        float length = std::sqrt(KtDotProduct(perpendicular, perpendicular));
        bool zero = KtDotProduct(v, v) == 0.0f;
        EXPECT_NEAR(zero ? 0.0f : 1.0f, length, kGeometryTolerance) << v;
        EXPECT_NEAR(0.0f, KtDotProduct(v, perpendicular), kGeometryTolerance)
            << v;
    }
}

TEST(KtReorthogonalize, RestoresASlightlyPerturbedRotation)
{
    std::mt19937 random(5);
    std::uniform_real_distribution<float> noise(-2e-3f, 2e-3f);
    for (int trial = 0; trial < 100; ++trial)
    {
        Kt3X3FloatMat rotation;
        randomRigidFrame(random).getRotationMatrix(&rotation);
        Kt3X3FloatMat drifted = rotation;
        for (int i = 0; i < 3; ++i)
            for (int j = 0; j < 3; ++j)
                drifted[i][j] += noise(random);
        KtReorthogonalize(&drifted);
        Kt3X3FloatMat gram = drifted;
        gram.transpose();
        Kt3X3FloatMat::_multiply(
            gram.elements(), gram.elements(), drifted.elements());
        EXPECT_MATRIX_NEAR(Kt3X3FloatMat::MultiplicativeIdentity, gram);
        for (int i = 0; i < 3; ++i)
            for (int j = 0; j < 3; ++j)
                EXPECT_NEAR(rotation[i][j], drifted[i][j], 1e-2f);
    }
}

TEST(KtReorthogonalize, SumsExactlyNineTermsOfTheSeries)
{
    // For s I the series runs on x = s^2 - 1 alone; at x = 0.5 each further
    // term would still move the result by more than the tolerance.
    const double coefficients[10] = {1.0,
                                     -0.5,
                                     0.375,
                                     -0.3125,
                                     0.2734375,
                                     -0.24609375,
                                     0.2255859375,
                                     -0.20947265625,
                                     0.196380615234375,
                                     -0.1854705810546875};
    const float s = std::sqrt(1.5f);
    double x = static_cast<double>(s) * s - 1.0;
    double sum = 0.0;
    for (int n = 0; n <= 9; ++n)
        sum += coefficients[n] * std::pow(x, n);
    Kt3X3FloatMat m(s);
    KtReorthogonalize(&m);
    EXPECT_MATRIX_NEAR(Kt3X3FloatMat(static_cast<float>(s * sum)), m);
    EXPECT_GT(std::fabs(m[0][0] - 1.0f), 1e-4f); // not yet the rotation
}

// Our numbers reach a stream through the standard insertion, which must
// format like the C print functions with the stream's width and precision.
TEST(FloatStreamInsertion, MatchesTheCPrintFormatChosenByTheFlags)
{
    std::ostringstream general;
    general << 0.1f;
    EXPECT_EQ("0.1", general.str());
    const struct
    {
        std::ios_base::fmtflags flags;
        const char* format;
    } rules[] = {
        {std::ios_base::fmtflags(), "%*.*g"},
        {std::ios_base::uppercase, "%*.*G"},
        {std::ios_base::fixed, "%*.*f"},
        {std::ios_base::scientific, "%*.*e"},
        {std::ios_base::scientific | std::ios_base::uppercase, "%*.*E"}};
    const float values[] = {
        0.1f, -2.5f, 1234567.0f, 1e-7f, 3.4028235e38f, 0.0f};
    const int widths[] = {0, 12};
    const int precisions[] = {6, 0, 3, 9};
    for (const auto& rule : rules)
        for (float value : values)
            for (int width : widths)
                for (int precision : precisions)
                {
                    std::ostringstream out;
                    out.flags(rule.flags);
                    out.width(width);
                    out.precision(precision);
                    out << value;
                    char expected[128];
                    std::snprintf(expected,
                                  sizeof expected,
                                  rule.format,
                                  width,
                                  precision,
                                  static_cast<double>(value));
                    EXPECT_EQ(expected, out.str())
                        << rule.format << " " << width << " " << precision;
                }
    std::ostringstream fixed;
    fixed << std::fixed << 0.1f;
    EXPECT_EQ("0.100000", fixed.str());
}

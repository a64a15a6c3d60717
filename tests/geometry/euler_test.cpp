// Euler angles: composition against the frame's pre-rotations, decomposition
// round trips for every order, gimbal lock, order completion and the choice
// between the two triples of one rotation.
#include <cmath>
#include <limits>
#include <random>

#include <gtest/gtest.h>

#include "geometry/KtCoordSystem.h"
#include "geometry/KtEuler.h"
#include "support/geometry_helpers.h"

namespace
{

constexpr double kPi = 3.141592653589793;

struct Order
{
    int codes[3];
};

// Six orders of three different axes (the first three cyclic), then the six
// proper Euler orders.
constexpr Order kOrders[] = {{{1, 2, 3}},
                             {{2, 3, 1}},
                             {{3, 1, 2}},
                             {{1, 3, 2}},
                             {{2, 1, 3}},
                             {{3, 2, 1}},
                             {{1, 2, 1}},
                             {{1, 3, 1}},
                             {{2, 1, 2}},
                             {{2, 3, 2}},
                             {{3, 1, 3}},
                             {{3, 2, 3}}};

KtArray<int> orderArray(const int (&codes)[3])
{
    KtArray<int> order(3);
    for (int k = 0; k < 3; ++k)
        order[k] = codes[k];
    return order;
}

Kt3X3FloatMat compose(const float (&angles)[3], const int (&codes)[3])
{
    return KtComposeRotationMatrix(KtPoint(angles[0], angles[1], angles[2]),
                                   orderArray(codes));
}

// The elementary rotation, as the frame's pre-rotation builds it.
Kt3X3FloatMat axisRotation(int code, float angle)
{
    KtCoordSystem frame;
    if (code == 1)
        frame.preRotateX(angle);
    else if (code == 2)
        frame.preRotateY(angle);
    else
        frame.preRotateZ(angle);
    Kt3X3FloatMat block;
    frame.getRotationMatrix(&block);
    return block;
}

Kt3X3FloatMat product(const Kt3X3FloatMat& a, const Kt3X3FloatMat& b)
{
    Kt3X3FloatMat r;
    Kt3X3FloatMat::_multiply(r.elements(), a.elements(), b.elements());
    return r;
}

// The rotation of three turns in order: first about codes[0], then the
// middle one, then the last one (with row vectors, the last factor acts
// first).
Kt3X3FloatMat
threeTurns(const int (&codes)[3], float first, float middle, float last)
{
    return product(
        axisRotation(codes[2], last),
        product(axisRotation(codes[1], middle), axisRotation(codes[0], first)));
}

// Rebuilds a rotation from all three decomposed angles; for a proper Euler
// order the last angle sits on the axis that the order does not name.
Kt3X3FloatMat rebuilt(const float (&found)[3], const int (&codes)[3])
{
    int third = codes[0] == codes[2] ? 6 - codes[0] - codes[1] : codes[2];
    return threeTurns(
        codes, found[codes[0] - 1], found[codes[1] - 1], found[third - 1]);
}

float decomposedAngle(const Kt3X3FloatMat& m, const int (&codes)[3], int axis)
{
    float angles[3];
    KtGetDecomposedRotationMatrix(&angles, codes, m);
    return angles[axis];
}

} // namespace

TEST(KtComposeRotationMatrix, ZeroAnglesGiveTheIdentityForEveryOrder)
{
    const float zero[3] = {0.0f, 0.0f, 0.0f};
    for (const Order& order : kOrders)
        EXPECT_EQ(Kt3X3FloatMat::MultiplicativeIdentity,
                  compose(zero, order.codes));
}

TEST(KtComposeRotationMatrix, EachAngleIsReadFromItsAxisWhateverItsPlace)
{
    // An angle whose float cosine and sine differ from the double ones
    // rounded to float, read at run time so that the library computes both.
    volatile float angle = 0x1.00b4aap-1f;
    const float a = angle;
    const float c = static_cast<float>(std::cos(static_cast<double>(a)));
    const float s = static_cast<float>(std::sin(static_cast<double>(a)));
    Kt3X3FloatMat x;
    x.setRow(1, Kt3X3FloatMat::KtRow({0, c, s}));
    x.setRow(2, Kt3X3FloatMat::KtRow({0, -s, c}));
    Kt3X3FloatMat z;
    z.setRow(0, Kt3X3FloatMat::KtRow({c, s, 0}));
    z.setRow(1, Kt3X3FloatMat::KtRow({-s, c, 0}));
    const int xyz[3] = {1, 2, 3};
    const int zxy[3] = {3, 1, 2};
    EXPECT_EQ(x, compose({a, 0.0f, 0.0f}, xyz));
    EXPECT_EQ(z, compose({0.0f, 0.0f, a}, xyz));
    EXPECT_EQ(z, compose({0.0f, 0.0f, a}, zxy));
    KtArray<float> angles(3);
    angles[0] = a;
    EXPECT_EQ(x, KtComposeRotationMatrix(angles, orderArray(zxy)));
}

// Composition is R(order[2]) . R(order[1]) . R(order[0]), the block that the
// frame's pre-rotations build in list order.
TEST(KtComposeRotationMatrix, EqualsTheChainOfPreRotationsInListOrder)
{
    std::mt19937 random(29);
    std::uniform_real_distribution<float> angle(-3.1f, 3.1f);
    for (const Order& order : kOrders)
        for (int trial = 0; trial < 50; ++trial)
        {
            const float angles[3] = {
                angle(random), angle(random), angle(random)};
            KtCoordSystem frame;
            for (int code : order.codes)
            {
                if (code == 1)
                    frame.preRotateX(angles[0]);
                else if (code == 2)
                    frame.preRotateY(angles[1]);
                else
                    frame.preRotateZ(angles[2]);
            }
            Kt3X3FloatMat chain;
            frame.getRotationMatrix(&chain);
            EXPECT_MATRIX_NEAR(chain, compose(angles, order.codes));
        }
}

TEST(KtComposeRotationMatrix, UnknownCodesKeepTheirLongStandingEffect)
{
    const float angles[3] = {0.3f, -0.8f, 1.1f};
    Kt3X3FloatMat x = axisRotation(1, angles[0]);
    Kt3X3FloatMat y = axisRotation(2, angles[1]);
    Kt3X3FloatMat z = axisRotation(3, angles[2]);
    const struct
    {
        int codes[3];
        Kt3X3FloatMat expected;
    } cases[] = {
        {{0, 2, 3}, product(z, y)},             // starts from the identity
        {{1, 7, 3}, product(z, x)},             // temporary still the identity
        {{1, 2, 0}, product(y, product(y, x))}, // Y applied again
        {{-1, 2, -1}, product(y, y)},
    };
    for (const auto& c : cases)
        EXPECT_MATRIX_NEAR(c.expected, compose(angles, c.codes))
            << c.codes[0] << c.codes[1] << c.codes[2];

    KtArray<int> shortOrder(2);
    shortOrder[0] = 1;
    shortOrder[1] = 2;
    KtArray<float> oneAngle(1);
    oneAngle[0] = angles[0];
    EXPECT_MATRIX_NEAR(product(Kt3X3FloatMat(), x),
                       KtComposeRotationMatrix(oneAngle, shortOrder));
}

// Away from gimbal lock, decomposing then composing gives the rotation back,
// for composed rotations of every order, and the three angles rebuild any
// rotation. Angles inside the principal ranges come back themselves.
TEST(KtGetDecomposedRotationMatrix, RoundTripsEveryOrderAwayFromGimbalLock)
{
    std::mt19937 random(31);
    std::uniform_real_distribution<float> angle(-3.1f, 3.1f);
    for (const Order& order : kOrders)
    {
        const int(&codes)[3] = order.codes;
        bool proper = codes[0] == codes[2];
        int middleAxis = codes[1] - 1;
        for (int trial = 0; trial < 500; ++trial)
        {
            float angles[3] = {angle(random), angle(random), angle(random)};
            if (!proper)
                angles[middleAxis] *= 0.5f;
            double middle = angles[middleAxis];
            if ((proper ? std::fabs(std::sin(middle))
                        : std::fabs(std::cos(middle))) < 0.05)
                continue;
            Kt3X3FloatMat m = compose(angles, codes);
            float found[3];
            KtGetDecomposedRotationMatrix(&found, codes, m);
            ASSERT_MATRIX_NEAR(m, compose(found, codes))
                << codes[0] << codes[1] << codes[2] << " trial " << trial;
            ASSERT_MATRIX_NEAR(m, rebuilt(found, codes));
            if (!proper)
            {
                for (int axis = 0; axis < 3; ++axis)
                    EXPECT_NEAR(angles[axis], found[axis], 1e-3f);
            }

            const int elsewhere[3] = {2, 3, 1};
            Kt3X3FloatMat any = threeTurns(
                elsewhere, angle(random), angle(random), angle(random));
            float lock = any[codes[2] - 1][codes[0] - 1];
            if (proper)
                lock = any[codes[0] - 1][codes[0] - 1];
            if (std::fabs(lock) > 0.998f)
                continue;
            KtGetDecomposedRotationMatrix(&found, codes, any);
            ASSERT_MATRIX_NEAR(any, rebuilt(found, codes));
        }
    }
}

TEST(KtGetDecomposedRotationMatrix, GimbalLockPutsTheWholeTurnOnOneOuterAngle)
{
    const float quarter = static_cast<float>(kPi / 2);
    for (const Order& order : kOrders)
    {
        const int(&codes)[3] = order.codes;
        bool proper = codes[0] == codes[2];
        const float middles[] = {proper ? 0.0f : quarter,
                                 proper ? static_cast<float>(kPi) : -quarter};
        for (float middle : middles)
        {
            Kt3X3FloatMat m = threeTurns(codes, 0.9f, middle, -0.2f);
            float found[3];
            KtGetDecomposedRotationMatrix(&found, codes, m);
            int third = proper ? 6 - codes[0] - codes[1] : codes[2];
            EXPECT_TRUE(found[codes[0] - 1] == 0.0f || found[third - 1] == 0.0f)
                << codes[0] << codes[1] << codes[2] << " " << middle;
            EXPECT_NEAR(std::fabs(middle),
                        std::fabs(found[codes[1] - 1]),
                        kGeometryTolerance);
            EXPECT_MATRIX_NEAR(m, rebuilt(found, codes))
                << codes[0] << codes[1] << codes[2] << " " << middle;
        }
    }
    // Whole quarter turns everywhere, as rigs are often set up.
    for (const Order& order : kOrders)
        for (int a = -2; a <= 2; ++a)
            for (int b = -2; b <= 2; ++b)
            {
                Kt3X3FloatMat m =
                    threeTurns(order.codes, a * quarter, b * quarter, quarter);
                float found[3];
                KtGetDecomposedRotationMatrix(&found, order.codes, m);
                EXPECT_MATRIX_NEAR(m, rebuilt(found, order.codes));
            }
}

TEST(KtGetDecomposedRotationMatrix, CompletesOrdersGivenWithFewerAxes)
{
    const float angles[3] = {0.3f, -0.5f, 0.9f};
    const struct
    {
        int given[3];
        int completed[3]; // all 0: left incomplete
    } cases[] = {
        {{3, 0, 0}, {3, 1, 2}},
        {{1, 0, 0}, {0, 0, 0}}, // completes to 1, 2, 0
        {{2, 0, 0}, {0, 0, 0}}, // completes to 2, 0, 1
        {{1, 2, 0}, {1, 2, 3}},
        {{2, 1, 0}, {2, 1, 3}},
        {{2, 3, 0}, {2, 3, 1}},
        {{3, 1, 0}, {3, 1, 2}},
        {{3, 2, 0}, {0, 0, 0}},
        {{1, 3, 0}, {0, 0, 0}},
        {{1, 1, 2}, {0, 0, 0}},
        {{1, 2, 2}, {0, 0, 0}},
        {{4, 1, 2}, {0, 0, 0}},
        {{0, 2, 3}, {0, 0, 0}},
    };
    for (const auto& c : cases)
    {
        const int xyz[3] = {1, 2, 3};
        Kt3X3FloatMat m = compose(angles, c.completed[0] ? c.completed : xyz);
        float expected[3] = {0.0f, 0.0f, 0.0f};
        if (c.completed[0] != 0)
            KtGetDecomposedRotationMatrix(&expected, c.completed, m);
        float found[3] = {9.0f, 9.0f, 9.0f};
        KtGetDecomposedRotationMatrix(&found, c.given, m);
        for (int axis = 0; axis < 3; ++axis)
            EXPECT_EQ(expected[axis], found[axis])
                << c.given[0] << c.given[1] << c.given[2] << " axis " << axis;
    }
}

TEST(KtGetDecomposedRotationMatrix, InferredAxisBeyondAQuarterTurnFlips)
{
    const int full[3] = {2, 3, 1};
    const int inferred[3] = {2, 3, 0};
    const float angles[3] = {2.5f, 0.4f, -0.3f};
    Kt3X3FloatMat m = compose(angles, full);
    float found[3];
    KtGetDecomposedRotationMatrix(&found, inferred, m);
    EXPECT_FLOAT_EQ(static_cast<float>(2.5 + kPi), found[0]);
    EXPECT_FLOAT_EQ(static_cast<float>(0.4 + kPi), found[1]);
    EXPECT_FLOAT_EQ(static_cast<float>(kPi + 0.3), found[2]);
    EXPECT_MATRIX_NEAR(m, compose(found, full));
    // Within a quarter turn nothing changes; given in full, never.
    EXPECT_FLOAT_EQ(2.5f, decomposedAngle(m, full, 0));
    const float small[3] = {1.5f, 0.4f, -0.3f};
    EXPECT_FLOAT_EQ(1.5f, decomposedAngle(compose(small, full), inferred, 0));
}

TEST(KtGetDecomposedRotationMatrix, NonRotationsGiveFiniteAngles)
{
    Kt3X3FloatMat stretched(1.5f);
    stretched[2][0] = -3.0f;
    for (const Order& order : kOrders)
    {
        float found[3];
        KtGetDecomposedRotationMatrix(&found, order.codes, stretched);
        for (float a : found)
            EXPECT_TRUE(std::isfinite(a)) << order.codes[0] << order.codes[1];
    }
}

TEST(KtGetDecomposedRotationMatrix, FindAnglesOfBothMatrixSizesAgree)
{
    const int order[3] = {1, 2, 3};
    KtCoordSystem frame;
    frame.preRotateX(0.2f);
    frame.preRotateY(-0.6f);
    frame.preRotateZ(1.3f);
    frame.setTranslationVector(KtPoint(5.0f, 6.0f, 7.0f));
    float from4[3];
    frame.findAngles(&from4, order);
    EXPECT_NEAR(0.2f, from4[0], 1e-6f);
    EXPECT_NEAR(-0.6f, from4[1], 1e-6f);
    EXPECT_NEAR(1.3f, from4[2], 1e-6f);
    Kt3X3FloatMat block;
    frame.getRotationMatrix(&block);
    float from3[3];
    block.findAngles(&from3, order);
    for (int axis = 0; axis < 3; ++axis)
        EXPECT_EQ(from4[axis], from3[axis]);
}

TEST(KtGetClosestAngles, PicksTheNearerTripleAfterWrapping)
{
    const float nearPi = static_cast<float>(kPi - 0.1);
    const float fourPi = static_cast<float>(4 * kPi);
    const float quarter = static_cast<float>(kPi / 2);
    const struct
    {
        float ref[3];
        float cand[3];
        int order[3];
        float expected[3];
    } cases[] = {
        // A costs 3 (pi - 0.1)^2, B = (-0.1, 0.1, -0.1) only 0.03.
        {{0, 0, 0}, {nearPi, nearPi, nearPi}, {1, 2, 3}, {-0.1f, 0.1f, -0.1f}},
        // The middle axis of the order is the one mirrored.
        {{0, 0, 0}, {nearPi, nearPi, nearPi}, {2, 3, 1}, {-0.1f, -0.1f, 0.1f}},
        // B = (-q, q, -q) is just as far: a tie keeps the candidate.
        {{0, 0, 0},
         {quarter, quarter, quarter},
         {1, 2, 3},
         {quarter, quarter, quarter}},
        // A candidate equal to the reference costs nothing.
        {{0.5f, -1, 2}, {0.5f, -1, 2}, {3, 1, 2}, {0.5f, -1, 2}},
        // Four half turns away, wrapped back component by component.
        {{0.2f, -0.3f, 0.1f},
         {0.2f + fourPi, -0.3f - fourPi, 0.1f + fourPi},
         {1, 2, 3},
         {0.2f, -0.3f, 0.1f}},
    };
    for (const auto& c : cases)
    {
        float out[3];
        KtGetClosestAngles(&out, c.ref, c.cand, c.order);
        for (int axis = 0; axis < 3; ++axis)
            EXPECT_NEAR(c.expected[axis], out[axis], 1e-5f)
                << c.order[0] << c.order[1] << c.order[2] << " axis " << axis;
    }
}

// Whatever is chosen is the same rotation as the candidate, within half a
// turn of the reference on every axis.
TEST(KtGetClosestAngles, ChoosesAnEquivalentTripleNearTheReference)
{
    std::mt19937 random(37);
    std::uniform_real_distribution<float> angle(-9.0f, 9.0f);
    for (int orderIndex = 0; orderIndex < 6; ++orderIndex)
    {
        const int(&codes)[3] = kOrders[orderIndex].codes;
        for (int trial = 0; trial < 200; ++trial)
        {
            const float ref[3] = {angle(random), angle(random), angle(random)};
            float cand[3] = {angle(random), angle(random), angle(random)};
            Kt3X3FloatMat m = compose(cand, codes);
            KtGetClosestAngles(&cand, ref, cand, codes); // in place
            EXPECT_MATRIX_NEAR(m, compose(cand, codes));
            for (int axis = 0; axis < 3; ++axis)
                EXPECT_LE(std::fabs(cand[axis] - ref[axis]), kPi + 1e-5);
        }
    }
}

TEST(KtGetClosestAngles, ArrayFormsAndDegenerateInput)
{
    KtArray<float> ref(3);
    KtArray<float> cand(3);
    for (int k = 0; k < 3; ++k)
        cand[k] = static_cast<float>(kPi - 0.1);
    KtArray<float> out;
    KtGetClosestAngles(&out, ref, cand);
    ASSERT_EQ(3, out.count());
    EXPECT_NEAR(0.1f, out[1], 1e-5f);
    KtArray<int> order(3);
    order[0] = 1;
    order[1] = 3;
    order[2] = 2;
    KtGetClosestAngles(&cand, ref, cand, order);
    EXPECT_NEAR(-0.1f, cand[1], 1e-5f);
    EXPECT_NEAR(0.1f, cand[2], 1e-5f);

    // Short arrays and orders that are not 1, 2, 3 once each: the candidate.
    KtArray<float> shortCand(2);
    shortCand[0] = 7.0f;
    KtGetClosestAngles(&out, ref, shortCand);
    EXPECT_EQ(2, out.count());
    EXPECT_EQ(7.0f, out[0]);
    const float zero[3] = {0.0f, 0.0f, 0.0f};
    const float far[3] = {7.0f, 8.0f, 9.0f};
    const int badOrders[][3] = {{1, 2, 1}, {0, 1, 2}, {1, 2, 4}};
    for (const auto& bad : badOrders)
    {
        float result[3];
        KtGetClosestAngles(&result, zero, far, bad);
        EXPECT_EQ(8.0f, result[1]);
    }

    // Huge or infinite angles end; the huge one is still wrapped.
    const float inf = std::numeric_limits<float>::infinity();
    const float huge[3] = {1e30f, -1e20f, inf};
    const int xyz[3] = {1, 2, 3};
    float result[3];
    KtGetClosestAngles(&result, zero, huge, xyz);
    EXPECT_TRUE(std::isnan(result[2]));
    EXPECT_LE(std::fabs(result[1]), kPi + 1e-5);
    const float hugeRef[3] = {1e9f, 1e9f, 1e9f};
    const float nearHugeRef[3] = {1e9f + 64.0f, 1e9f, 1e9f - 64.0f};
    KtGetClosestAngles(&result, hugeRef, nearHugeRef, xyz);
    EXPECT_TRUE(std::isfinite(result[0]));
}

TEST(KtFindA, AngleOfASineAndCosine)
{
    const struct
    {
        float sine;
        float cosine;
        double expected;
    } cases[] = {{0.0f, 0.0f, 0.0},
                 {-0.0f, -0.0f, 0.0},
                 {2.0f, 0.0f, kPi / 2},
                 {0.0f, -1.0f, kPi},
                 {-1.0f, -1.0f, -3 * kPi / 4},
                 {0.5f, 0.5f, kPi / 4}};
    for (const auto& c : cases)
    {
        float angle = 99.0f;
        KtFindA(&angle, c.sine, c.cosine);
        EXPECT_FLOAT_EQ(static_cast<float>(c.expected), angle)
            << c.sine << " " << c.cosine;
    }
}

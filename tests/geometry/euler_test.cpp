#include <cmath>
#include <random>

#include <gtest/gtest.h>

#include "geometry/KtCoordSystem.h"
#include "geometry/KtEuler.h"
#include "support/geometry_helpers.h"

namespace
{

constexpr double kPi = 3.141592653589793;
const float kQuarter = static_cast<float>(kPi / 2);

// Six orders of three different axes (the first three cyclic), then the six
// proper Euler orders.
// clang-format off
constexpr int kOrders[12][3] = {{1, 2, 3}, {2, 3, 1}, {3, 1, 2},
                                {1, 3, 2}, {2, 1, 3}, {3, 2, 1},
                                {1, 2, 1}, {1, 3, 1}, {2, 1, 2},
                                {2, 3, 2}, {3, 1, 3}, {3, 2, 3}};
// clang-format on

Kt3X3FloatMat compose(const float (&angles)[3], const int (&codes)[3])
{
    KtArray<int> order(3);
    for (int k = 0; k < 3; ++k)
        order[k] = codes[k];
    return KtComposeRotationMatrix(KtPoint(angles[0], angles[1], angles[2]),
                                   order);
}

// Turns by a about codes[0], then b about codes[1], then c about codes[2]:
// with row vectors R(codes[2]) . R(codes[1]) . R(codes[0]).
Kt3X3FloatMat threeTurns(const int (&codes)[3], float a, float b, float c)
{
    const Kt4X4FloatMat m = rotationMatrix(codes[2] - 1, c) *
                            rotationMatrix(codes[1] - 1, b) *
                            rotationMatrix(codes[0] - 1, a);
    Kt3X3FloatMat block;
    m.getUpperLeft3X3Mat(&block);
    return block;
}

} // namespace

TEST(KtComposeRotationMatrix, EachAngleIsReadFromItsAxisWhateverItsPlace)
{
    // An angle whose double cosine and sine, rounded to float, differ from
    // the float ones; read at run time so that the library computes both.
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
    EXPECT_EQ(x, compose({a, 0, 0}, {1, 2, 3}));
    EXPECT_EQ(z, compose({0, 0, a}, {1, 2, 3}));
    EXPECT_EQ(z, compose({0, 0, a}, {3, 1, 2}));
}

// An unknown code builds nothing for its place: the accumulator starts as
// the identity, the temporary still holds the identity or the rotation built
// last.
TEST(KtComposeRotationMatrix, UnknownCodesKeepTheirLongStandingEffect)
{
    const float a[3] = {0.3f, -0.8f, 1.1f};
    EXPECT_MATRIX_NEAR(threeTurns({2, 3, 3}, a[1], a[2], 0), // Z . Y
                       compose(a, {0, 2, 3}));
    EXPECT_MATRIX_NEAR(threeTurns({1, 3, 3}, a[0], a[2], 0), // Z . X
                       compose(a, {1, 7, 3}));
    EXPECT_MATRIX_NEAR(threeTurns({1, 2, 2}, a[0], a[1], a[1]), // Y . Y . X
                       compose(a, {1, 2, 0}));
    KtArray<int> shortOrder(2);
    shortOrder[0] = 1;
    shortOrder[1] = 2;
    KtArray<float> oneAngle(1);
    oneAngle[0] = a[0];
    EXPECT_MATRIX_NEAR(threeTurns({1, 1, 1}, a[0], 0, 0),
                       KtComposeRotationMatrix(oneAngle, shortOrder));
}

// Away from gimbal lock decomposed angles compose to the rotation again, and
// angles inside the principal ranges come back themselves. Elements drifting
// past 1 are clamped, so a non-rotation gives finite angles.
TEST(KtGetDecomposedRotationMatrix, RoundTripsEveryOrder)
{
    std::mt19937 random(31);
    std::uniform_real_distribution<float> angle(-3.1f, 3.1f);
    Kt3X3FloatMat stretched(1.5f);
    stretched[2][0] = -3.0f;
    for (const auto& order : kOrders)
    {
        SCOPED_TRACE(testing::Message() << order[0] << order[1] << order[2]);
        EXPECT_EQ(Kt3X3FloatMat(), compose({0, 0, 0}, order));
        // For a proper Euler order the last angle is stored on the axis that
        // the order does not name.
        bool proper = order[0] == order[2];
        int last = proper ? 6 - order[0] - order[1] : order[2];
        float found[3];
        for (int trial = 0; trial < 500; ++trial)
        {
            float a[3] = {angle(random), angle(random), angle(random)};
            if (!proper)
                a[order[1] - 1] *= 0.5f;
            Kt3X3FloatMat m = compose(a, order);
            ASSERT_MATRIX_NEAR(
                threeTurns(
                    order, a[order[0] - 1], a[order[1] - 1], a[order[2] - 1]),
                m);
            double middle = a[order[1] - 1];
            if (std::fabs(proper ? std::sin(middle) : std::cos(middle)) < 0.05)
                continue;
            KtGetDecomposedRotationMatrix(&found, order, m);
            ASSERT_MATRIX_NEAR(m, compose(found, order));
            for (int axis = 0; axis < 3 && !proper; ++axis)
                ASSERT_NEAR(a[axis], found[axis], 1e-3f);
        }
        stretched.findAngles(&found, order);
        for (float a : found)
            EXPECT_TRUE(std::isfinite(a));
        // In gimbal lock one outer angle takes the whole turn.
        for (float middle : {proper ? 0.0f : kQuarter,
                             proper ? static_cast<float>(kPi) : -kQuarter})
        {
            Kt3X3FloatMat m = threeTurns(order, 0.9f, middle, -0.2f);
            KtGetDecomposedRotationMatrix(&found, order, m);
            EXPECT_TRUE(found[order[0] - 1] == 0.0f || found[last - 1] == 0.0f)
                << middle;
            EXPECT_MATRIX_NEAR(m,
                               threeTurns(order,
                                          found[order[0] - 1],
                                          found[order[1] - 1],
                                          found[last - 1]));
        }
    }
}

TEST(KtGetDecomposedRotationMatrix, CompletesOrdersGivenWithFewerAxes)
{
    // Given, then completed; 0 0 0: left incomplete, angles (0, 0, 0).
    // clang-format off
    const int cases[][2][3] = {
        {{3, 0, 0}, {3, 1, 2}}, {{1, 0, 0}, {0, 0, 0}}, {{2, 1, 0}, {2, 1, 3}},
        {{3, 2, 0}, {0, 0, 0}}, {{1, 1, 2}, {0, 0, 0}}, {{4, 1, 2}, {0, 0, 0}}};
    // clang-format on
    Kt3X3FloatMat m = compose({0.3f, -0.5f, 0.9f}, {3, 1, 2});
    for (const auto& c : cases)
    {
        float expected[3] = {0.0f, 0.0f, 0.0f};
        if (c[1][0] != 0)
            KtGetDecomposedRotationMatrix(&expected, c[1], m);
        float found[3] = {9.0f, 9.0f, 9.0f};
        KtGetDecomposedRotationMatrix(&found, c[0], m);
        for (int axis = 0; axis < 3; ++axis)
            EXPECT_EQ(expected[axis], found[axis])
                << c[0][0] << c[0][1] << c[0][2] << " axis " << axis;
    }
}

// Only the rotation block of a frame counts. With the third axis inferred,
// an angle beyond a quarter turn on it flips the triple; within a quarter
// turn it does not.
TEST(KtGetDecomposedRotationMatrix, InferredAxisBeyondAQuarterTurnFlips)
{
    const int full[3] = {2, 3, 1};
    KtCoordSystem frame;
    frame.setRotationMatrix(compose({2.5f, 0.4f, -0.3f}, full));
    frame.setTranslationVector(KtPoint(5.0f, 6.0f, 7.0f));
    float found[3];
    frame.findAngles(&found, {2, 3, 0});
    EXPECT_FLOAT_EQ(static_cast<float>(2.5 + kPi), found[0]); // inferred
    EXPECT_FLOAT_EQ(static_cast<float>(0.4 + kPi), found[1]); // first
    EXPECT_FLOAT_EQ(static_cast<float>(kPi + 0.3), found[2]); // middle
    EXPECT_MATRIX_NEAR(compose({2.5f, 0.4f, -0.3f}, full),
                       compose(found, full));
    KtGetDecomposedRotationMatrix(
        &found, {2, 3, 0}, compose({1.5f, 0.4f, -0.3f}, full));
    EXPECT_FLOAT_EQ(1.5f, found[0]);
}

// Results are taken in place, over the candidate.
TEST(KtGetClosestAngles, PicksTheNearerTripleAfterWrapping)
{
    const float p = static_cast<float>(kPi - 0.1);
    const float q = kQuarter;
    const float t = static_cast<float>(4 * kPi);
    // clang-format off
    const struct { float ref[3]; float cand[3]; int order[3]; float expected[3]; } cases[] = {
        // A costs 3 (pi - 0.1)^2, B = (-0.1, 0.1, -0.1) only 0.03.
        {{0, 0, 0}, {p, p, p}, {1, 2, 3}, {-0.1f, 0.1f, -0.1f}},
        // B = (-q, q, -q) is just as far: a tie keeps the candidate.
        {{0, 0, 0}, {q, q, q}, {1, 2, 3}, {q, q, q}},
        // Two turns away, wrapped back component by component.
        {{0.2f, -0.3f, 0.1f}, {0.2f + t, -0.3f - t, 0.1f + t}, {1, 2, 3}, {0.2f, -0.3f, 0.1f}},
        // An order that is not 1, 2, 3 once each: the candidate, unchanged.
        {{0, 0, 0}, {7, 8, 9}, {1, 2, 1}, {7, 8, 9}}};
    // clang-format on
    for (const auto& c : cases)
    {
        float out[3] = {c.cand[0], c.cand[1], c.cand[2]};
        KtGetClosestAngles(&out, c.ref, out, c.order);
        for (int axis = 0; axis < 3; ++axis)
            EXPECT_NEAR(c.expected[axis], out[axis], 1e-5f)
                << c.order[0] << c.order[1] << c.order[2] << " axis " << axis;
    }
}

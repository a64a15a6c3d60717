// Double-precision rotations: the turning sense and the composition order,
// decomposition round trips for every order (random, whole quarter turns,
// next to the lock), and the choice of the nearest equivalent triple.
#include <random>

#include <gtest/gtest.h>

#include "geometry/KtAngles.h"
#include "geometry/KtEuler3d.h"
#include "support/geometry3d_helpers.h"

namespace
{

constexpr double kPi = kKtPi;
constexpr double kQuarter = kPi / 2;
constexpr int kOrders[6][3] = {
    {1, 2, 3}, {2, 3, 1}, {3, 1, 2}, {1, 3, 2}, {2, 1, 3}, {3, 2, 1}};
const KtVec3d kX(1, 0, 0), kY(0, 1, 0), kZ(0, 0, 1);
// A few dozen double operations on values near 1 stay within 1e-15 or so;
// a wrong sign, element or angle is off by far more.
constexpr double kTolerance = 1e-12;

} // namespace

// Right-handed quarter turns: about X y goes to z, about Y z to x, about Z x
// to y. With X then Y, y goes to z then x; with Y then X, y stays, then z.
TEST(KtComposeRotation3d, TurnsAboutTheOrdersFirstAxisFirst)
{
    EXPECT_NEAR3D(kZ, KtAxisRotation3d(1, kQuarter) * kY, kTolerance);
    EXPECT_NEAR3D(kX, KtAxisRotation3d(2, kQuarter) * kZ, kTolerance);
    EXPECT_NEAR3D(kY, KtAxisRotation3d(3, kQuarter) * kX, kTolerance);
    EXPECT_NEAR3D(KtMat3d(), KtAxisRotation3d(0, 1.0), 0.0);
    // A skeleton without an axis word has the order (0, 0, 0).
    EXPECT_NEAR3D(KtMat3d(), KtComposeRotation3d(kX, {0, 0, 0}), 0.0);
    EXPECT_NEAR3D(KtAxisRotation3d(1, 1.0),
                  KtComposeRotation3d(kX, {0, 1, 4}),
                  kTolerance);
    const KtVec3d xy(kQuarter, kQuarter, 0);
    EXPECT_NEAR3D(kX, KtComposeRotation3d(xy, {1, 2, 3}) * kY, kTolerance);
    EXPECT_NEAR3D(kZ, KtComposeRotation3d(xy, {2, 1, 3}) * kY, kTolerance);
}

// Away from the lock (middle angle within 0.49 of a half turn) the very
// angles come back. At and next to it, or with a half-turn middle angle,
// other angles may come back, but they must rebuild the rotation.
TEST(KtDecomposeRotation3d, RoundTripsInEveryOrder)
{
    std::mt19937 random(1234);
    std::uniform_real_distribution<double> angle(-kPi, kPi);
    const double steps[] = {
        -kPi, -kQuarter, 0, kQuarter, kPi, kQuarter - 1e-9, 1e-7 - kQuarter};
    for (const auto& order : kOrders)
    {
        for (int n = 0; n < 1300; ++n)
        {
            KtVec3d angles(angle(random), angle(random), angle(random));
            angles[order[1] - 1] *= 0.49;
            KtMat3d r = KtComposeRotation3d(angles, order);
            ASSERT_NEAR3D(angles, KtDecomposeRotation3d(r, order), kTolerance);
        }
        for (double a : steps)
            for (double b : steps)
                for (double c : steps)
                {
                    KtMat3d r = KtComposeRotation3d({a, b, c}, order);
                    KtVec3d found = KtDecomposeRotation3d(r, order);
                    ASSERT_NEAR3D(
                        r, KtComposeRotation3d(found, order), kTolerance);
                }
    }
    // An exact lock written with negative zeros: the first angle is 0.
    const KtMat3d lockY({{0, 0, 1}, {0, 1, 0}, {-1, -0.0, -0.0}});
    EXPECT_NEAR3D(KtVec3d(0, kQuarter, 0),
                  KtDecomposeRotation3d(lockY, kOrders[0]),
                  kTolerance);
    EXPECT_NEAR3D(KtVec3d(), KtDecomposeRotation3d(lockY, {1, 1, 2}), 0.0);
}

// The other triple of (a, b, c) in order X, Y, Z is (a + pi, pi - b, c + pi);
// in order Z, X, Y the middle axis is X.
TEST(KtClosestAngles3d, PicksTheNearestEquivalentTriple)
{
    const double n = kPi - 0.1;
    struct Case
    {
        KtVec3d angles, previous, expected;
        int order[3];
    } const cases[] = {
        {{0.1, 0.2, 0.3}, {0.1, 0.2, 0.3}, {0.1, 0.2, 0.3}, {1, 2, 3}},
        {{-3.1, 0.2, 0}, {3.1, 0.2, 0}, {2 * kPi - 3.1, 0.2, 0}, {1, 2, 3}},
        {{0.1 + 4 * kPi, 0.2 - 2 * kPi, 0.3}, {}, {0.1, 0.2, 0.3}, {1, 2, 3}},
        {{n, n, n}, {}, {-0.1, 0.1, -0.1}, {1, 2, 3}},
        {{n, n, n}, {}, {0.1, -0.1, -0.1}, {3, 1, 2}},
        {{n, n, n}, {}, {n, n, n}, {1, 1, 2}},
    };
    for (const Case& c : cases)
    {
        KtVec3d found = KtClosestAngles3d(c.angles, c.previous, c.order);
        EXPECT_NEAR3D(c.expected, found, kTolerance);
        EXPECT_NEAR3D(KtComposeRotation3d(c.angles, c.order),
                      KtComposeRotation3d(found, c.order),
                      kTolerance);
    }
}

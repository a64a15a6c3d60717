// Double-precision rotations. Composition and decomposition are the rig's:
// the rig tests pose its joints with motbake's channels and compare them
// with the standard pose in every frame. Here: what the rig never passes
// (an unknown axis, an order without three axes, an exact lock) and the
// choice of the nearest equivalent triple, which the programs never call.
#include <gtest/gtest.h>

#include "geometry/KtAngles.h"
#include "geometry/KtEuler3d.h"
#include "support/geometry3d_helpers.h"

namespace
{

constexpr double kPi = kKtPi;
// A few dozen double operations on values near 1 stay within 1e-15 or so;
// a wrong sign, element or angle is off by far more.
constexpr double kTolerance = 1e-12;

} // namespace

// An unknown axis turns nothing. An order that does not name three axes
// decomposes to zeros; at an exact lock written with negative zeros the
// first angle is 0.
TEST(KtDecomposeRotation3d, UnknownAxesOrdersAndAnExactLock)
{
    EXPECT_NEAR3D(KtMat3d(), KtAxisRotation3d(0, 1.0), 0.0);
    // A skeleton without an axis word has the order (0, 0, 0).
    EXPECT_NEAR3D(
        KtMat3d(), KtComposeRotation3d(KtVec3d(1, 0, 0), {0, 0, 0}), 0.0);
    const KtMat3d lockY({{0, 0, 1}, {0, 1, 0}, {-1, -0.0, -0.0}});
    EXPECT_NEAR3D(KtVec3d(0, kPi / 2, 0),
                  KtDecomposeRotation3d(lockY, {1, 2, 3}),
                  kTolerance);
    const KtMat3d turned = KtComposeRotation3d({0.3, 0.4, 0.5}, {1, 2, 3});
    EXPECT_NEAR3D(KtVec3d(), KtDecomposeRotation3d(turned, {1, 1, 2}), 0.0);
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

// Double-precision rotations: the turning sense and the composition order,
// decomposition round trips for every order (random, whole quarter turns,
// next to the lock), and the choice of the nearest equivalent triple.
#include <random>

#include <gtest/gtest.h>

#include "geometry/KtEuler3d.h"
#include "support/geometry3d_helpers.h"

namespace
{

constexpr double kPi = 3.141592653589793;
constexpr double kQuarter = kPi / 2;
constexpr int kOrders[6][3] = {
    {1, 2, 3}, {2, 3, 1}, {3, 1, 2}, {1, 3, 2}, {2, 1, 3}, {3, 2, 1}};
const KtVec3d kX(1, 0, 0), kY(0, 1, 0), kZ(0, 0, 1);

} // namespace

// Right-handed quarter turns: about X y goes to z, about Y z to x, about Z x
// to y. With X then Y, y goes to z then x; with Y then X, y stays, then z.
TEST(KtComposeRotation3d, TurnsAboutTheOrdersFirstAxisFirst)
{
    struct Case
    {
        KtVec3d angles;
        int order[3];
        KtVec3d from, to;
    } const cases[] = {{{kQuarter, 0, 0}, {1, 2, 3}, kY, kZ},
                       {{0, kQuarter, 0}, {3, 1, 2}, kZ, kX},
                       {{0, 0, kQuarter}, {2, 3, 1}, kX, kY},
                       {{kQuarter, kQuarter, 0}, {1, 2, 3}, kY, kX},
                       {{kQuarter, kQuarter, 0}, {2, 1, 3}, kY, kZ}};
    for (const Case& c : cases)
        EXPECT_VEC3D_NEAR(c.to,
                          KtComposeRotation3d(c.angles, c.order) * c.from);
}

// Away from the lock the angles are unique: the very angles come back.
TEST(KtDecomposeRotation3d, GivesRandomAnglesBackInEveryOrder)
{
    std::mt19937 random(1234);
    std::uniform_real_distribution<double> outer(-kPi, kPi);
    std::uniform_real_distribution<double> middle(-0.99 * kQuarter,
                                                  0.99 * kQuarter);
    for (const auto& order : kOrders)
        for (int n = 0; n < 1300; ++n)
        {
            KtVec3d angles;
            for (int place = 0; place < 3; ++place)
                angles[order[place] - 1] =
                    place == 1 ? middle(random) : outer(random);
            KtMat3d r = KtComposeRotation3d(angles, order);
            ASSERT_VEC3D_NEAR(angles, KtDecomposeRotation3d(r, order))
                << "order " << order[0] << order[1] << order[2];
        }
}

// At and next to the lock (and at a half-turn middle angle) other angles
// may come back, but they must rebuild the rotation.
TEST(KtDecomposeRotation3d, RebuildsQuarterTurnsAndTurnsNextToTheLock)
{
    const double steps[] = {
        -kPi, -kQuarter, 0, kQuarter, kPi, kQuarter - 1e-9, 1e-7 - kQuarter};
    for (const auto& order : kOrders)
        for (double a : steps)
            for (double b : steps)
                for (double c : steps)
                {
                    KtMat3d r = KtComposeRotation3d({a, b, c}, order);
                    KtVec3d found = KtDecomposeRotation3d(r, order);
                    ASSERT_MAT3D_NEAR(r, KtComposeRotation3d(found, order))
                        << "order " << order[0] << order[1] << order[2];
                }
    // An exact lock, written with negative zeros: the first angle is 0.
    const double lockY[3][3] = {{0, 0, 1}, {0, 1, 0}, {-1, -0.0, -0.0}};
    EXPECT_VEC3D_NEAR(KtVec3d(0, kQuarter, 0),
                      KtDecomposeRotation3d(KtMat3d(lockY), kOrders[0]));
    // Degenerate orders.
    EXPECT_VEC3D_NEAR(KtVec3d(),
                      KtDecomposeRotation3d(KtMat3d(lockY), {1, 1, 2}));
    EXPECT_MAT3D_NEAR(KtMat3d(), KtAxisRotation3d(0, 1.0));
}

// The other triple of (a, b, c) in order X, Y, Z is (a + pi, pi - b, c + pi);
// in order Z, X, Y the middle axis is X.
TEST(KtClosestAngles3d, PicksTheNearestEquivalentTriple)
{
    const double d = kPi / 180;
    const double n = kPi - 0.1;
    struct Case
    {
        KtVec3d angles, previous, expected;
        int order[3];
    } const cases[] = {
        {{0.1, 0.2, 0.3}, {0.1, 0.2, 0.3}, {0.1, 0.2, 0.3}, {1, 2, 3}},
        {{-179 * d, 10 * d, 0},
         {179 * d, 10 * d, 0},
         {181 * d, 10 * d, 0},
         {1, 2, 3}},
        {{0.1 + 4 * kPi, 0.2 - 2 * kPi, 0.3}, {}, {0.1, 0.2, 0.3}, {1, 2, 3}},
        {{n, n, n}, {}, {-0.1, 0.1, -0.1}, {1, 2, 3}},
        {{n, n, n}, {}, {0.1, -0.1, -0.1}, {3, 1, 2}},
        {{n, n, n}, {}, {n, n, n}, {1, 1, 2}},
    };
    for (const Case& c : cases)
    {
        KtVec3d found = KtClosestAngles3d(c.angles, c.previous, c.order);
        EXPECT_VEC3D_NEAR(c.expected, found);
        EXPECT_MAT3D_NEAR(KtComposeRotation3d(c.angles, c.order),
                          KtComposeRotation3d(found, c.order));
    }
}

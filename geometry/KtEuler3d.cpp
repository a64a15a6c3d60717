// Rotations in double precision: elementary rotations, composition,
// decomposition and the closest equivalent triple.
#include "geometry/KtEuler3d.h"

#include <cmath>

#include "geometry/KtAngles.h"

namespace
{

constexpr double kTwoPi = 2.0 * kKtPi;
constexpr double kQuarterTurnSquared = kKtPi * kKtPi / 4.0;

bool isAxisCode(int code)
{
    return code >= 1 && code <= 3;
}

bool namesThreeAxes(const int (&order)[3])
{
    return isAxisCode(order[0]) && isAxisCode(order[1]) &&
           isAxisCode(order[2]) && order[0] != order[1] &&
           order[1] != order[2] && order[0] != order[2];
}

// X -> Y -> Z -> X; the other orders mirror the signs of the terms.
bool isCyclic(const int (&order)[3])
{
    return order[1] == order[0] % 3 + 1;
}

// The angle moved by whole turns to within half a turn of near. A curve's
// angles are nearly always within one turn of it: those are kept as they
// are, or moved by one turn, sparing the slow remainder.
double nearestTurn(double angle, double near)
{
    double difference = angle - near;
    if (std::fabs(difference) <= kKtPi)
        return angle;
    if (difference > kKtPi && difference <= 3 * kKtPi)
        return angle - kTwoPi;
    if (difference < -kKtPi && difference >= -3 * kKtPi)
        return angle + kTwoPi;
    return near + std::remainder(difference, kTwoPi);
}

double squaredDistance(const KtVec3d& a, const KtVec3d& b)
{
    KtVec3d d = a - b;
    return d[0] * d[0] + d[1] * d[1] + d[2] * d[2];
}

// The rotation about the axis whose angle has cosine c and sine s. It turns
// p, the axis after this one cyclically, toward q, the one after that.
KtMat3d axisRotation(int axis, double c, double s)
{
    KtMat3d r;
    const int p = axis % 3;
    const int q = (axis + 1) % 3;
    r[p][p] = c;
    r[p][q] = -s;
    r[q][p] = s;
    r[q][q] = c;
    return r;
}

} // namespace

KtMat3d KtAxisRotation3d(int axis, double angle)
{
    if (!isAxisCode(axis))
        return KtMat3d();
    return axisRotation(axis, std::cos(angle), std::sin(angle));
}

void KtTurnAfter3d(KtMat3d& m, int axis, double angle)
{
    if (!isAxisCode(axis))
        return;
    const int p = axis % 3;
    const int q = (axis + 1) % 3;
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    for (int column = 0; column < 3; ++column)
    {
        const double mp = m[p][column];
        const double mq = m[q][column];
        m[p][column] = c * mp - s * mq;
        m[q][column] = s * mp + c * mq;
    }
}

KtMat3d KtComposeRotation3d(const KtVec3d& angles, const int (&order)[3])
{
    KtMat3d r;
    for (int code : order)
        if (isAxisCode(code))
            KtTurnAfter3d(r, code, angles[code - 1]);
    return r;
}

// With r = Rk(c) . Rj(b) . Ri(a) (i first), row k of r is
// (-e sin b, e cos b sin a, cos b cos a) at columns (i, j, k), e being 1 for
// a cyclic order and -1 for the others; a comes from it with the common
// factor cos b cancelling. Taking Ri(a) off leaves Rk(c) . Rj(b), whose
// row k gives b and whose column j gives c, both from terms of magnitude
// up to 1 however close b is to a quarter turn.
KtVec3d KtDecomposeRotation3d(const KtMat3d& r, const int (&order)[3])
{
    KtVec3d angles;
    if (!namesThreeAxes(order))
        return angles;
    const int i = order[0] - 1;
    const int j = order[1] - 1;
    const int k = order[2] - 1;
    const double e = isCyclic(order) ? 1.0 : -1.0;
    // Adding zero turns a signed zero of an exact lock into +0, so that the
    // first angle there is 0 rather than a half turn.
    const double y = e * r[k][j] + 0.0;
    const double x = r[k][k] + 0.0;
    const double a = std::atan2(y, x);
    // n = r . Ri(-a), of which four elements are needed; a's cosine and
    // sine are those of the arc tangent's own terms.
    const double h = std::sqrt(x * x + y * y);
    const KtMat3d turn =
        h > 0.0 ? axisRotation(order[0], x / h, -y / h) : KtMat3d();
    auto n = [&](int row, int column)
    {
        return r[row][0] * turn[0][column] + r[row][1] * turn[1][column] +
               r[row][2] * turn[2][column];
    };
    angles[i] = a;
    angles[j] = std::atan2(-e * n(k, i), n(k, k));
    angles[k] = std::atan2(-e * n(i, j), n(j, j));
    return angles;
}

KtVec3d KtClosestAngles3d(const KtVec3d& angles,
                          const KtVec3d& previous,
                          const int (&order)[3])
{
    KtVec3d same;
    for (int axis = 0; axis < 3; ++axis)
        same[axis] = nearestTurn(angles[axis], previous[axis]);
    // Within a quarter turn of previous, as a curve nearly always is, the
    // same triple wins: the other's first and last angles are then each at
    // least a quarter turn away.
    const double sameDistance = squaredDistance(same, previous);
    if (sameDistance <= kQuarterTurnSquared || !namesThreeAxes(order))
        return same;
    const int i = order[0] - 1;
    const int j = order[1] - 1;
    const int k = order[2] - 1;
    KtVec3d other;
    other[i] = nearestTurn(angles[i] + kKtPi, previous[i]);
    other[j] = nearestTurn(kKtPi - angles[j], previous[j]);
    other[k] = nearestTurn(angles[k] + kKtPi, previous[k]);
    return squaredDistance(other, previous) < sameDistance ? other : same;
}

// Euler angles: composition, decomposition, the closest of two equivalent
// triples and the one-angle step.
#include "geometry/KtEuler.h"

#include <cmath>

#include "geometry/KtAngles.h"
#include "geometry/KtPoint.h"

namespace
{

constexpr double kTwoPi = 2.0 * kKtPi;
constexpr double kQuarterTurn = 1.5707963267948966;
// Below this the middle angle leaves the outer two sharing one turn.
constexpr double kGimbalLimit = 1e-6;
// Wrapping steps one turn at a time, as users have always seen it. Beyond
// this many turns (or for an infinite angle) the distance is first reduced in
// one step, and a step that no longer changes a huge float ends the wrapping.
constexpr double kStepwiseTurns = 1024.0;

bool isAxisCode(int code)
{
    return code >= 1 && code <= 3;
}

double clampUnit(double v)
{
    if (v > 1.0)
        return 1.0;
    if (v < -1.0)
        return -1.0;
    return v;
}

// The elementary row-vector rotation about an axis, every element written.
void buildAxisRotation(Kt3X3FloatMat* r, int code, float angle)
{
    float c = static_cast<float>(std::cos(static_cast<double>(angle)));
    float s = static_cast<float>(std::sin(static_cast<double>(angle)));
    *r = 1.0f;
    Kt3X3FloatMat& m = *r;
    switch (code)
    {
    case 1:
        m[1][1] = c, m[1][2] = s, m[2][1] = -s, m[2][2] = c;
        break;
    case 2:
        m[0][0] = c, m[0][2] = -s, m[2][0] = s, m[2][2] = c;
        break;
    default:
        m[0][0] = c, m[0][1] = s, m[1][0] = -s, m[1][1] = c;
        break;
    }
}

Kt3X3FloatMat composeRotation(const float (&angles)[3],
                              const KtArray<int>& order)
{
    // An unknown code builds nothing for its place: the accumulator keeps
    // its start (the identity) and the temporary keeps what it held last.
    Kt3X3FloatMat accumulator;
    Kt3X3FloatMat temporary;
    for (int p = 0; p < 3; ++p)
    {
        int code = p < order.count() ? order[p] : 0;
        Kt3X3FloatMat& target = p == 0 ? accumulator : temporary;
        if (isAxisCode(code))
            buildAxisRotation(&target, code, angles[code - 1]);
        if (p > 0)
            Kt3X3FloatMat::_multiply(accumulator.elements(),
                                     temporary.elements(),
                                     accumulator.elements());
    }
    return accumulator;
}

// The axis left over by a pair, for the pairs that have always been
// completed; Z-Y and X-Z are not, and give 0.
int thirdAxisOfPair(int i, int j)
{
    if ((i == 1 && j == 2) || (i == 2 && j == 1))
        return 3;
    if (i == 2 && j == 3)
        return 1;
    if (i == 3 && j == 1)
        return 2;
    return 0;
}

bool isKnownOrder(int i, int j, int k)
{
    if (!isAxisCode(i) || !isAxisCode(j) || !isAxisCode(k) || i == j)
        return false;
    return k == i || k != j;
}

float atan2Of(double sine, double cosine)
{
    float angle = 0.0f;
    KtFindA(&angle, static_cast<float>(sine), static_cast<float>(cosine));
    return angle;
}

// The angles of a rotation block in the order's terms: about the first,
// middle and last axis.
struct Decomposition
{
    float first = 0.0f;
    float middle = 0.0f;
    float last = 0.0f;
};

// The formulas are those of the orders that are not cyclic (X-Z-Y, Y-X-Z,
// Z-Y-X and their proper Euler kin). A cyclic order is the mirror image of
// such an order with every angle negated; so for it the elements that feed
// the numerators of the outer angles are negated (flip = -1) before the
// angles are taken, and the middle angle is negated after.
class Decomposer
{
public:
    Decomposer(const Kt3X3FloatMat& m, int i, int j, int k)
        : _m(m)
        , _i(i)
        , _j(j)
        , _k(k)
        , _flip(j == i + 1 || j + 2 == i ? -1.0 : 1.0)
    {
    }

    // In gimbal lock only the sum or difference of the outer angles is left;
    // the one that cannot be recovered is 0: the first when the middle angle
    // (before the cyclic negation) is negative, else the last.
    Decomposition threeAxes() const
    {
        Decomposition d;
        double middle = -std::asin(clampUnit(_e(_k, _i)));
        if (std::fabs(std::cos(middle)) > kGimbalLimit)
        {
            d.first = atan2Of(_flip * _e(_k, _j), _e(_k, _k));
            d.last = atan2Of(_flip * _e(_j, _i), _e(_i, _i));
        }
        else if (middle < 0.0)
            d.last = atan2Of(-_flip * _e(_i, _j), _e(_j, _j));
        else
            d.first = atan2Of(_flip * _e(_i, _j), _e(_j, _j));
        d.middle = static_cast<float>(_flip < 0.0 ? -middle : middle);
        return d;
    }

    // First and last axis are both i; the third axis o takes part. With the
    // middle angle at 0 the outer turns add up and the first takes them; at
    // a half turn they subtract and the last takes them.
    Decomposition properEuler() const
    {
        int o = 6 - _j - _k;
        Decomposition d;
        double middle = std::acos(clampUnit(_e(_i, _i)));
        double sine = std::sin(middle);
        if (std::fabs(sine) > kGimbalLimit)
        {
            d.first = atan2Of(_flip * _e(_i, _j) / sine, _e(_i, o) / sine);
            d.last = atan2Of(_flip * _e(_j, _i) / sine, -_e(o, _i) / sine);
        }
        else if (std::cos(middle) > 0.0)
            d.first = atan2Of(_flip * _e(o, _j), _e(_j, _j));
        else
            d.last = atan2Of(_flip * _e(o, _j), _e(_j, _j));
        d.middle = static_cast<float>(_flip < 0.0 ? -middle : middle);
        return d;
    }

private:
    double _e(int row, int col) const { return _m[row - 1][col - 1]; }

    const Kt3X3FloatMat& _m;
    int _i;
    int _j;
    int _k;
    double _flip;
};

// Brings an angle to within pi of the reference, one turn at a time.
float wrapNear(float angle, float ref)
{
    double offset = static_cast<double>(angle) - ref;
    if (std::fabs(offset) > kStepwiseTurns * kTwoPi)
        angle = static_cast<float>(ref + std::fmod(offset, kTwoPi));
    while (angle > ref + kKtPi)
    {
        float next = static_cast<float>(angle - kTwoPi);
        if (!(next < angle))
            break;
        angle = next;
    }
    while (angle < ref - kKtPi)
    {
        float next = static_cast<float>(angle + kTwoPi);
        if (!(next > angle))
            break;
        angle = next;
    }
    return angle;
}

// Wraps the triple toward the reference and returns its distance: squares
// taken in double, summed in float.
float wrapTriple(float (&triple)[3], const float (&ref)[3])
{
    float cost = 0.0f;
    for (int k = 0; k < 3; ++k)
    {
        triple[k] = wrapNear(triple[k], ref[k]);
        double difference = static_cast<double>(triple[k]) - ref[k];
        cost += static_cast<float>(std::pow(difference, 2.0));
    }
    return cost;
}

bool isPermutation(const int (&order)[3])
{
    for (int code : order)
        if (!isAxisCode(code))
            return false;
    return order[0] != order[1] && order[1] != order[2] && order[0] != order[2];
}

bool copyTriple(float (*out)[3], const KtArray<float>& values)
{
    if (values.count() < 3)
        return false;
    for (int k = 0; k < 3; ++k)
        (*out)[k] = values[k];
    return true;
}

void closestOfArrays(KtArray<float>* out,
                     const KtArray<float>& ref,
                     const KtArray<float>& cand,
                     const int (&order)[3])
{
    float r[3];
    float c[3];
    if (!copyTriple(&r, ref) || !copyTriple(&c, cand))
    {
        *out = cand;
        return;
    }
    float result[3];
    KtGetClosestAngles(&result, r, c, order);
    if (out->count() < 3)
        out->_resize(3);
    for (int k = 0; k < 3; ++k)
        (*out)[k] = result[k];
}

} // namespace

Kt3X3FloatMat KtComposeRotationMatrix(const KtArray<float>& angles,
                                      const KtArray<int>& order)
{
    float byAxis[3] = {0.0f, 0.0f, 0.0f};
    for (int k = 0; k < 3 && k < angles.count(); ++k)
        byAxis[k] = angles[k];
    return composeRotation(byAxis, order);
}

Kt3X3FloatMat KtComposeRotationMatrix(const KtPoint& angles,
                                      const KtArray<int>& order)
{
    const float byAxis[3] = {angles.x, angles.y, angles.z};
    return composeRotation(byAxis, order);
}

void KtGetDecomposedRotationMatrix(float (*angles)[3],
                                   const int (&order)[3],
                                   const Kt3X3FloatMat& m)
{
    float(&out)[3] = *angles;
    out[0] = out[1] = out[2] = 0.0f;

    // The completion arithmetic runs on the codes themselves, as it always
    // has; orders it cannot complete give (0, 0, 0).
    int i = order[0];
    int j = order[1];
    int k = order[2];
    if (j == 0)
    {
        j = (i + 1) % 3;
        k = (j + 1) % 3;
    }
    else if (k == 0)
        k = thirdAxisOfPair(i, j);
    if (!isKnownOrder(i, j, k))
        return;

    Decomposer decomposer(m, i, j, k);
    if (k == i)
    {
        Decomposition d = decomposer.properEuler();
        out[i - 1] = d.first;
        out[j - 1] = d.middle;
        out[6 - i - j - 1] = d.last;
        return;
    }
    Decomposition d = decomposer.threeAxes();
    out[k - 1] = d.last;
    out[j - 1] = d.middle;
    out[i - 1] = d.first;

    bool inferredThird = order[1] != 0 && order[2] == 0;
    if (inferredThird && std::fabs(out[k - 1]) > kQuarterTurn)
    {
        out[i - 1] = static_cast<float>(out[i - 1] + kKtPi);
        out[j - 1] = static_cast<float>(kKtPi - out[j - 1]);
        out[k - 1] = static_cast<float>(out[k - 1] + kKtPi);
    }
}

void KtGetClosestAngles(float (*out)[3],
                        const float (&ref)[3],
                        const float (&cand)[3],
                        const int (&order)[3])
{
    if (!isPermutation(order))
    {
        float copy[3] = {cand[0], cand[1], cand[2]};
        for (int k = 0; k < 3; ++k)
            (*out)[k] = copy[k];
        return;
    }
    float r[3];
    float a[3];
    for (int k = 0; k < 3; ++k)
    {
        r[k] = ref[order[k] - 1];
        a[k] = cand[order[k] - 1];
    }
    // The other triple of the same rotation, from the unwrapped candidate.
    float b[3] = {static_cast<float>(a[0] + kKtPi),
                  static_cast<float>(kKtPi - a[1]),
                  static_cast<float>(a[2] + kKtPi)};
    float costA = wrapTriple(a, r);
    float costB = wrapTriple(b, r);
    const float(&chosen)[3] = costA <= costB ? a : b;
    for (int k = 0; k < 3; ++k)
        (*out)[order[k] - 1] = chosen[k];
}

void KtGetClosestAngles(KtArray<float>* out,
                        const KtArray<float>& ref,
                        const KtArray<float>& cand)
{
    closestOfArrays(out, ref, cand, {1, 2, 3});
}

void KtGetClosestAngles(KtArray<float>* out,
                        const KtArray<float>& ref,
                        const KtArray<float>& cand,
                        const KtArray<int>& order)
{
    if (order.count() < 3)
        *out = cand;
    else
        closestOfArrays(out, ref, cand, {order[0], order[1], order[2]});
}

void KtFindA(float* angle, float sine, float cosine)
{
    // atan2 of two zeros would give 0 or pi by their signs alone; there is
    // no direction at all, so 0.
    if (sine == 0.0f && cosine == 0.0f)
    {
        *angle = 0.0f;
        return;
    }
    *angle = static_cast<float>(
        std::atan2(static_cast<double>(sine), static_cast<double>(cosine)));
}

// Cross and dot products, normals, perpendiculars and re-orthonormalisation.
#include "geometry/KtVectorAlgo.h"

#include <cmath>

#include "geometry/Kt3X3FloatMat.h"
#include "geometry/KtPoint.h"

namespace
{

// Binomial series of (1 + x)^(-1/2): c0 = 1, then c1..c9. Exactly the nine
// terms after c0 are summed, the cut-off this routine has always had.
// Every coefficient is a short binary fraction, exact in a float.
constexpr float kInvSqrtSeries[10] = {1.0f,
                                      -0.5f,
                                      0.375f,
                                      -0.3125f,
                                      0.2734375f,
                                      -0.24609375f,
                                      0.2255859375f,
                                      -0.20947265625f,
                                      0.196380615234375f,
                                      -0.1854705810546875f};

KtPoint difference(const KtPoint& a, const KtPoint& b)
{
    return KtPoint(a.x - b.x, a.y - b.y, a.z - b.z);
}

// The unit vector along v, or (0, 0, 0) when v has no length.
KtPoint normalised(const KtPoint& v)
{
    float length = sqrtf(KtDotProduct(v, v));
    if (!(length > 0.0f))
        return KtPoint();
    return KtPoint(v.x / length, v.y / length, v.z / length);
}

} // namespace

void KtGetCrossProduct(KtPoint* out, const KtPoint& a, const KtPoint& b)
{
    *out = KtPoint(
        a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x);
}

float KtDotProduct(const KtPoint& a, const KtPoint& b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

KtPoint
KtTriangleNormal(const KtPoint& p0, const KtPoint& p1, const KtPoint& p2)
{
    KtPoint normal;
    KtGetCrossProduct(&normal, difference(p1, p0), difference(p2, p0));
    return normalised(normal);
}

void KtArbitraryPerpendicular(KtPoint* out, const KtPoint& v)
{
    float ax = std::fabs(v.x);
    float ay = std::fabs(v.y);
    float az = std::fabs(v.z);
    KtPoint axis(0.0f, 0.0f, 1.0f);
    if (ax <= ay && ax <= az)
        axis = KtPoint(1.0f, 0.0f, 0.0f);
    else if (ay <= az)
        axis = KtPoint(0.0f, 1.0f, 0.0f);
    KtPoint perpendicular;
    KtGetCrossProduct(&perpendicular, v, axis);
    *out = normalised(perpendicular);
}

void KtReorthogonalize(Kt3X3FloatMat* m)
{
    const Kt3X3FloatMat& identity = Kt3X3FloatMat::MultiplicativeIdentity;
    Kt3X3FloatMat x;
    Kt3X3FloatMat::_transposeMatrix(x.elements(), m->elements());
    Kt3X3FloatMat::_multiply(x.elements(), x.elements(), m->elements());
    Kt3X3FloatMat::_subMatrix(x.elements(), x.elements(), identity.elements());

    Kt3X3FloatMat sum = identity;
    Kt3X3FloatMat power = x;
    for (int n = 1; n <= 9; ++n)
    {
        Kt3X3FloatMat term;
        Kt3X3FloatMat::_multScalar(
            term.elements(), power.elements(), kInvSqrtSeries[n]);
        Kt3X3FloatMat::_addMatrix(
            sum.elements(), sum.elements(), term.elements());
        Kt3X3FloatMat::_multiply(
            power.elements(), power.elements(), x.elements());
    }
    Kt3X3FloatMat::_multiply(m->elements(), m->elements(), sum.elements());
}

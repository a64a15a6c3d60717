// KtPoint: matrix application, ordering and stream output.
#include "geometry/KtPoint.h"

#include <ostream>

#include "geometry/Kt3X3FloatMat.h"
#include "geometry/Kt4X4FloatMat.h"

void KtPoint::applyMatrix(const Kt3X3FloatMat& m)
{
    Kt3X3FloatMat::_preMultPoint(this, *this, m);
}

void KtPoint::applyMatrix(const Kt4X4FloatMat& m)
{
    Kt4X4FloatMat::_preMultPoint(this, *this, m);
}

bool KtPoint::operator<(const KtPoint& other) const
{
    if (x != other.x)
        return x < other.x;
    if (y != other.y)
        return y < other.y;
    return z < other.z;
}

std::ostream& operator<<(std::ostream& out, const KtPoint& p)
{
    return out << "(" << p.x << ", " << p.y << ", " << p.z << ")";
}

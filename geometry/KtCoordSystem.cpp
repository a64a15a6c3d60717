// KtCoordSystem: rotations, scales and translations before or after the
// frame's transform, and its print form.
#include "geometry/KtCoordSystem.h"

#include <cmath>
#include <ostream>

#include "geometry/KtVectorAlgo.h"

namespace
{

// The rotation by angle about a unit axis u, for row vectors:
// R[i][j] = c d(i,j) + (1 - c) u[i] u[j] + s e(i,j,k) u[k].
Kt4X4FloatMat axisRotation(const float (&axis)[3], float angle, bool* ok)
{
    Kt4X4FloatMat r;
    float length =
        sqrtf(axis[0] * axis[0] + axis[1] * axis[1] + axis[2] * axis[2]);
    *ok = length > 0.0f && std::isfinite(length);
    if (!*ok)
        return r;
    float u[3] = {axis[0] / length, axis[1] / length, axis[2] / length};
    float c = cosf(angle);
    float s = sinf(angle);
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            r[i][j] = (i == j ? c : 0.0f) + (1.0f - c) * u[i] * u[j];
    r[1][2] += s * u[0];
    r[2][1] -= s * u[0];
    r[2][0] += s * u[1];
    r[0][2] -= s * u[1];
    r[0][1] += s * u[2];
    r[1][0] -= s * u[2];
    return r;
}

} // namespace

void KtCoordSystem::preTranslate(float x, float y, float z)
{
    for (int j = 0; j < 4; ++j)
        _m[3][j] += x * _m[0][j] + y * _m[1][j] + z * _m[2][j];
}

void KtCoordSystem::preScale(float x, float y, float z)
{
    float factors[3] = {x, y, z};
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 4; ++j)
            _m[i][j] *= factors[i];
}

void KtCoordSystem::preRotateX(float a)
{
    _rotateRows(1, 2, a);
}
void KtCoordSystem::preRotateY(float a)
{
    _rotateRows(2, 0, a);
}
void KtCoordSystem::preRotateZ(float a)
{
    _rotateRows(0, 1, a);
}

void KtCoordSystem::preRotateAxis(const float (&axis)[3], float a)
{
    bool ok = false;
    Kt4X4FloatMat r = axisRotation(axis, a, &ok);
    if (ok)
        multiply(*this, r, *this);
}

void KtCoordSystem::postTranslate(float x, float y, float z)
{
    _addScaledColumn(0, x, 3);
    _addScaledColumn(1, y, 3);
    _addScaledColumn(2, z, 3);
}

void KtCoordSystem::postScale(float x, float y, float z)
{
    float factors[3] = {x, y, z};
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 3; ++j)
            _m[i][j] *= factors[j];
}

void KtCoordSystem::postRotateX(float a)
{
    _rotateColumns(1, 2, a);
}
void KtCoordSystem::postRotateY(float a)
{
    _rotateColumns(2, 0, a);
}
void KtCoordSystem::postRotateZ(float a)
{
    _rotateColumns(0, 1, a);
}

void KtCoordSystem::postRotateAxis(const float (&axis)[3], float a)
{
    bool ok = false;
    Kt4X4FloatMat r = axisRotation(axis, a, &ok);
    if (ok)
        multiply(*this, *this, r);
}

void KtCoordSystem::shiftRotationPoint(const KtPoint& p)
{
    preTranslate(-p.x, -p.y, -p.z);
    postTranslate(p.x, p.y, p.z);
}

void KtCoordSystem::reorthogonalize()
{
    Kt3X3FloatMat r;
    getRotationMatrix(&r);
    KtReorthogonalize(&r);
    setRotationMatrix(r);
}

// Rows a and b turn toward each other: new a = c a + s b, new b = c b - s a,
// each element from the two old elements of its column.
void KtCoordSystem::_rotateRows(int a, int b, float angle)
{
    float c = cosf(angle);
    float s = sinf(angle);
    for (int j = 0; j < 4; ++j)
    {
        float oldA = _m[a][j];
        float oldB = _m[b][j];
        _m[a][j] = c * oldA + s * oldB;
        _m[b][j] = c * oldB - s * oldA;
    }
}

// The column form of the same turn, for M . R: new a = c a - s b,
// new b = s a + c b.
void KtCoordSystem::_rotateColumns(int a, int b, float angle)
{
    float c = cosf(angle);
    float s = sinf(angle);
    for (int i = 0; i < 4; ++i)
    {
        float oldA = _m[i][a];
        float oldB = _m[i][b];
        _m[i][a] = c * oldA - s * oldB;
        _m[i][b] = s * oldA + c * oldB;
    }
}

void KtCoordSystem::printOn(std::ostream& out) const
{
    out << "[\n";
    for (int i = 0; i < 4; ++i)
    {
        if (i > 0)
            out << "]\n";
        out << "  [ " << _m[i][0];
        for (int j = 1; j < 4; ++j)
            out << " " << _m[i][j];
    }
    out << "]\n]";
}

std::ostream& operator<<(std::ostream& out, const KtCoordSystem& frame)
{
    frame.printOn(out);
    return out;
}

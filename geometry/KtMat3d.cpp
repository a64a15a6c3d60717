// KtVec3d and KtMat3d: the arithmetic and the stream output.
#include "geometry/KtMat3d.h"

#include <ostream>

KtVec3d operator+(const KtVec3d& a, const KtVec3d& b)
{
    return KtVec3d(a[0] + b[0], a[1] + b[1], a[2] + b[2]);
}

KtVec3d operator-(const KtVec3d& a, const KtVec3d& b)
{
    return KtVec3d(a[0] - b[0], a[1] - b[1], a[2] - b[2]);
}

KtVec3d operator*(double s, const KtVec3d& v)
{
    return KtVec3d(s * v[0], s * v[1], s * v[2]);
}

KtMat3d::KtMat3d(const KtElements& rows)
{
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            _m[i][j] = rows[i][j];
}

KtMat3d KtMat3d::transposed() const
{
    KtMat3d t;
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            t[i][j] = _m[j][i];
    return t;
}

KtMat3d operator*(const KtMat3d& a, const KtMat3d& b)
{
    KtMat3d p;
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            p[i][j] = a[i][0] * b[0][j] + a[i][1] * b[1][j] + a[i][2] * b[2][j];
    return p;
}

KtVec3d operator*(const KtMat3d& m, const KtVec3d& v)
{
    return KtVec3d(m[0][0] * v[0] + m[0][1] * v[1] + m[0][2] * v[2],
                   m[1][0] * v[0] + m[1][1] * v[1] + m[1][2] * v[2],
                   m[2][0] * v[0] + m[2][1] * v[1] + m[2][2] * v[2]);
}

std::ostream& operator<<(std::ostream& out, const KtVec3d& v)
{
    return out << '(' << v[0] << ", " << v[1] << ", " << v[2] << ')';
}

std::ostream& operator<<(std::ostream& out, const KtMat3d& m)
{
    for (int i = 0; i < 3; ++i)
        out << KtVec3d(m[i][0], m[i][1], m[i][2]) << '\n';
    return out;
}

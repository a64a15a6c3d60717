// KtVec3d and KtMat3d: construction, transposition and the stream output.
#include "geometry/KtMat3d.h"

#include <cmath>
#include <ostream>

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

bool KtIsFinite(const KtVec3d& v)
{
    return std::isfinite(v[0]) && std::isfinite(v[1]) && std::isfinite(v[2]);
}

bool KtIsFinite(const KtMat3d& m)
{
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 3; ++column)
            if (!std::isfinite(m[row][column]))
                return false;
    return true;
}

// KtVec3d and KtMat3d: double-precision 3-vectors and 3x3 matrices, for the
// standard skeleton pose and the exporters built on it.
#pragma once

#include <iosfwd>

// Column vectors: a matrix acts on a vector from the left, v' = M . v, and in
// a product A . B the right-hand factor B applies first. This is the reverse
// of the single-precision toolkit (KtPoint, Kt3X3FloatMat), whose points are
// rows: a rotation there is the transpose of the same rotation here.
// Elements are m[row][column].
class KtVec3d
{
public:
    constexpr KtVec3d() = default;
    constexpr KtVec3d(double x, double y, double z)
        : _v{x, y, z}
    {
    }

    // Coordinate by index: 0 x, 1 y, 2 z.
    double& operator[](int i) { return _v[i]; }
    constexpr double operator[](int i) const { return _v[i]; }

private:
    double _v[3] = {0.0, 0.0, 0.0};
};

// The arithmetic is inline: posing a long motion takes millions of products.
inline KtVec3d operator+(const KtVec3d& a, const KtVec3d& b)
{
    return KtVec3d(a[0] + b[0], a[1] + b[1], a[2] + b[2]);
}

inline KtVec3d operator-(const KtVec3d& a, const KtVec3d& b)
{
    return KtVec3d(a[0] - b[0], a[1] - b[1], a[2] - b[2]);
}

inline KtVec3d operator*(double s, const KtVec3d& v)
{
    return KtVec3d(s * v[0], s * v[1], s * v[2]);
}

class KtMat3d
{
public:
    using KtElements = double[3][3];

    // The identity.
    constexpr KtMat3d()
        : _m{{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}}
    {
    }
    // Row by row.
    explicit KtMat3d(const KtElements& rows);

    double (&operator[](int row))[3] { return _m[row]; }
    const double (&operator[](int row) const)[3] { return _m[row]; }

    // For a rotation, its inverse.
    KtMat3d transposed() const;

private:
    KtElements _m;
};

inline KtMat3d operator*(const KtMat3d& a, const KtMat3d& b)
{
    KtMat3d p;
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            p[i][j] = a[i][0] * b[0][j] + a[i][1] * b[1][j] + a[i][2] * b[2][j];
    return p;
}

inline KtVec3d operator*(const KtMat3d& m, const KtVec3d& v)
{
    return KtVec3d(m[0][0] * v[0] + m[0][1] * v[1] + m[0][2] * v[2],
                   m[1][0] * v[0] + m[1][1] * v[1] + m[1][2] * v[2],
                   m[2][0] * v[0] + m[2][1] * v[1] + m[2][2] * v[2]);
}

// Whether every element is a finite number.
bool KtIsFinite(const KtVec3d& v);
bool KtIsFinite(const KtMat3d& m);

// "(x, y, z)"; a matrix as three such rows, one per line.
std::ostream& operator<<(std::ostream& out, const KtVec3d& v);
std::ostream& operator<<(std::ostream& out, const KtMat3d& m);

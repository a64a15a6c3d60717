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

KtVec3d operator+(const KtVec3d& a, const KtVec3d& b);
KtVec3d operator-(const KtVec3d& a, const KtVec3d& b);
KtVec3d operator*(double s, const KtVec3d& v);

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

KtMat3d operator*(const KtMat3d& a, const KtMat3d& b);
KtVec3d operator*(const KtMat3d& m, const KtVec3d& v);

// "(x, y, z)"; a matrix as three such rows, one per line.
std::ostream& operator<<(std::ostream& out, const KtVec3d& v);
std::ostream& operator<<(std::ostream& out, const KtMat3d& m);

// Kt3X3FloatMat: a single-precision 3x3 matrix, the rotation (and scale)
// block of a frame.
#pragma once

#include <iosfwd>

#include "geometry/KtFloatRow.h"

class KtPoint;

// Elements are stored row by row: m[i][j] is row i, column j. With row
// vectors (KtPoint) row i of a rotation is the image of the i-th unit axis.
//
// The arithmetic lives in the static underscore routines, which work on raw
// element arrays; the member operations are thin wrappers over them. A
// routine's result may be one of its operands.
class Kt3X3FloatMat
{
public:
    using KtRow = KtFloatRow<3>;
    using KtElements = float[3][3];

    // The identity.
    constexpr Kt3X3FloatMat()
        : Kt3X3FloatMat(1.0f)
    {
    }
    // f on the diagonal, 0 elsewhere.
    constexpr explicit Kt3X3FloatMat(float f)
        : _m{}
    {
        for (int i = 0; i < 3; ++i)
            _m[i][i] = f;
    }
    Kt3X3FloatMat& operator=(float f);

    static const Kt3X3FloatMat MultiplicativeIdentity;
    static constexpr int Map[3] = {0, 1, 2};

    float (&operator[](int row))[3] { return _m[row]; }
    const float (&operator[](int row) const)[3] { return _m[row]; }
    KtElements& elements() { return _m; }
    const KtElements& elements() const { return _m; }
    KtRow row(int i) const { return KtRow(_m[i]); }
    void setRow(int i, const KtRow& row);

    Kt3X3FloatMat& transpose();
    Kt3X3FloatMat& add(const Kt3X3FloatMat& other);
    Kt3X3FloatMat& multiply(float f);
    // The diagonal becomes f; the other elements are unchanged.
    Kt3X3FloatMat& setDiagonal(float f);

    bool operator==(const Kt3X3FloatMat& other) const;
    bool operator!=(const Kt3X3FloatMat& other) const
    {
        return !(*this == other);
    }
    // False only when an element is NaN; infinities and non-rotations pass.
    bool isValid() const;

    // The Euler angles of this rotation for the axis order, indexed by axis
    // (see KtGetDecomposedRotationMatrix).
    void findAngles(float (*angles)[3], const int (&order)[3]) const;

    void printOn(std::ostream& out) const;

    static void
    _multiply(KtElements& res, const KtElements& a, const KtElements& b);
    static void _copyMatrix(KtElements& dst, const KtElements& src);
    static void _transposeMatrix(KtElements& res, const KtElements& a);
    static void
    _addMatrix(KtElements& res, const KtElements& a, const KtElements& b);
    static void
    _subMatrix(KtElements& res, const KtElements& a, const KtElements& b);
    static void _addFloat(KtElements& res, const KtElements& a, float f);
    static void _subFloat(KtElements& res, const KtElements& a, float f);
    static void _multScalar(KtElements& res, const KtElements& a, float f);
    // out = p . m: out[j] = sum over i of p[i] m[i][j].
    static void
    _preMultPoint(KtPoint* out, const KtPoint& p, const Kt3X3FloatMat& m);
    // out = m . p, the point taken as a column.
    static void
    _postMultPoint(KtPoint* out, const Kt3X3FloatMat& m, const KtPoint& p);

private:
    KtElements _m;
};

inline constexpr Kt3X3FloatMat Kt3X3FloatMat::MultiplicativeIdentity{1.0f};

std::ostream& operator<<(std::ostream& out, const Kt3X3FloatMat& m);

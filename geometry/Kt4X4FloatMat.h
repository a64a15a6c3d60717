// Kt4X4FloatMat: a single-precision 4x4 homogeneous matrix, the whole frame
// of a bone.
#pragma once

#include <iosfwd>

#include "geometry/Kt3X3FloatMat.h"
#include "geometry/KtFloatRow.h"

class KtPoint;

// Stored row by row like Kt3X3FloatMat, acting on row vectors from the right:
// rows 0..2, columns 0..2 hold the rotation (and scale) block, row 3,
// columns 0..2 the translation, and column 3 is (0, 0, 0, 1) for a rigid
// frame. A point (x, y, z) is taken as (x, y, z, 1).
//
// The arithmetic lives in the static underscore routines on raw element
// arrays; the member operations are thin wrappers over them. Every product of
// two 4x4 matrices goes through the _multfunc hook, so that a faster routine
// can be installed in one place; multiply() is the convenient call.
class Kt4X4FloatMat
{
public:
    using KtRow = KtFloatRow<4>;
    using KtElements = float[4][4];
    // A 4x4 product routine: res = a . b. The result may be one of the
    // operands, so a routine installed in _multfunc must compute into a
    // temporary first.
    using KtMultFunc = void (*)(KtElements& res,
                                const KtElements& a,
                                const KtElements& b);

    // The identity.
    constexpr Kt4X4FloatMat()
        : Kt4X4FloatMat(1.0f)
    {
    }
    // f on the diagonal, 0 elsewhere.
    constexpr explicit Kt4X4FloatMat(float f)
        : _m{}
    {
        for (int i = 0; i < 4; ++i)
            _m[i][i] = f;
    }
    Kt4X4FloatMat& operator=(float f);

    static const Kt4X4FloatMat MultiplicativeIdentity;
    // The full row and column set for the determinant and cofactor routines.
    static constexpr int Map[4] = {0, 1, 2, 3};
    static KtMultFunc _multfunc;

    // res = a . b through the installed product routine; res may be a or b.
    static void
    multiply(Kt4X4FloatMat& res, const Kt4X4FloatMat& a, const Kt4X4FloatMat& b)
    {
        _multfunc(res._m, a._m, b._m);
    }

    float (&operator[](int row))[4] { return _m[row]; }
    const float (&operator[](int row) const)[4] { return _m[row]; }
    KtElements& elements() { return _m; }
    const KtElements& elements() const { return _m; }
    KtRow row(int i) const { return KtRow(_m[i]); }
    void setRow(int i, const KtRow& row);

    Kt4X4FloatMat& transpose();
    Kt4X4FloatMat& add(const Kt4X4FloatMat& other);
    Kt4X4FloatMat& multiply(float f);
    // The diagonal becomes f; the other elements are unchanged.
    Kt4X4FloatMat& setDiagonal(float f);

    // Replaces the matrix by its inverse, the adjugate divided by the
    // determinant. A singular matrix is not detected: every element becomes
    // infinite or NaN. Rigid frames are always invertible.
    Kt4X4FloatMat& invert();
    // Replaces the matrix by its adjugate (the transposed cofactors).
    Kt4X4FloatMat& adjoint();

    bool operator==(const Kt4X4FloatMat& other) const;
    bool operator!=(const Kt4X4FloatMat& other) const
    {
        return !(*this == other);
    }
    // False only when an element is NaN; infinities pass.
    bool isValid() const;

    // The rotation block; the other elements are not read or written.
    void getUpperLeft3X3Mat(Kt3X3FloatMat* out) const;
    void setUpperLeft3X3Mat(const Kt3X3FloatMat& r);
    // The Euler angles of the rotation block (see Kt3X3FloatMat::findAngles).
    void findAngles(float (*angles)[3], const int (&order)[3]) const;

    void printOn(std::ostream& out) const;

    // Determinants and cofactors of the sub-matrix on the listed rows and
    // columns (indices 0..3, n of each). The cofactor and minor leave out
    // position i of the row list and position j of the column list. n below 1
    // gives 1 (the empty determinant); n above 4 must repeat a row and gives
    // 0 without reading the lists.
    float _subDeterminant(const int* rows, const int* cols, int n) const;
    float
    _subCofactor(const int* rows, const int* cols, int n, int i, int j) const;
    float
    _subMinor(const int* rows, const int* cols, int n, int i, int j) const;
    static float _matrixDeterminant(const KtElements& m);
    static float _matrixCofactor(const KtElements& m, int i, int j);
    static float _matrixSubDeterminant(const KtElements& m,
                                       const int* rows,
                                       const int* cols,
                                       int n);
    static float _matrixSubCofactor(const KtElements& m,
                                    const int* rows,
                                    const int* cols,
                                    int n,
                                    int i,
                                    int j);
    static float _matrixSubMinor(const KtElements& m,
                                 const int* rows,
                                 const int* cols,
                                 int n,
                                 int i,
                                 int j);
    // Copies the n indices of in to out, skipping position pos.
    static void _removePosFromIntVec(int* out, const int* in, int n, int pos);

    // The angle whose sine is s (clamped to [-1, 1]), moved to the other half
    // turn when the cosine c is negative.
    static float _sinCosAngle(float s, float c);

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
    static void _copyVector(float (*out)[4], const float (&v)[4]);
    // out = v . m and out = m . v; out may be v.
    static void _preMultVector(float (*out)[4],
                               const float (&v)[4],
                               const float (&m)[4][4]);
    static void _postMultVector(float (*out)[4],
                                const float (&m)[4][4],
                                const float (&v)[4]);
    // The point taken as (x, y, z, 1). The result is divided by its fourth
    // coordinate w unless w is 1 (every affine matrix) or 0 (a direction).
    // _postMultPoint(m, p) is _preMultPoint(p, m transposed).
    static void
    _preMultPoint(KtPoint* out, const KtPoint& p, const Kt4X4FloatMat& m);
    static void
    _postMultPoint(KtPoint* out, const Kt4X4FloatMat& m, const KtPoint& p);
    static void _extractRotMatrix(Kt3X3FloatMat::KtElements& out,
                                  const KtElements& m);
    static void _replaceRotMatrix(KtElements& m,
                                  const Kt3X3FloatMat::KtElements& r);

protected:
    KtElements _m;
};

inline constexpr Kt4X4FloatMat Kt4X4FloatMat::MultiplicativeIdentity{1.0f};

std::ostream& operator<<(std::ostream& out, const Kt4X4FloatMat& m);

// Kt4X4FloatMat: element routines, inversion by cofactors, products with
// points and vectors, print form.
#include "geometry/Kt4X4FloatMat.h"

#include <cmath>
#include <ostream>

#include "geometry/KtPoint.h"
#include "geometry/Kt_SquareMatrix.h"

namespace
{

// This routine has always used this short value of pi, not the full one of
// the Euler routines; it is kept so that its angles stay what they were.
constexpr double kShortPi = 3.14159265359;

constexpr int kSize = 4;

// A point (x, y, z) as the homogeneous row (x, y, z, 1).
void toHomogeneous(float (*out)[4], const KtPoint& p)
{
    (*out)[0] = p.x;
    (*out)[1] = p.y;
    (*out)[2] = p.z;
    (*out)[3] = 1.0f;
}

// Back to a point. An affine product leaves w at exactly 1 and a direction
// has w 0; only a projective matrix makes the division matter.
KtPoint fromHomogeneous(const float (&v)[4])
{
    float w = v[3];
    if (w == 1.0f || w == 0.0f)
        return KtPoint(v[0], v[1], v[2]);
    return KtPoint(v[0] / w, v[1] / w, v[2] / w);
}

// The cofactor expansion of _matrixSubDeterminant, unrolled for the inverse:
// the same products and sums in the same order, each level's sum starting
// from 0 and each cofactor taking its sign by a multiplication, so every
// result is bit for bit the one of the general routine. Elements up to
// kPlainMagnitude keep every intermediate finite; only then may a
// multiplication by -1 be a negation (they differ only for NaN).
constexpr float kPlainMagnitude = 1073741824.0f; // 2^30

using Elements = float[4][4];

bool plainElements(const Elements& m)
{
    for (int i = 0; i < kSize; ++i)
        for (int j = 0; j < kSize; ++j)
            if (!(std::fabs(m[i][j]) <= kPlainMagnitude)) // NaN fails too
                return false;
    return true;
}

// The k-th of the indices 0..3 that remain when removed is left out.
constexpr int remaining(int k, int removed)
{
    return k < removed ? k : k + 1;
}

constexpr float cofactorSign(int i, int j)
{
    return (i + j) % 2 == 0 ? 1.0f : -1.0f;
}

inline float determinant2(const Elements& m, int r0, int r1, int c0, int c1)
{
    float det = 0.0f;
    det += m[r0][c0] * (1.0f * m[r1][c1]);
    det += m[r0][c1] * (-1.0f * m[r1][c0]);
    return det;
}

inline float
determinant3(const Elements& m, int r0, int r1, int r2, int c0, int c1, int c2)
{
    float det = 0.0f;
    det += m[r0][c0] * (1.0f * determinant2(m, r1, r2, c1, c2));
    det += m[r0][c1] * (-1.0f * determinant2(m, r1, r2, c0, c2));
    det += m[r0][c2] * (1.0f * determinant2(m, r1, r2, c0, c1));
    return det;
}

template <int I, int J>
float cofactor(const Elements& m)
{
    return cofactorSign(I, J) * determinant3(m,
                                             remaining(0, I),
                                             remaining(1, I),
                                             remaining(2, I),
                                             remaining(0, J),
                                             remaining(1, J),
                                             remaining(2, J));
}

float determinant4(const Elements& m)
{
    float det = 0.0f;
    det += m[0][0] * cofactor<0, 0>(m);
    det += m[0][1] * cofactor<0, 1>(m);
    det += m[0][2] * cofactor<0, 2>(m);
    det += m[0][3] * cofactor<0, 3>(m);
    return det;
}

// res[i][j] = cofactor(i, j) of t / det, for element K = 4 i + j onwards.
template <int K = 0>
void dividedCofactors(Elements& res, const Elements& t, float det)
{
    if constexpr (K < kSize * kSize)
    {
        res[K / kSize][K % kSize] = cofactor<K / kSize, K % kSize>(t) / det;
        dividedCofactors<K + 1>(res, t, det);
    }
}

} // namespace

Kt4X4FloatMat::KtMultFunc Kt4X4FloatMat::_multfunc = &Kt4X4FloatMat::_multiply;

Kt4X4FloatMat& Kt4X4FloatMat::operator=(float f)
{
    *this = Kt4X4FloatMat(f);
    return *this;
}

void Kt4X4FloatMat::setRow(int i, const KtRow& row)
{
    for (int j = 0; j < kSize; ++j)
        _m[i][j] = row[j];
}

Kt4X4FloatMat& Kt4X4FloatMat::transpose()
{
    _transposeMatrix(_m, _m);
    return *this;
}

Kt4X4FloatMat& Kt4X4FloatMat::add(const Kt4X4FloatMat& other)
{
    _addMatrix(_m, _m, other._m);
    return *this;
}

Kt4X4FloatMat& Kt4X4FloatMat::multiply(float f)
{
    _multScalar(_m, _m, f);
    return *this;
}

Kt4X4FloatMat& Kt4X4FloatMat::setDiagonal(float f)
{
    Kt_SquareMatrix::setDiagonal<kSize>(_m, f);
    return *this;
}

// The determinant is taken before the transposition (it is the same either
// way); the cofactors of the transposed matrix are the adjugate's elements.
// Frames with plain elements take the unrolled expansion, which computes
// the same floats several times faster.
Kt4X4FloatMat& Kt4X4FloatMat::invert()
{
    if (plainElements(_m))
    {
        float det = determinant4(_m);
        float t[kSize][kSize];
        _transposeMatrix(t, _m);
        dividedCofactors(_m, t, det);
        return *this;
    }
    float det = _subDeterminant(Map, Map, kSize);
    transpose();
    float res[kSize][kSize];
    for (int i = 0; i < kSize; ++i)
        for (int j = 0; j < kSize; ++j)
            res[i][j] = _subCofactor(Map, Map, kSize, i, j) / det;
    _copyMatrix(_m, res);
    return *this;
}

Kt4X4FloatMat& Kt4X4FloatMat::adjoint()
{
    transpose();
    float res[kSize][kSize];
    for (int i = 0; i < kSize; ++i)
        for (int j = 0; j < kSize; ++j)
            res[i][j] = _subCofactor(Map, Map, kSize, i, j);
    _copyMatrix(_m, res);
    return *this;
}

bool Kt4X4FloatMat::operator==(const Kt4X4FloatMat& other) const
{
    return Kt_SquareMatrix::equal<kSize>(_m, other._m);
}

bool Kt4X4FloatMat::isValid() const
{
    return Kt_SquareMatrix::hasNoNaN<kSize>(_m);
}

void Kt4X4FloatMat::getUpperLeft3X3Mat(Kt3X3FloatMat* out) const
{
    _extractRotMatrix(out->elements(), _m);
}

void Kt4X4FloatMat::setUpperLeft3X3Mat(const Kt3X3FloatMat& r)
{
    _replaceRotMatrix(_m, r.elements());
}

void Kt4X4FloatMat::findAngles(float (*angles)[3], const int (&order)[3]) const
{
    Kt3X3FloatMat r;
    getUpperLeft3X3Mat(&r);
    r.findAngles(angles, order);
}

void Kt4X4FloatMat::printOn(std::ostream& out) const
{
    Kt_SquareMatrix::printOn<kSize>(out, _m);
}

float Kt4X4FloatMat::_subDeterminant(const int* rows,
                                     const int* cols,
                                     int n) const
{
    return _matrixSubDeterminant(_m, rows, cols, n);
}

float Kt4X4FloatMat::_subCofactor(
    const int* rows, const int* cols, int n, int i, int j) const
{
    return _matrixSubCofactor(_m, rows, cols, n, i, j);
}

float Kt4X4FloatMat::_subMinor(
    const int* rows, const int* cols, int n, int i, int j) const
{
    return _matrixSubMinor(_m, rows, cols, n, i, j);
}

float Kt4X4FloatMat::_matrixDeterminant(const KtElements& m)
{
    return _matrixSubDeterminant(m, Map, Map, kSize);
}

float Kt4X4FloatMat::_matrixCofactor(const KtElements& m, int i, int j)
{
    return _matrixSubCofactor(m, Map, Map, kSize, i, j);
}

// Laplace expansion along the first listed row, summed in float from the
// first listed column on.
float Kt4X4FloatMat::_matrixSubDeterminant(const KtElements& m,
                                           const int* rows,
                                           const int* cols,
                                           int n)
{
    if (n < 1)
        return 1.0f;
    if (n > kSize)
        return 0.0f;
    if (n == 1)
        return m[rows[0]][cols[0]];
    float det = 0.0f;
    for (int j = 0; j < n; ++j)
        det += m[rows[0]][cols[j]] * _matrixSubCofactor(m, rows, cols, n, 0, j);
    return det;
}

float Kt4X4FloatMat::_matrixSubCofactor(
    const KtElements& m, const int* rows, const int* cols, int n, int i, int j)
{
    float sign = (i + j) % 2 == 0 ? 1.0f : -1.0f;
    return sign * _matrixSubMinor(m, rows, cols, n, i, j);
}

float Kt4X4FloatMat::_matrixSubMinor(
    const KtElements& m, const int* rows, const int* cols, int n, int i, int j)
{
    if (n <= 1)
        return 1.0f;
    if (n > kSize)
        return 0.0f;
    int subRows[kSize];
    int subCols[kSize];
    _removePosFromIntVec(subRows, rows, n, i);
    _removePosFromIntVec(subCols, cols, n, j);
    return _matrixSubDeterminant(m, subRows, subCols, n - 1);
}

void Kt4X4FloatMat::_removePosFromIntVec(int* out,
                                         const int* in,
                                         int n,
                                         int pos)
{
    for (int k = 0; k < n; ++k)
        if (k != pos)
            *out++ = in[k];
}

float Kt4X4FloatMat::_sinCosAngle(float s, float c)
{
    double sine = s;
    if (sine > 1.0)
        sine = 1.0;
    else if (sine < -1.0)
        sine = -1.0;
    double angle = std::asin(sine);
    if (c < 0.0f)
        angle = kShortPi - angle;
    return static_cast<float>(angle);
}

void Kt4X4FloatMat::_multiply(KtElements& res,
                              const KtElements& a,
                              const KtElements& b)
{
    Kt_SquareMatrix::multiply<kSize>(res, a, b);
}

void Kt4X4FloatMat::_copyMatrix(KtElements& dst, const KtElements& src)
{
    Kt_SquareMatrix::copy<kSize>(dst, src);
}

void Kt4X4FloatMat::_transposeMatrix(KtElements& res, const KtElements& a)
{
    Kt_SquareMatrix::transpose<kSize>(res, a);
}

void Kt4X4FloatMat::_addMatrix(KtElements& res,
                               const KtElements& a,
                               const KtElements& b)
{
    Kt_SquareMatrix::add<kSize>(res, a, b);
}

void Kt4X4FloatMat::_subMatrix(KtElements& res,
                               const KtElements& a,
                               const KtElements& b)
{
    Kt_SquareMatrix::subtract<kSize>(res, a, b);
}

void Kt4X4FloatMat::_addFloat(KtElements& res, const KtElements& a, float f)
{
    Kt_SquareMatrix::addFloat<kSize>(res, a, f);
}

void Kt4X4FloatMat::_subFloat(KtElements& res, const KtElements& a, float f)
{
    Kt_SquareMatrix::subtractFloat<kSize>(res, a, f);
}

void Kt4X4FloatMat::_multScalar(KtElements& res, const KtElements& a, float f)
{
    Kt_SquareMatrix::multiplyScalar<kSize>(res, a, f);
}

void Kt4X4FloatMat::_copyVector(float (*out)[4], const float (&v)[4])
{
    for (int i = 0; i < kSize; ++i)
        (*out)[i] = v[i];
}

void Kt4X4FloatMat::_preMultVector(float (*out)[4],
                                   const float (&v)[4],
                                   const float (&m)[4][4])
{
    float r[kSize];
    for (int j = 0; j < kSize; ++j)
        r[j] =
            v[0] * m[0][j] + v[1] * m[1][j] + v[2] * m[2][j] + v[3] * m[3][j];
    _copyVector(out, r);
}

void Kt4X4FloatMat::_postMultVector(float (*out)[4],
                                    const float (&m)[4][4],
                                    const float (&v)[4])
{
    float r[kSize];
    for (int i = 0; i < kSize; ++i)
        r[i] =
            m[i][0] * v[0] + m[i][1] * v[1] + m[i][2] * v[2] + m[i][3] * v[3];
    _copyVector(out, r);
}

void Kt4X4FloatMat::_preMultPoint(KtPoint* out,
                                  const KtPoint& p,
                                  const Kt4X4FloatMat& m)
{
    float v[kSize];
    toHomogeneous(&v, p);
    _preMultVector(&v, v, m._m);
    *out = fromHomogeneous(v);
}

void Kt4X4FloatMat::_postMultPoint(KtPoint* out,
                                   const Kt4X4FloatMat& m,
                                   const KtPoint& p)
{
    float v[kSize];
    toHomogeneous(&v, p);
    _postMultVector(&v, m._m, v);
    *out = fromHomogeneous(v);
}

void Kt4X4FloatMat::_extractRotMatrix(Kt3X3FloatMat::KtElements& out,
                                      const KtElements& m)
{
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            out[i][j] = m[i][j];
}

void Kt4X4FloatMat::_replaceRotMatrix(KtElements& m,
                                      const Kt3X3FloatMat::KtElements& r)
{
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            m[i][j] = r[i][j];
}

std::ostream& operator<<(std::ostream& out, const Kt4X4FloatMat& m)
{
    m.printOn(out);
    return out;
}

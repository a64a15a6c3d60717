// Kt3X3FloatMat: element routines, products with points and print form.
#include "geometry/Kt3X3FloatMat.h"

#include <ostream>

#include "geometry/KtEuler.h"
#include "geometry/KtPoint.h"
#include "geometry/Kt_SquareMatrix.h"

Kt3X3FloatMat& Kt3X3FloatMat::operator=(float f)
{
    *this = Kt3X3FloatMat(f);
    return *this;
}

void Kt3X3FloatMat::setRow(int i, const KtRow& row)
{
    for (int j = 0; j < 3; ++j)
        _m[i][j] = row[j];
}

Kt3X3FloatMat& Kt3X3FloatMat::transpose()
{
    _transposeMatrix(_m, _m);
    return *this;
}

Kt3X3FloatMat& Kt3X3FloatMat::add(const Kt3X3FloatMat& other)
{
    _addMatrix(_m, _m, other._m);
    return *this;
}

Kt3X3FloatMat& Kt3X3FloatMat::multiply(float f)
{
    _multScalar(_m, _m, f);
    return *this;
}

Kt3X3FloatMat& Kt3X3FloatMat::setDiagonal(float f)
{
    Kt_SquareMatrix::setDiagonal<3>(_m, f);
    return *this;
}

bool Kt3X3FloatMat::operator==(const Kt3X3FloatMat& other) const
{
    return Kt_SquareMatrix::equal<3>(_m, other._m);
}

bool Kt3X3FloatMat::isValid() const
{
    return Kt_SquareMatrix::hasNoNaN<3>(_m);
}

void Kt3X3FloatMat::findAngles(float (*angles)[3], const int (&order)[3]) const
{
    KtGetDecomposedRotationMatrix(angles, order, *this);
}

void Kt3X3FloatMat::printOn(std::ostream& out) const
{
    Kt_SquareMatrix::printOn<3>(out, _m);
}

void Kt3X3FloatMat::_multiply(KtElements& res,
                              const KtElements& a,
                              const KtElements& b)
{
    Kt_SquareMatrix::multiply<3>(res, a, b);
}

void Kt3X3FloatMat::_copyMatrix(KtElements& dst, const KtElements& src)
{
    Kt_SquareMatrix::copy<3>(dst, src);
}

void Kt3X3FloatMat::_transposeMatrix(KtElements& res, const KtElements& a)
{
    Kt_SquareMatrix::transpose<3>(res, a);
}

void Kt3X3FloatMat::_addMatrix(KtElements& res,
                               const KtElements& a,
                               const KtElements& b)
{
    Kt_SquareMatrix::add<3>(res, a, b);
}

void Kt3X3FloatMat::_subMatrix(KtElements& res,
                               const KtElements& a,
                               const KtElements& b)
{
    Kt_SquareMatrix::subtract<3>(res, a, b);
}

void Kt3X3FloatMat::_addFloat(KtElements& res, const KtElements& a, float f)
{
    Kt_SquareMatrix::addFloat<3>(res, a, f);
}

void Kt3X3FloatMat::_subFloat(KtElements& res, const KtElements& a, float f)
{
    Kt_SquareMatrix::subtractFloat<3>(res, a, f);
}

void Kt3X3FloatMat::_multScalar(KtElements& res, const KtElements& a, float f)
{
    Kt_SquareMatrix::multiplyScalar<3>(res, a, f);
}

void Kt3X3FloatMat::_preMultPoint(KtPoint* out,
                                  const KtPoint& p,
                                  const Kt3X3FloatMat& m)
{
    float r[3];
    for (int j = 0; j < 3; ++j)
        r[j] = p[0] * m._m[0][j] + p[1] * m._m[1][j] + p[2] * m._m[2][j];
    *out = KtPoint(r[0], r[1], r[2]);
}

void Kt3X3FloatMat::_postMultPoint(KtPoint* out,
                                   const Kt3X3FloatMat& m,
                                   const KtPoint& p)
{
    float r[3];
    for (int i = 0; i < 3; ++i)
        r[i] = m._m[i][0] * p[0] + m._m[i][1] * p[1] + m._m[i][2] * p[2];
    *out = KtPoint(r[0], r[1], r[2]);
}

std::ostream& operator<<(std::ostream& out, const Kt3X3FloatMat& m)
{
    m.printOn(out);
    return out;
}

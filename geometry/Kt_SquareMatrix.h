// Element loops shared by the 3x3 and 4x4 float matrices; included only by
// their sources.
#pragma once

#include <ostream>

#include "geometry/KtFloatRow.h"

namespace Kt_SquareMatrix
{

template <int N>
using Elements = float[N][N];

template <int N>
void copy(Elements<N>& dst, const Elements<N>& src)
{
    for (int i = 0; i < N; ++i)
        for (int j = 0; j < N; ++j)
            dst[i][j] = src[i][j];
}

// res = a . b with k summed from 0 upwards. The sum goes into a temporary
// first, so res may be a or b.
template <int N>
void multiply(Elements<N>& res, const Elements<N>& a, const Elements<N>& b)
{
    float t[N][N];
    for (int i = 0; i < N; ++i)
        for (int j = 0; j < N; ++j)
        {
            float sum = 0.0f;
            for (int k = 0; k < N; ++k)
                sum += a[i][k] * b[k][j];
            t[i][j] = sum;
        }
    copy<N>(res, t);
}

template <int N>
void transpose(Elements<N>& res, const Elements<N>& a)
{
    float t[N][N];
    for (int i = 0; i < N; ++i)
        for (int j = 0; j < N; ++j)
            t[i][j] = a[j][i];
    copy<N>(res, t);
}

// Element-wise: res may be either operand.
template <int N>
void add(Elements<N>& res, const Elements<N>& a, const Elements<N>& b)
{
    for (int i = 0; i < N; ++i)
        for (int j = 0; j < N; ++j)
            res[i][j] = a[i][j] + b[i][j];
}

template <int N>
void subtract(Elements<N>& res, const Elements<N>& a, const Elements<N>& b)
{
    for (int i = 0; i < N; ++i)
        for (int j = 0; j < N; ++j)
            res[i][j] = a[i][j] - b[i][j];
}

template <int N>
void addFloat(Elements<N>& res, const Elements<N>& a, float f)
{
    for (int i = 0; i < N; ++i)
        for (int j = 0; j < N; ++j)
            res[i][j] = a[i][j] + f;
}

template <int N>
void subtractFloat(Elements<N>& res, const Elements<N>& a, float f)
{
    for (int i = 0; i < N; ++i)
        for (int j = 0; j < N; ++j)
            res[i][j] = a[i][j] - f;
}

template <int N>
void multiplyScalar(Elements<N>& res, const Elements<N>& a, float f)
{
    for (int i = 0; i < N; ++i)
        for (int j = 0; j < N; ++j)
            res[i][j] = a[i][j] * f;
}

template <int N>
void setDiagonal(Elements<N>& m, float f)
{
    for (int i = 0; i < N; ++i)
        m[i][i] = f;
}

// Exact comparison: a NaN element makes two matrices unequal.
template <int N>
bool equal(const Elements<N>& a, const Elements<N>& b)
{
    for (int i = 0; i < N; ++i)
        for (int j = 0; j < N; ++j)
            if (!(a[i][j] == b[i][j]))
                return false;
    return true;
}

// Only NaN (an element that differs from itself) makes a matrix invalid;
// infinities pass.
template <int N>
bool hasNoNaN(const Elements<N>& m)
{
    for (int i = 0; i < N; ++i)
        for (int j = 0; j < N; ++j)
            if (m[i][j] != m[i][j])
                return false;
    return true;
}

// "[\n", the rows separated by "\n ", "\n]", then a flush.
template <int N>
void printOn(std::ostream& out, const Elements<N>& m)
{
    out << "[\n";
    for (int i = 0; i < N; ++i)
    {
        if (i > 0)
            out << "\n ";
        KtFloatRow<N>(m[i]).printOn(out);
    }
    out << "\n]";
    out.flush();
}

} // namespace Kt_SquareMatrix

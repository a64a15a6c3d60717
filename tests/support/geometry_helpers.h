// Assertions for the geometry types: points and matrices compared element by
// element within one tolerance, printed whole on failure.
#pragma once

#include <algorithm>
#include <cmath>
#include <sstream>
#include <type_traits>

#include <gtest/gtest.h>

#include "geometry/Kt3X3FloatMat.h"
#include "geometry/Kt4X4FloatMat.h"
#include "geometry/KtPoint.h"

// A float carries 24 significant bits, about 6e-8 relative. The results under
// test chain a few dozen float operations on values near 1, each off by at
// most half a unit in the last place, so they stay well inside 1e-5; a wrong
// sign, a swapped element or a wrong angle is off by far more. Values beyond
// 1 in magnitude (translations) are compared relative to their size.
constexpr float kGeometryTolerance = 1e-5f;

inline bool geometryNear(float expected, float actual)
{
    float scale = std::max({1.0f, std::fabs(expected), std::fabs(actual)});
    return std::fabs(expected - actual) <= kGeometryTolerance * scale;
}

// A point is one row of three coordinates, a matrix N rows of N.
template <class T>
float geometryElement(const T& value, int i, int j)
{
    if constexpr (std::is_same_v<T, KtPoint>)
        return value[j];
    else
        return value[i][j];
}

// A frame may be compared with a plain matrix, hence two types.
template <class T, class U>
testing::AssertionResult geometryNearFormat(const char* expectedText,
                                            const char* actualText,
                                            const T& expected,
                                            const U& actual)
{
    constexpr int rows = std::is_same_v<T, KtPoint>         ? 1
                         : std::is_same_v<T, Kt3X3FloatMat> ? 3
                                                            : 4;
    const int cols = rows == 1 ? 3 : rows;
    for (int i = 0; i < rows; ++i)
        for (int j = 0; j < cols; ++j)
            if (!geometryNear(geometryElement(expected, i, j),
                              geometryElement(actual, i, j)))
            {
                std::ostringstream out;
                out.precision(9);
                out << actualText << " differs at [" << i << "][" << j << "]:\n"
                    << actual << "\nexpected " << expectedText << ":\n"
                    << expected;
                return testing::AssertionFailure() << out.str();
            }
    return testing::AssertionSuccess();
}

// The elementary matrices as the frames' conventions draw them (row vectors):
// translation in row 3; the rotation about axis 0 (X), 1 (Y) or 2 (Z) turns
// the next axis toward the one after it.
inline Kt4X4FloatMat translationMatrix(float x, float y, float z)
{
    Kt4X4FloatMat e;
    e.setRow(3, Kt4X4FloatMat::KtRow({x, y, z, 1.0f}));
    return e;
}

// The product a . b.
inline Kt4X4FloatMat operator*(const Kt4X4FloatMat& a, const Kt4X4FloatMat& b)
{
    Kt4X4FloatMat m;
    Kt4X4FloatMat::multiply(m, a, b);
    return m;
}

inline Kt4X4FloatMat rotationMatrix(int axis, float angle)
{
    int p = (axis + 1) % 3;
    int q = (axis + 2) % 3;
    Kt4X4FloatMat e;
    e[p][p] = e[q][q] = std::cos(angle);
    e[p][q] = std::sin(angle);
    e[q][p] = -std::sin(angle);
    return e;
}

#define EXPECT_POINT_NEAR(expected, actual)                                    \
    EXPECT_PRED_FORMAT2(geometryNearFormat, expected, actual)
#define EXPECT_MATRIX_NEAR(expected, actual)                                   \
    EXPECT_PRED_FORMAT2(geometryNearFormat, expected, actual)
#define ASSERT_MATRIX_NEAR(expected, actual)                                   \
    ASSERT_PRED_FORMAT2(geometryNearFormat, expected, actual)

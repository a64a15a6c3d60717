// Assertions for the geometry types: points and matrices compared element by
// element within one tolerance, printed whole on failure.
#pragma once

#include <cmath>
#include <sstream>

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
    float scale =
        std::fmax(1.0f, std::fmax(std::fabs(expected), std::fabs(actual)));
    return std::fabs(expected - actual) <= kGeometryTolerance * scale;
}

template <class T>
std::string geometryText(const T& value)
{
    std::ostringstream out;
    out.precision(9);
    out << value;
    return out.str();
}

inline testing::AssertionResult pointsNear(const char* expectedText,
                                           const char* actualText,
                                           const KtPoint& expected,
                                           const KtPoint& actual)
{
    for (int i = 0; i < 3; ++i)
        if (!geometryNear(expected[i], actual[i]))
            return testing::AssertionFailure()
                   << actualText << " = " << geometryText(actual)
                   << "\nexpected " << expectedText << " = "
                   << geometryText(expected);
    return testing::AssertionSuccess();
}

template <class Matrix, int N>
testing::AssertionResult matricesNearOfSize(const char* expectedText,
                                            const char* actualText,
                                            const Matrix& expected,
                                            const Matrix& actual)
{
    for (int i = 0; i < N; ++i)
        for (int j = 0; j < N; ++j)
            if (!geometryNear(expected[i][j], actual[i][j]))
                return testing::AssertionFailure()
                       << actualText << " differs at [" << i << "][" << j
                       << "]:\n"
                       << geometryText(actual) << "\nexpected " << expectedText
                       << ":\n"
                       << geometryText(expected);
    return testing::AssertionSuccess();
}

inline testing::AssertionResult matricesNear(const char* expectedText,
                                             const char* actualText,
                                             const Kt3X3FloatMat& expected,
                                             const Kt3X3FloatMat& actual)
{
    return matricesNearOfSize<Kt3X3FloatMat, 3>(
        expectedText, actualText, expected, actual);
}

inline testing::AssertionResult matricesNear(const char* expectedText,
                                             const char* actualText,
                                             const Kt4X4FloatMat& expected,
                                             const Kt4X4FloatMat& actual)
{
    return matricesNearOfSize<Kt4X4FloatMat, 4>(
        expectedText, actualText, expected, actual);
}

#define EXPECT_POINT_NEAR(expected, actual)                                    \
    EXPECT_PRED_FORMAT2(pointsNear, expected, actual)
#define EXPECT_MATRIX_NEAR(expected, actual)                                   \
    EXPECT_PRED_FORMAT2(matricesNear, expected, actual)
#define ASSERT_POINT_NEAR(expected, actual)                                    \
    ASSERT_PRED_FORMAT2(pointsNear, expected, actual)
#define ASSERT_MATRIX_NEAR(expected, actual)                                   \
    ASSERT_PRED_FORMAT2(matricesNear, expected, actual)

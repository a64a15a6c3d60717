// Assertions for the double-precision geometry: vectors and matrices compared
// element by element within one tolerance, printed whole on failure.
#pragma once

#include <cmath>
#include <sstream>
#include <type_traits>

#include <gtest/gtest.h>

#include "geometry/KtMat3d.h"

// The results under test chain a few dozen double operations on values of
// magnitude up to about ten, each off by at most half a unit in the last
// place (1e-16 relative); 1e-12 covers that, and any wrong sign, swapped
// element or wrong angle is off by far more.
constexpr double kGeometry3dTolerance = 1e-12;

template <class T>
testing::AssertionResult geometry3dNearFormat(const char* expectedText,
                                              const char* actualText,
                                              const T& expected,
                                              const T& actual)
{
    constexpr bool isVector = std::is_same_v<T, KtVec3d>;
    for (int i = 0; i < (isVector ? 1 : 3); ++i)
        for (int j = 0; j < 3; ++j)
        {
            double e, a;
            if constexpr (isVector)
                e = expected[j], a = actual[j];
            else
                e = expected[i][j], a = actual[i][j];
            if (!(std::fabs(e - a) <= kGeometry3dTolerance))
            {
                std::ostringstream out;
                out.precision(17);
                out << actualText << " differs at [" << i << "][" << j << "]:\n"
                    << actual << "\nexpected " << expectedText << ":\n"
                    << expected;
                return testing::AssertionFailure() << out.str();
            }
        }
    return testing::AssertionSuccess();
}

#define EXPECT_VEC3D_NEAR(expected, actual)                                    \
    EXPECT_PRED_FORMAT2(geometry3dNearFormat<KtVec3d>, expected, actual)
#define ASSERT_VEC3D_NEAR(expected, actual)                                    \
    ASSERT_PRED_FORMAT2(geometry3dNearFormat<KtVec3d>, expected, actual)
#define EXPECT_MAT3D_NEAR(expected, actual)                                    \
    EXPECT_PRED_FORMAT2(geometry3dNearFormat<KtMat3d>, expected, actual)
#define ASSERT_MAT3D_NEAR(expected, actual)                                    \
    ASSERT_PRED_FORMAT2(geometry3dNearFormat<KtMat3d>, expected, actual)

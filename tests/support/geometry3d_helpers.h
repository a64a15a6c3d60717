// Assertions for the double-precision geometry: vectors and matrices compared
// within a tolerance that each test file states, printed whole on failure.
#pragma once

#include <cmath>

#include <gtest/gtest.h>

#include "geometry/KtMat3d.h"

// The sum of the elements' differences; NaN when an element is NaN.
inline double difference3d(const KtVec3d& a, const KtVec3d& b)
{
    return std::fabs(a[0] - b[0]) + std::fabs(a[1] - b[1]) +
           std::fabs(a[2] - b[2]);
}

inline double difference3d(const KtMat3d& a, const KtMat3d& b)
{
    double sum = 0.0;
    for (int i = 0; i < 3; ++i)
        sum += difference3d(KtVec3d(a[i][0], a[i][1], a[i][2]),
                            KtVec3d(b[i][0], b[i][1], b[i][2]));
    return sum;
}

#define NEAR3D_MESSAGE(expected, actual)                                       \
    "expected\n" << (expected) << "\nactual\n" << (actual)
#define EXPECT_NEAR3D(expected, actual, tolerance)                             \
    EXPECT_LE(difference3d(expected, actual), tolerance)                       \
        << NEAR3D_MESSAGE(expected, actual)

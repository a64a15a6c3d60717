// 4x4 inversion, on both of its routes.
#include <cmath>

#include <gtest/gtest.h>

#include "support/geometry_helpers.h"
#include "toolkit/KtError.h"

namespace
{

// Not a rigid frame: column 3 and a stretched row take part too.
Kt4X4FloatMat generalMatrix()
{
    Kt4X4FloatMat m = rotationMatrix(0, 0.3f) * translationMatrix(1, -2, 3);
    m[0][3] = 0.5f;
    m[1][1] = 2.0f;
    return m;
}

} // namespace

// Frames with moderate elements take an unrolled expansion, others the
// general routine. A singular matrix is not refused: it silently gives NaN.
TEST(Kt4X4FloatMat, InvertsFramesAndGivesNaNForASingularMatrix)
{
    const Kt4X4FloatMat frame = rotationMatrix(2, 0.5f) *
                                rotationMatrix(0, -1.2f) *
                                translationMatrix(3, -4, 5);
    Kt4X4FloatMat far = translationMatrix(3e9f, 0, 0);
    far[1][1] = 2.0f;
    for (const Kt4X4FloatMat& m : {frame, far, generalMatrix()})
    {
        Kt4X4FloatMat inverse = m;
        inverse.invert();
        EXPECT_MATRIX_NEAR(Kt4X4FloatMat(), inverse * m);
    }
    Kt4X4FloatMat zero(0.0f);
    zero.invert();
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            EXPECT_TRUE(std::isnan(zero[i][j]));
    EXPECT_FALSE(theExceptObj.exceptionOccurred());
}

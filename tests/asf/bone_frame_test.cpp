// The rest frames of a bone: its axis rotation, placed at the end of its
// parent bone in the parent's orientation.
#include <cmath>

#include <gtest/gtest.h>

#include "asf/KaASFBone.h"
#include "asf/KaBoneFrame.h"
#include "geometry/KtCoordSystem.h"
#include "support/geometry_helpers.h"

namespace
{

constexpr float kQuarterTurn = 1.5707963267948966f;

KaASFBone boneWithAxis(float x, float y, float z)
{
    KaASFBone bone;
    KtArray<float> angles(3);
    angles[0] = x;
    angles[1] = y;
    angles[2] = z;
    bone.setAxis(angles);
    KtArray<int> order(3);
    order[0] = 1;
    order[1] = 2;
    order[2] = 3;
    bone.setAxisOrder(order);
    return bone;
}

// A frame with the given rows (the last one the translation).
KtCoordSystem frame(const float (&rows)[4][3])
{
    KtCoordSystem cs;
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 3; ++j)
            cs[i][j] = rows[i][j];
    return cs;
}

} // namespace

TEST(KaGetComposedBoneMatrices, RootAttachedBoneWithoutAxisIsTheIdentity)
{
    KaASFBone bone = boneWithAxis(0, 0, 0);
    KtCoordSystem axis;
    KtCoordSystem placed;
    axis[3][0] = placed[3][1] = 9.0f; // both outputs are overwritten
    KaGetComposedBoneMatrices(&axis, &placed, bone, KtCoordSystem());
    EXPECT_MATRIX_NEAR(Kt4X4FloatMat(), axis);
    EXPECT_MATRIX_NEAR(Kt4X4FloatMat(), placed);
}

TEST(KaGetComposedBoneMatrices, ChildStartsAtTheEndOfItsParentBone)
{
    KaASFBone parent = boneWithAxis(0, 0, 0);
    parent.setDirection(KtPoint(1, 0, 0));
    parent.setLength(2.0f);
    KaASFBone child = boneWithAxis(0, 0, kQuarterTurn);
    child.setParent(&parent);

    KtCoordSystem axis;
    KtCoordSystem placed;
    KaGetComposedBoneMatrices(&axis, &placed, child, KtCoordSystem());
    // The child's own quarter turn about z, in rows: x -> y, y -> -x.
    EXPECT_MATRIX_NEAR(frame({{0, 1, 0}, {-1, 0, 0}, {0, 0, 1}, {0, 0, 0}}),
                       axis);
    EXPECT_MATRIX_NEAR(frame({{0, 1, 0}, {-1, 0, 0}, {0, 0, 1}, {2, 0, 0}}),
                       placed);
}

TEST(KaGetComposedBoneMatrices, OffsetTurnsWithTheParentAndDropsItsTranslation)
{
    KaASFBone parent = boneWithAxis(0, 0, 0);
    parent.setDirection(KtPoint(1, 0, 0));
    parent.setLength(2.0f);
    KaASFBone child = boneWithAxis(0, 0, 0);
    child.setParent(&parent);
    // The parent's frame: a quarter turn about z, moved to (5, 6, 7).
    KtCoordSystem parentFrame =
        frame({{0, 1, 0}, {-1, 0, 0}, {0, 0, 1}, {5, 6, 7}});

    KtCoordSystem axis;
    KtCoordSystem placed;
    KaGetComposedBoneMatrices(&axis, &placed, child, parentFrame);
    EXPECT_MATRIX_NEAR(Kt4X4FloatMat(), axis);
    // Row vectors: (2, 0, 0) times the turn is (0, 2, 0); the translation
    // row is replaced, so (5, 6, 7) is not in it.
    EXPECT_MATRIX_NEAR(frame({{0, 1, 0}, {-1, 0, 0}, {0, 0, 1}, {0, 2, 0}}),
                       placed);
}

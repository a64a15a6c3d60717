// The rest frames of a bone: its axis rotation, placed at the end of its
// parent bone in the parent's orientation.
#include <gtest/gtest.h>

#include "asf/KaASFBone.h"
#include "asf/KaBoneFrame.h"
#include "geometry/KtCoordSystem.h"
#include "support/geometry_helpers.h"

namespace
{

constexpr float kQuarterTurn = 1.5707963267948966f;

// A bone whose axis turns it about x, in XYZ order.
KaASFBone boneTurnedAboutX(float angle)
{
    KaASFBone bone;
    bone.setAxis(KtPoint(angle, 0.0f, 0.0f));
    KtArray<int> order(3);
    for (int k = 0; k < 3; ++k)
        order[k] = k + 1;
    bone.setAxisOrder(order);
    return bone;
}

} // namespace

// The axis frame is the bone's own turn A; the placed frame is A times the
// parent's frame, its translation row replaced (not added to) by the end of
// the parent bone in the parent's orientation: with row vectors the offset
// (2, 0, 0) turned a quarter about z is (0, 2, 0). A bone hanging from the
// root has no offset.
TEST(KaGetComposedBoneMatrices, PlacesTheBoneAtTheEndOfItsParent)
{
    KaASFBone parent = boneTurnedAboutX(0);
    parent.setDirection(KtPoint(1, 0, 0));
    parent.setLength(2.0f);
    KaASFBone child = boneTurnedAboutX(0.3f);
    child.setParent(&parent);
    const Kt4X4FloatMat turn = rotationMatrix(0, 0.3f);
    const Kt4X4FloatMat quarter = rotationMatrix(2, kQuarterTurn);
    const Kt4X4FloatMat moved = quarter * translationMatrix(5, 6, 7);
    // clang-format off
    const struct { const KaASFBone* bone; Kt4X4FloatMat parentFrame, axis, placed; } cases[] = {
        {&parent, Kt4X4FloatMat(), Kt4X4FloatMat(), Kt4X4FloatMat()},
        {&parent, moved, Kt4X4FloatMat(), quarter},
        {&child, Kt4X4FloatMat(), turn, turn * translationMatrix(2, 0, 0)},
        {&child, moved, turn, turn * quarter * translationMatrix(0, 2, 0)}};
    // clang-format on
    for (const auto& c : cases)
    {
        KtCoordSystem axis;
        KtCoordSystem placed;
        axis[3][0] = placed[3][1] = 9.0f; // both outputs are overwritten
        KaGetComposedBoneMatrices(&axis, &placed, *c.bone, c.parentFrame);
        EXPECT_MATRIX_NEAR(c.axis, axis) << "case " << &c - cases;
        EXPECT_MATRIX_NEAR(c.placed, placed) << "case " << &c - cases;
    }
}

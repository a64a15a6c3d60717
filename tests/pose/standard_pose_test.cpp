// The standard pose against values worked out by hand: axis frames, DOF
// order, a foot's tilted axis, a chain with translations, an absent bone and
// a length unit of 0.45, and every bone starting where its parent ends.
#include <cmath>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "geometry/KtEuler3d.h"
#include "pose/BodyTable.h"
#include "pose/StandardPose.h"
#include "support/documents.h"
#include "support/geometry3d_helpers.h"

namespace
{

const KtVec3d kX(1, 0, 0), kY(0, 1, 0);
constexpr double kQuarter = 1.5707963267948966;
// Skeletons and motions hold their numbers as floats, so a pose is off by
// about 1e-7 from the values worked out for the numbers as written.
constexpr double kAsWritten = 1e-6;

// Degrees; root and bones hold the lines of their sections.
KaASF skeleton(const std::string& root,
               const std::string& bones,
               const std::string& hierarchy,
               const std::string& unit = "1")
{
    return skeletonFrom(":version 1.10\n:name t\n:units\n  length " + unit +
                        "\n  angle deg\n:root\n  order TX TY TZ RX RY RZ\n" +
                        root + "\n:bonedata\n" + bones +
                        "\n:hierarchy\n  begin\n" + hierarchy + "\n  end\n");
}

StandardPose pose(const KaASF& asf, const std::string& frame, int degrees = 1)
{
    KaAMC motion = motionFrom("1\n" + frame, degrees ? "DEGREES" : "RADIANS");
    StandardPose standard(asf);
    BodyTable bodies(asf, nullptr);
    bodies.bind(motion.field(0));
    standard.evaluate(bodies.boundValues(), degrees);
    return standard;
}

} // namespace

// Angles 90 -90 180; each letter's turn in the word's order (X90: y->z,
// z->-y; Y-90: x->z, z->-x; Z180: x->-x, y->-y) takes x, y, z to the
// columns of C:
//   XYZ  x->x->z->z      y->z->-x->x    z->-y->-y->y    C = (z | x | y)
//   ZYX  x->-x->-z->y    y->-y->-y->-z  z->z->-x->-x    C = (y | -z | -x)
//   YZX  x->z->z->-y     y->y->-y->-z   z->-x->x->x     C = (-y | -z | x)
// With the last letter first, XYZ would give ZYX's frame.
TEST(StandardPose, ComposesAxisWordsFirstLetterFirst)
{
    KaASF asf = skeleton("axis YZX position 0 0 0 orientation 90 -90 180",
                         "begin name a direction 1 0 0 length 1 "
                         "axis 90 -90 180 XYZ end\n"
                         "begin name b direction 1 0 0 length 1 "
                         "axis 90 -90 180 ZYX end",
                         "root a b");
    StandardPose standard(asf);
    const KtMat3d frames[] = {KtMat3d({{0, 0, 1}, {-1, 0, 0}, {0, -1, 0}}),
                              KtMat3d({{0, 1, 0}, {0, 0, 1}, {1, 0, 0}}),
                              KtMat3d({{0, 0, -1}, {1, 0, 0}, {0, -1, 0}})};
    for (int body = 0; body < 3; ++body)
        EXPECT_NEAR3D(frames[body], standard.axisFrame(body), kAsWritten);
}

// Bones under the root (which the frame lacks), values in DOF order:
//   a  Rz90: x->y, Rx90: y->z, Ry-90: z->-x
//   b  Ry90: x->-z, Rx90: -z->y; c and d: "l" and values past the DOFs unread
//   foot  C = Rz20 . Rx-90: rx turns about C.x = (cos 20, sin 20, 0), taking
//   z to C.x cross z = (sin 20, -cos 20, 0). With the letters the other way
//   round the axis would be (cos 20, 0, -sin 20) and the end (0, -cos 20, 0).
TEST(StandardPose, AppliesDofsInOrderAboutTheAxisFrame)
{
    const std::string alongX = " direction 1 0 0 length 1 axis 0 0 0 XYZ end\n";
    KaASF asf = skeleton("axis XYZ position 0 0 0 orientation 0 0 0",
                         "begin name a dof rz rx ry" + alongX +
                             "begin name b dof ry rx" + alongX +
                             "begin name c dof rz l" + alongX +
                             "begin name d dof rz" + alongX +
                             "begin name foot dof rx direction 0 0 1 length 1 "
                             "axis -90 0 20 XYZ end",
                         "root a b c d foot");
    StandardPose standard =
        pose(asf, "a 90 90 -90\nb 90 90\nc 90 5\nd 90 90 90 90\nfoot 90\n");
    const double twenty = 20 * kQuarter / 90;
    const KtVec3d foot(std::sin(twenty), -std::cos(twenty), 0);
    const KtVec3d ends[] = {{0, 0, 0}, -1 * kX, kY, kY, kY, foot};
    for (int body = 0; body < 6; ++body)
        EXPECT_NEAR3D(ends[body], standard.end(body), kAsWritten) << body;
}

// Unit 0.45, radians, bones listed child first. Root: C = Rz90, t = x,
// M = Rz90: joint (2,0,0) + C.x = (2,1,0), R = Rz90. slide: C = Ry90, t = x,
// R_p.C.t = Rz90.(-z) = -z: start (2,1,-1); R = Rz90.Ry90 (C and M commute)
// takes its 2x to -2z: end (2,1,-3). gap (absent): the same R takes y to -x:
// end (1,1,-3). tip: R = Rz90.Ry90.Rx90 = Ry90 takes z to x: end (2,1,-3).
// At rest the tip ends at (2,0,0) + 2x + y + z.
TEST(StandardPose, PosesAChainWithTranslationsAndAnAbsentBone)
{
    const std::string along = " length 0.45 axis 0 0 0 XYZ end\n";
    KaASF asf =
        skeleton("axis XYZ position 0.9 0 0 orientation 0 0 90",
                 "begin name tip dof rx direction 0 0 1" + along +
                     "begin name gap dof rx direction 0 1 0" + along +
                     "begin name slide dof tx ry direction 1 0 0 length 0.9 "
                     "axis 0 90 0 XYZ end",
                 "root slide\n slide gap\n gap tip",
                 "0.45");
    StandardPose standard = pose(asf,
                                 "root 0.45 0 0 0 0 1.5707963267948966\n"
                                 "slide 0.45 1.5707963267948966\n"
                                 "tip 1.5707963267948966\n",
                                 0);
    const int parents[] = {-1, 2, 3, 0};
    const KtVec3d starts[] = {{2, 1, 0}, {1, 1, -3}, {2, 1, -3}, {2, 1, -1}};
    const KtVec3d ends[] = {{2, 1, 0}, {2, 1, -3}, {1, 1, -3}, {2, 1, -3}};
    for (int body = 0; body < 4; ++body)
    {
        EXPECT_EQ(parents[body], standard.parent(body));
        EXPECT_NEAR3D(starts[body], standard.start(body), kAsWritten) << body;
        EXPECT_NEAR3D(ends[body], standard.end(body), kAsWritten) << body;
    }
    EXPECT_NEAR3D(
        KtAxisRotation3d(3, kQuarter), standard.rotation(0), kAsWritten);
    EXPECT_NEAR3D(
        KtAxisRotation3d(2, kQuarter), standard.rotation(1), kAsWritten);
    EXPECT_NEAR3D(KtAxisRotation3d(1, kQuarter),
                  standard.relativeRotation(1),
                  kAsWritten);
    standard.evaluateRest();
    EXPECT_NEAR3D(KtVec3d(4, 1, 1), standard.end(1), kAsWritten);
}

// Relations within one evaluation hold in double precision.
TEST(StandardPose, StartsEveryBoneWhereItsParentEnds)
{
    KaASF asf;
    asf.read(EXAMPLES_DIR "/human.asf");
    KaAMC motion;
    motion.read(EXAMPLES_DIR "/walk.amc");
    ASSERT_EQ("", printedChain());
    StandardPose standard(asf);
    BodyTable bodies(asf, nullptr);
    for (int frame = 0; frame < motion.numFields(); frame += 60)
    {
        bodies.bind(motion.field(frame));
        standard.evaluate(bodies.boundValues(), 1);
        EXPECT_NEAR3D(standard.start(0), standard.end(0), 0.0);
        for (int body = 1; body < standard.count(); ++body)
        {
            int parent = standard.parent(body);
            EXPECT_NEAR3D(standard.end(parent), standard.start(body), 1e-12);
            EXPECT_NEAR3D(standard.rotation(body),
                          standard.rotation(parent) *
                              standard.relativeRotation(body),
                          1e-12);
        }
    }
}

// The standard pose against values worked out by hand. Axis words, DOF
// orders and tilted axes are checked against an independent model of the rig
// (tests/rigbake) and pinned by the exported example.
#include <string>

#include <gtest/gtest.h>

#include "geometry/KtEuler3d.h"
#include "pose/BodyTable.h"
#include "pose/StandardPose.h"
#include "support/documents.h"
#include "support/geometry3d_helpers.h"

// Skeletons and motions hold their numbers as floats, so a pose is off by
// about 1e-7 from the values worked out for the numbers as written.
constexpr double kAsWritten = 1e-6;
constexpr double kQuarterTurn = 1.5707963267948966;

// Unit 0.45, radians, bones listed child first. Root: C = Rz90, t = x,
// M = Rz90: joint (2,0,0) + C.x = (2,1,0), R = Rz90. slide: C = Ry90, t = x,
// R_p.C.t = Rz90.(-z) = -z: start (2,1,-1); R = Rz90.Ry90 (C and M commute)
// takes its 2x to -2z: end (2,1,-3). gap (absent): the same R takes y to -x:
// end (1,1,-3). tip: R = Rz90.Ry90.Rx90 = Ry90 takes z to x: end (2,1,-3).
// At rest the tip ends at (2,0,0) + 2x + y + z.
TEST(StandardPose, PosesAChainWithTranslationsAndAnAbsentBone)
{
    const std::string along = " length 0.45 axis 0 0 0 XYZ end\n";
    const KaASF asf = skeletonFrom(
        ":version 1.10\n:units length 0.45 angle deg\n:root order TX TY TZ "
        "RX RY RZ axis XYZ position 0.9 0 0 orientation 0 0 90\n:bonedata\n"
        "begin name tip dof rx direction 0 0 1" +
        along + "begin name gap dof rx direction 0 1 0" + along +
        "begin name slide dof tx ry direction 1 0 0 length 0.9 axis 0 90 0 "
        "XYZ end\n:hierarchy\nbegin\nroot slide\nslide gap\ngap tip\nend\n");
    const KaAMC motion = motionFrom("1\nroot 0.45 0 0 0 0 1.5707963267948966\n"
                                    "slide 0.45 1.5707963267948966\n"
                                    "tip 1.5707963267948966\n",
                                    "RADIANS");
    StandardPose standard(asf);
    BodyTable bodies(asf, nullptr);
    bodies.bind(motion.field(0));
    standard.evaluate(bodies.boundValues(), 0);
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
        KtAxisRotation3d(3, kQuarterTurn), standard.rotation(0), kAsWritten);
    EXPECT_NEAR3D(
        KtAxisRotation3d(2, kQuarterTurn), standard.rotation(1), kAsWritten);
    EXPECT_NEAR3D(KtAxisRotation3d(1, kQuarterTurn),
                  standard.relativeRotation(1),
                  kAsWritten);
    standard.evaluateRest();
    EXPECT_NEAR3D(KtVec3d(4, 1, 1), standard.end(1), kAsWritten);
}

// The MOV file: rotation values copied as read, and positions of
// translating bodies worked out by hand from the frame conventions (row
// vectors, "pre" operations, the placed bone frame).
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "app/MovWriter.h"
#include "support/documents.h"

namespace
{

std::string movText(const KaASF& asf, const KaAMC& amc, int fps = 30)
{
    std::ostringstream out;
    writeMOVData(out, asf, amc, fps);
    return out.str();
}

} // namespace

// A root with rotations only gives only its rotation values; radians stay
// radians, copied as read in DOF order; a body absent from a frame adds
// nothing to its line.
TEST(MovWriter, RotationValuesAreCopiedAsReadInDofOrder)
{
    KaASF asf = skeletonFrom(
        skeletonText("RZ RX",
                     boneBlock("arm", "ry rx") + boneBlock("leg", "rz"),
                     "    root arm leg\n"));
    KaAMC amc = motionFrom("15\narm 1.5e-07 -2.25\nroot 3.14159265 "
                           "0.000123456789\nleg 1\n16\narm 7 8\n",
                           "RADIANS");
    EXPECT_EQ("0.5 3.14159 0.000123457 1.5e-07 -2.25 1 \n0.533333 7 8 \n",
              movText(asf, amc));
}

TEST(MovWriter, PositionsOfTranslatingBodiesUnderRotatedParents)
{
    // Length unit 0.5: skeleton lengths and translations count double.
    // slide hangs from the root and translates along y only; arm hangs from
    // the root, turned a quarter about z at rest; finger hangs from arm and
    // translates.
    KaASF asf = skeletonFrom(skeletonText(
        "TX TY TZ RX RY RZ",
        boneBlock("slide", "ty") +
            boneBlock("arm",
                      "rx",
                      "direction 1 0 0 length 1 axis 0 0 1.5707963 XYZ") +
            boneBlock("finger", "tx ty tz"),
        "    root slide arm\n    arm finger\n",
        "0.5"));
    KaAMC amc = motionFrom("3\nroot 10 0 0 0 0 90\nslide 1\narm 30\n"
                           "finger 1 0.5 0\n");
    // root: 2 * (10, 0, 0), then its rotations. slide, in the world, all
    // three channels: (0, 2, 0) turned by the root's quarter turn about z,
    // plus the root's (20, 0, 0). arm: its rotation only. finger, in arm's
    // animated frame: arm's rest offset (2, 0, 0) and finger's own
    // 2 * (1, 0.5, 0), both turned by arm's rest quarter turn.
    std::istringstream line(movText(asf, amc));
    const double expected[] = {0.1, 20, 0, 0, 0, 0, 90, 18, 0, 0, 30, -1, 4, 0};
    for (double value : expected)
    {
        double actual = 0;
        ASSERT_TRUE(line >> actual);
        EXPECT_NEAR(value, actual, 1e-5);
    }
    EXPECT_EQ(' ', line.get());
    EXPECT_EQ('\n', line.get());
}

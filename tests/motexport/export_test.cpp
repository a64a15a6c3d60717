// The BVH export against the standard pose: every joint, read back by BVH's
// own rules, stands where the pose puts it, within the precision of the
// written numbers; and no channel jumps by a turn. The bundled example's
// golden export pins its BVH and CSV.
#include <cmath>
#include <map>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "motexport/BvhWriter.h"
#include "motexport/CsvWriter.h"
#include "motexport/PosedMotion.h"
#include "support/bvh_reader.h"
#include "support/documents.h"
#include "support/geometry3d_helpers.h"

namespace
{

// Six significant digits put an angle within 5e-6 of itself and so turn a
// bone by at most about 1e-4 rad (angles of at most 1000 degrees); over
// chains as long as the bundled skeleton's that moves a joint by less than
// 3e-5 of the skeleton's extent (found there: 1e-5).
constexpr double kWritten = 3e-5;

// Frame Time also gives the rate back. Returns the export.
BvhFile
expectExact(const KaASF& asf, const KaAMC& amc, double scale, double fps = 30)
{
    PosedMotion motion(asf, amc, scale, fps);
    std::ostringstream text;
    EXPECT_TRUE(writeBVH(text, motion));
    const BvhFile bvh = readBVH(text.str());
    EXPECT_DOUBLE_EQ(fps, 1 / bvh.frameTime);
    std::map<std::string, int> bodyOf;
    for (int body = 0; body < motion.numBodies(); ++body)
        bodyOf[motion.name(body)] = body;
    const double tolerance = kWritten * motion.extent();
    for (int frame = 0; frame < motion.numFrames(); ++frame)
    {
        SCOPED_TRACE(frame);
        motion.evaluate(frame);
        const BvhPose pose = poseBVH(bvh, frame);
        for (size_t j = 0; j < bvh.joints.size(); ++j)
        {
            const int body = bodyOf.at(bvh.joints[j].name);
            SCOPED_TRACE(bvh.joints[j].name);
            EXPECT_NEAR3D(motion.start(body), pose.joints[j], tolerance);
            if (bvh.joints[j].hasEnd)
            {
                EXPECT_NEAR3D(motion.end(body), pose.ends[j], tolerance);
            }
        }
    }
    return bvh;
}

// Axis angles in all three components under several axis words, DOF orders
// other than the axis word's, a bone without DOFs, translating bones, a
// length unit of 0.45, and the root resting away from the origin, turned
// and moved (radians in the skeleton, degrees in the motion).
// clang-format off
const std::string kBones =
    boneBlock("hip", "", "direction 0.3 -1 0.2 length 0.9 axis 0.2 -0.4 0.6 ZYX") +
    boneBlock("femur", "rz rx ry", "direction 0 -1 0 length 1.8 axis 0.5 0.3 -0.8 XYZ") +
    boneBlock("slide", "tx ty rz", "direction 1 0.5 0 length 0.45 axis -0.3 0.9 0.1 YZX") +
    boneBlock("toe", "ry rx", "direction 0 0 1 length 0.4 axis 1.2 -0.6 0.4 ZXY") +
    boneBlock("spine", "tz ry rz rx", "direction 0 1 0 length 1.2 axis 0 0 0 XYZ") +
    boneBlock("head", "rx", "direction 0 0.2 1 length 0.5 axis 0.7 0.7 0.7 YXZ");
const std::string kHierarchy = "    root hip spine\n    hip femur\n    femur slide\n    slide toe\n    spine head\n";
const std::string kFrames =
    "1\nroot 0.2 0.4 -0.3 10 -20 30\nhip\nfemur 40 -30 70\nslide 0.1 -0.2 50\ntoe 80 -10\nspine 0.3 -40 20 -60\nhead 25\n"
    "5\nroot 1 2 3 -170 80 95\nhip\nfemur -120 60 -150\nslide -0.4 0.3 -175\ntoe -90 45\nspine 0 179 -89 91\nhead -170\n";
// clang-format on

} // namespace

TEST(MotexportExports, StandWhereTheStandardPoseStands)
{
    KaASF small = skeletonFrom(
        skeletonText("TX TY TZ RX RY RZ", kBones, kHierarchy, "0.45"));
    small.root().setPosition(KtPoint(0.9, -0.45, 1.35));
    KaAMC moves = motionFrom(kFrames);
    expectExact(small, moves, 1.0, 120);
    expectExact(small, moves, 0.0254, 29.97);
    // The CSV's frame column holds the number as written, not the position.
    PosedMotion posed(small, moves, 1.0, 30);
    std::ostringstream csv;
    EXPECT_TRUE(writeCSV(csv, posed));
    EXPECT_NE(std::string::npos, csv.str().find("\n5,")) << csv.str();
}

// A middle angle of exactly +-90 degrees (Rz . Ry . Rx with DOFs in that
// order and no axis turn) leaves the other two angles one turn between them:
// the decomposition stays exact, without NaN. A rotation that goes round
// continues past 180 degrees instead of jumping back by a turn.
TEST(MotexportExports, StayExactAtTheLockAndContinuousThroughHalfATurn)
{
    const KaASF asf = skeletonFrom(skeletonText(
        "TX TY TZ RX RY RZ", boneBlock("arm", "rx ry rz"), "    root arm\n"));
    std::string frames;
    int frame = 0;
    // clang-format off
    for (const char* arm : {"10 90 20", "10 -90 20", "0 0 100", "0 0 170", "0 0 -170", "0 0 -100", "0 0 10"})
        frames += std::to_string(++frame) + "\nroot 0 0 0 0 0 0\narm " + arm + "\n";
    // clang-format on
    const BvhFile bvh = expectExact(asf, motionFrom(frames), 1.0);
    for (int f = 3; f < bvh.frames; ++f)
        for (size_t c = 0; c < bvh.values[f].size(); ++c)
            EXPECT_LT(std::fabs(bvh.values[f][c] - bvh.values[f - 1][c]), 180)
                << "frame " << f << " channel " << c;
    // The arm's Z channel (after the root's six) from 100 on: 170, 190, 260,
    // 370, whichever of the two triples the turn started from.
    EXPECT_NEAR(270, bvh.values[6][6] - bvh.values[2][6], 1e-9);
}

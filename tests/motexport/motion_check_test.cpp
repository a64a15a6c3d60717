// The checks before an export: bone lines that no body takes, bone lines
// that differ by frame, and poses that are not finite. A value count that
// differs from the DOFs is refused end to end.
#include <string>

#include <gtest/gtest.h>

#include "motexport/MotionCheck.h"
#include "motexport/PosedMotion.h"
#include "support/documents.h"

namespace
{

KaASF armSkeleton(const std::string& axis = "0 0 0",
                  const std::string& lengthUnit = "1")
{
    return skeletonFrom(skeletonText(
        "TX TY TZ RX RY RZ",
        boneBlock("arm",
                  "rx ry rz",
                  "direction 1 0 0 length 1 axis " + axis + " XYZ"),
        "    root arm\n",
        lengthUnit));
}

} // namespace

// One warning per name, however many frames repeat it; a bone the motion
// never names (arm) is no matter.
TEST(MotexportMotionCheck, WarnsOncePerBoneLineThatNoBodyTakes)
{
    const std::string frame =
        "\nroot 0 0 0 0 0 0\ntail 1\nROOT 1 2 3 4 5 6\nTail 2\n";
    const KaAMC amc = motionFrom("1" + frame + "2" + frame);
    warnAboutBoneLines(armSkeleton(), amc);
    EXPECT_EQ(warningBlock({"Bone \"ROOT\" has more than one line in a frame "
                            "of the AMC: only the first is used.",
                            "Bone \"tail\" of the AMC is not in the ASF: its "
                            "values are left out."}),
              printedChain());
    EXPECT_TRUE(checkMotionValues(armSkeleton(), amc));
}

// Each frame's lines are the first frame's, in order, or nothing goes on.
TEST(MotexportMotionCheck, RefusesFramesWhoseBoneLinesDiffer)
{
    const std::string first = "1\nroot 0 0 0 0 0 0\narm 1 2 3\n";
    const std::string order =
        "Every frame of the AMC must hold the first frame's bone lines in the "
        "same order.";
    // clang-format off
    const struct { std::string later, err; } cases[] = {
        {"9\narm 1 2 3\nroot 0 0 0 0 0 0\n",
         "Bone line 1 of frame 9 is \"arm\" where the first frame has \"root\"."},
        {"9\nroot 0 0 0 0 0 0\narm 1 2 3\nleg 1\n",
         "Frame 9 has the bone line \"leg\" past the first frame's 2 lines."},
        {"9\nroot 0 0 0 0 0 0\n",
         "Frame 9 ends before bone line 2, \"arm\", of the first frame."}};
    // clang-format on
    for (const auto& c : cases)
    {
        EXPECT_FALSE(
            checkMotionValues(armSkeleton(), motionFrom(first + c.later)));
        EXPECT_EQ(errorBlock({order.c_str(), c.err.c_str()}), printedChain());
    }
}

// A length unit of 0 makes the root's place 0/0 and every length infinite,
// an axis of inf the bone's rotation NaN: refused at the first frame, before
// any output.
TEST(MotexportMotionCheck, RefusesAPoseThatIsNotFinite)
{
    const KaAMC amc = motionFrom("3\nroot 0 0 0 0 0 0\narm 1 2 3\n");
    // clang-format off
    const struct { KaASF asf; const char* body; } cases[] = {
        {armSkeleton("0 0 0", "0"), "root"}, {armSkeleton("inf 0 0"), "arm"}};
    // clang-format on
    for (const auto& c : cases)
    {
        PosedMotion motion(c.asf, amc, 1.0, 30);
        EXPECT_FALSE(motion.checkFinite());
        const std::string message =
            std::string("Frame 3 puts \"") + c.body +
            "\" at a position or rotation that is not a finite number: check "
            "the skeleton's units, lengths and axes, and the scale.";
        EXPECT_EQ(errorBlock({message.c_str()}), printedChain());
    }
    PosedMotion huge(armSkeleton(), amc, 1e308, 30);
    EXPECT_TRUE(huge.checkFinite());
}

// The rig against its promise: motbake's channels, applied to the rig's
// joints by a model of Maya, put every joint where the standard pose puts
// its bone's start. And the skeletons that cannot have a rig.
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "app/Conversion.h"
#include "pose/BodyTable.h"
#include "pose/StandardPose.h"
#include "rigbake/RigJoints.h"
#include "rigbake/RigScript.h"
#include "support/documents.h"
#include "support/geometry3d_helpers.h"
#include "support/heap_watch.h"
#include "support/maya_joint_model.h"

namespace
{

// The MOV text holds six significant digits: a value below 10 is off by up
// to 5e-6, and a joint adds the errors of the values along its chain.
constexpr double kTolerance = 5e-5;

// Every joint of the rig, posed by every line of motbake's MOV file, against
// the standard pose of the same frame.
void expectPromiseKept(const KaASF& asf, const KaAMC& amc)
{
    const RigJoints joints(asf);
    ASSERT_TRUE(joints.check());
    std::ostringstream rig;
    writeRigScript(rig, joints);
    ConvertedTexts motbake =
        convertInMemory(asf, amc, ConversionSettings{30, KtStr()});
    ASSERT_EQ(0, motbake.status);
    MayaJointModel maya;
    maya.source(rig.str());
    maya.source(motbake.mel);
    BodyTable bodies(asf, nullptr);
    StandardPose standard(asf);
    std::istringstream mov(motbake.mov);
    int frame = 0;
    for (std::string line; std::getline(mov, line); ++frame)
    {
        maya.applyTake(line);
        bodies.bind(amc.field(frame));
        standard.evaluate(bodies.boundValues(), amc.units());
        for (int body = 0; body < bodies.count(); ++body)
        {
            const std::string name = bodies.name(body);
            SCOPED_TRACE(name + " in frame " + std::to_string(frame));
            // clang-format off
            EXPECT_NEAR3D(standard.start(body), maya.worldPosition(name + "_joint"), kTolerance);
            if (maya.has(name + "_end"))
            {
                EXPECT_NEAR3D(standard.end(body), maya.worldPosition(name + "_end"), kTolerance);
            }
            // clang-format on
        }
    }
    EXPECT_EQ(amc.numFields(), frame);
}

} // namespace

TEST(RigScript, MotbakesChannelsPoseTheRigAsTheStandardPose)
{
    // clang-format off
    const struct { const char* what; std::string skeleton, motion; } cases[] = {
        {"every axis word and rotate order, a bone without DOFs, length unit 0.45",
         skeletonText("TX TY TZ RZ RX RY",
                      boneBlock("toe", "ry", "direction 0 0.2 1 length 0.45 axis 1.2 -0.2 0.35 YZX") +
                      boneBlock("hip", "rz rx ry", "direction 0.3 -1 0.2 length 0.9 axis 0.2 -0.35 0.5 XYZ") +
                      boneBlock("knee", "rx rz", "direction 0 -1 0.1 length 1.8 axis -0.7 0.26 0.44 XZY") +
                      boneBlock("ankle", "", "direction 0.1 -0.2 1 length 0.45 axis 0.1 1.05 -0.6 YXZ") +
                      boneBlock("spine", "ry rz rx", "direction 0 1 0.05 length 1.35 axis 0.6 0.77 -0.96 ZXY") +
                      boneBlock("head", "rz ry rx", "direction 0.2 0.9 0 length 0.9 axis -0.26 -0.44 -0.61 ZYX"),
                      "    root hip spine\n    hip knee\n    knee ankle\n    ankle toe\n    spine head\n",
                      "0.45"),
         "1\nroot 0.9 1.8 -0.45 30 -20 10\nhip 10 -35 50\nknee 40 -15\ntoe 25\nspine -5 12 30\nhead 60 -45 20\n"
         "2\nroot -0.45 0 0.9 -100 45 170\nhip -120 60 -80\nknee 95 33\ntoe -70\nspine 89 -91 180\nhead -179 88 -33\n"},
        {"a translating bone under bones without axis angles",
         skeletonText("TX TY TZ RX RY RZ",
                      boneBlock("arm", "rx ry rz", "direction 1 0.5 0 length 2 axis 0 0 0 XYZ") +
                      boneBlock("slide", "tx ty tz rz", "direction 0 1 0 length 1 axis 0 0.5 0 XYZ") +
                      boneBlock("tip", "rx", "direction 0 0 1 length 1 axis 0.4 0 0.1 ZYX"),
                      "    root arm\n    arm slide\n    slide tip\n"),
         "1\nroot 1 2 3 10 20 30\narm 40 -50 60\nslide 0.5 -0.25 1 45\ntip 30\n"
         "2\nroot -1 0 2 -90 45 0\narm 0 90 10\nslide -1 0.75 0 -120\ntip -60\n"}};
    // clang-format on
    for (const auto& c : cases)
    {
        SCOPED_TRACE(c.what);
        expectPromiseKept(skeletonFrom(c.skeleton), motionFrom(c.motion));
    }
}

// Each refusal names the body.
TEST(RigJoints, RefusesASkeletonThatCannotHaveARig)
{
    auto hanging = [](const std::string& name,
                      const std::string& axis = "0 0 0",
                      const std::string& unit = "1")
    {
        return skeletonText(
            "TX TY TZ",
            boneBlock(
                name, "", "direction 1 0 0 length 1 axis " + axis + " XYZ"),
            "    root " + name + "\n",
            unit);
    };
    const std::string named =
        "\": its name cannot name a Maya joint (letters, digits and "
        "underscores only, not a digit first).";
    // clang-format off
    const struct { std::string skeleton, error; } cases[] = {
        {hanging("9lives"), "Bone \"9lives" + named}, {hanging("l-arm"), "Bone \"l-arm" + named},
        {hanging("root"), "Bone \"root\": its joint \"root_joint\" would have the name of another joint."},
        {skeletonText("TX TY TZ", boneBlock("arm", "") + boneBlock("arm", "rx"), "    root arm\n"),
         "Bone \"arm\": its joint \"arm_joint\" would have the name of another joint."},
        {hanging("arm", "0 inf 0"), "Bone \"arm\": its axis is not a finite number."},
        {hanging("arm", "0 0 0", "1e-39"),
         "Bone \"arm\": its direction times its length divided by the length unit is not a finite number."},
        {hanging("arm", "0 0 0", "0"), "The root's position divided by the length unit is not a finite number."}};
    // clang-format on
    for (const auto& c : cases)
    {
        EXPECT_FALSE(RigJoints(skeletonFrom(c.skeleton)).check());
        EXPECT_EQ(errorBlock({c.error.c_str()}), printedChain()) << c.skeleton;
    }
}

// A chain as deep as a file may make it, listed from its tip: each joint
// follows its parent, and no call stack limits the depth. The joints are
// worked out as the script is written, never held all at once: the rig
// costs a few numbers a bone.
TEST(RigJoints, ListsEveryJointAfterItsParentInAnyDepthAtAFewNumbersABone)
{
    const int depth = 100000;
    std::string bones, hierarchy = "    root b0\n";
    for (int i = depth - 1; i > 0; --i)
    {
        bones += boneBlock("b" + std::to_string(i), "");
        hierarchy += "    b" + std::to_string(depth - i - 1) + " b" +
                     std::to_string(depth - i) + "\n";
    }
    KaASF chain = skeletonFrom(
        skeletonText("TX TY TZ", bones + boneBlock("b0", ""), hierarchy));
    HeapWatch watch;
    const RigJoints joints(chain);
    ASSERT_TRUE(joints.check());
    std::ostream nowhere(nullptr);
    writeRigScript(nowhere, joints);
    EXPECT_LT(watch.peakGrowth(), 200u * depth);
    int count = 0;
    joints.forEach([&count](const RigJoint& joint)
                   { ASSERT_EQ(count++ - 1, joint.parent) << joint.name; });
    ASSERT_EQ(depth + 2, count);
}

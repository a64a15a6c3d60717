// The MOV file: line layout, times, rotation values copied as read, and
// positions of translating bodies worked out by hand from the frame
// conventions (row vectors, "pre" operations, the placed bone frame).
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "app/MovWriter.h"
#include "documents.h"
#include "support/test_helpers.h"
#include "toolkit/KtError.h"

namespace
{

std::string movText(const KaASF& asf, const KaAMC& amc, int fps)
{
    std::ostringstream out;
    writeMOVData(out, asf, amc, fps);
    return out.str();
}

std::vector<double> numbersOf(const std::string& line)
{
    std::istringstream in(line);
    std::vector<double> numbers;
    double value;
    while (in >> value)
        numbers.push_back(value);
    return numbers;
}

void expectNumbersNear(const std::vector<double>& expected,
                       const std::string& line)
{
    std::vector<double> actual = numbersOf(line);
    ASSERT_EQ(expected.size(), actual.size()) << line;
    for (size_t i = 0; i < expected.size(); ++i)
        EXPECT_NEAR(expected[i], actual[i], 1e-5)
            << "column " << i << ": " << line;
}

} // namespace

TEST(MovWriter, TimesAreFrameOverRateInFloatWithSixDigits)
{
    KaASF asf = skeletonFrom(skeletonText("RX", "", ""));
    std::string motion = ":FULLY-SPECIFIED\n:DEGREES\n";
    for (int frame = 1; frame <= 120; ++frame)
        motion += std::to_string(frame) + "\nroot 0.5\n";
    std::istringstream lines(movText(asf, motionFrom(motion), 30));
    std::vector<std::string> all;
    for (std::string line; std::getline(lines, line);)
        all.push_back(line);
    ASSERT_EQ(120u, all.size());
    EXPECT_EQ("0.0333333 0.5 ", all[0]);
    EXPECT_EQ("0.0666667 0.5 ", all[1]);
    EXPECT_EQ("1 0.5 ", all[29]);
    EXPECT_EQ("4 0.5 ", all[119]);
}

TEST(MovWriter, RotationValuesAreCopiedAsReadInDofOrder)
{
    // Radians stay radians: the values are not converted.
    KaASF asf = skeletonFrom(
        skeletonText("RZ RX", boneBlock("arm", "ry rx"), "    root arm\n"));
    KaAMC amc =
        motionFrom(":FULLY-SPECIFIED\n:RADIANS\n"
                   "15\narm 1.5e-07 -2.25\nroot 3.14159265 0.000123456789\n");
    EXPECT_EQ("0.5 3.14159 0.000123457 1.5e-07 -2.25 \n",
              movText(asf, amc, 30));
}

TEST(MovWriter, PositionsOfTranslatingBodiesUnderRotatedParents)
{
    // Length unit 0.5: skeleton lengths and translations count double.
    // slide hangs from the root and translates; arm hangs from the root,
    // turned a quarter about z at rest; finger hangs from arm and
    // translates.
    KaASF asf = skeletonFrom(skeletonText(
        "TX TY TZ RX RY RZ",
        boneBlock("slide", "tx ty tz") +
            boneBlock("arm",
                      "rx",
                      "direction 1 0 0 length 1 axis 0 0 1.5707963 XYZ") +
            boneBlock("finger", "tx ty tz"),
        "    root slide arm\n    arm finger\n",
        "0.5"));
    KaAMC amc = motionFrom(":FULLY-SPECIFIED\n:DEGREES\n"
                           "3\nroot 10 0 0 0 0 90\nslide 1 0 0\narm 30\n"
                           "finger 1 0.5 0\n");
    // root: its translation, 2 * (10, 0, 0), then its rotations.
    // slide: a world position: (2, 0, 0) turned by the root's quarter turn
    // about z is (0, 2, 0), plus the root's (20, 0, 0).
    // arm: its rotation value only.
    // finger: relative to arm's animated frame: arm's rest offset (2, 0, 0)
    // turned by arm's rest quarter turn is (0, 2, 0); finger's own
    // 2 * (1, 0.5, 0) turned the same way is (-1, 2, 0).
    expectNumbersNear({0.1, 20, 0, 0, 0, 0, 90, 20, 2, 0, 30, -1, 4, 0},
                      movText(asf, amc, 30));
}

TEST(MovWriter, AbsentBodiesContributeNothingToTheirLine)
{
    KaASF asf = skeletonFrom(skeletonText(
        "RX", boneBlock("a", "rx") + boneBlock("b", "rx"), "    root a b\n"));
    KaAMC amc = motionFrom(":FULLY-SPECIFIED\n:DEGREES\n"
                           "1\na 1\nb 2\n2\nb 3\n");
    EXPECT_EQ("0.0333333 1 2 \n0.0666667 3 \n", movText(asf, amc, 30));
}

TEST(MovWriter, ADofCountMismatchStopsTheFileWithBothMessages)
{
    KaASF asf = skeletonFrom(
        skeletonText("RX",
                     boneBlock("a", "rx") + boneBlock("b", "rx ry rz"),
                     "    root a b\n"));
    KaAMC amc = motionFrom(":FULLY-SPECIFIED\n:DEGREES\n"
                           "1\nroot 0\na 1\nb 2 3\n2\nroot 0\na 1\nb 2 3 4\n");
    EXPECT_EQ("0.0333333 0 1 ", movText(asf, amc, 30));
    // The body message deliberately lacks its closing quote.
    EXPECT_EQ(errorBlock({"Unable to convert transformations to MOV for body "
                          "\"b.",
                          "The number of degrees of freedom in the AMC does "
                          "not match the number of degrees of freedom in the "
                          "ASF."}),
              printedChain());

    KaAMC rootless = motionFrom(":FULLY-SPECIFIED\n:DEGREES\n1\nroot 0 0\n");
    EXPECT_EQ("0.0333333 ", movText(asf, rootless, 30));
    EXPECT_EQ(errorBlock({"Unable to convert transformations to MOV for "
                          "\"root\".",
                          "The number of degrees of freedom in the AMC does "
                          "not match the number of degrees of freedom in the "
                          "ASF."}),
              printedChain());
}

TEST(MovWriter, AParentWithTooFewValuesIsNeverReadPastThem)
{
    // arm has three rotations but one value; evaluating it for finger's
    // parent frame must stay within that value. finger's position is
    // relative to arm's animated frame, whatever that frame holds.
    KaASF asf = skeletonFrom(skeletonText("RX",
                                          boneBlock("arm", "rx ry rz") +
                                              boneBlock("finger", "tx ty tz"),
                                          "    root arm\n    arm finger\n"));
    KaAMC amc = motionFrom(":FULLY-SPECIFIED\n:DEGREES\n"
                           "1\narm 90\nfinger 1 2 3\n");
    std::ostringstream out;
    writeBodyChannels(out,
                      "finger",
                      asf,
                      amc.field(0),
                      asf.findBone("finger")->dofGroup(),
                      *amc.field(0).findBone("finger"),
                      1.0f,
                      1);
    expectNumbersNear({2, 2, 3}, out.str());
    EXPECT_EQ("", printedChain());
}

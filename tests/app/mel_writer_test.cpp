// The MEL script's whole text, filter procedures included, is pinned by the
// known captures converted end to end; here, what they never hold.
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "app/MelWriter.h"
#include "support/documents.h"
#include "support/test_helpers.h"
#include "toolkit/KtError.h"

namespace
{

std::string
script(const KaASF& asf, const KaAMC& amc, int fps, const char* filters = "")
{
    theFilterText = filters;
    std::ostringstream out;
    writeMELScript(out, asf, amc, fps);
    theFilterText = "";
    return out.str();
}

// The root with all six DOFs (rotations in z, y, x order), lfemur and lhand.
const std::string kSkeleton =
    skeletonText("TX TY TZ RZ RY RX",
                 boneBlock("lfemur", "rx ry rz") + boneBlock("lhand", "rx"),
                 "    root lfemur\n    lfemur lhand\n");

std::string startsAt(const std::string& frame)
{
    return "currentTime -edit " + frame + ";\n    playbackOptions -minTime " +
           frame + ";";
}

} // namespace

// A root without translations gets no position channels; a bone with only
// ty gets all three, and the numbering runs on without gaps, in bone-list
// order. A body that is not in the first frame gets no channels at all. A
// motion without frames (only one built in memory: the reader needs a frame
// number after the header) starts at 0.
TEST(MelWriter, ChannelsAreNumberedOverTheBodiesOfTheFirstFrame)
{
    const KaASF asf = skeletonFrom(
        skeletonText("RX",
                     boneBlock("spine", "ty rz") + boneBlock("neck", "rx") +
                         boneBlock("lhand", "rx"),
                     "    root spine\n    spine neck\n    neck lhand\n"));
    const std::string mel = script(
        asf, motionFrom("7\nneck 1\nroot 1\nspine 2 3\n8\nlhand 4\n"), 30);
    const std::string define = "  defineVirtualDevice -channel ";
    EXPECT_NE(std::string::npos,
              mel.find("-create;\n" + define +
                       "root_rotX -usage rotX -axis 0;\n" + define +
                       "spine_posX -usage posX -axis 1;\n" + define +
                       "spine_posY -usage posY -axis 2;\n" + define +
                       "spine_posZ -usage posZ -axis 3;\n" + define +
                       "spine_rotZ -usage rotZ -axis 4;\n" + define +
                       "neck_rotX -usage rotX -axis 5;\n"
                       "  defineVirtualDevice -device \"amc_device\";\n"))
        << mel;
    EXPECT_EQ(std::string::npos, mel.find("lhand"));
    EXPECT_NE(std::string::npos, mel.find(startsAt("7")));
    EXPECT_NE(std::string::npos, script(asf, KaAMC(), 30).find(startsAt("0")));
    EXPECT_EQ("", printedChain());
}

// Separators anywhere, also at the end, only separate filter names; a text
// of separators only means no filters. Each frame rate has its time unit.
TEST(MelWriter, FilterNamesAndTimeUnits)
{
    KaASF asf = skeletonFrom(kSkeleton);
    KaAMC amc = motionFrom("1\nroot 0 0 0 0 0 0\nlfemur 1 2 3\n");
    const std::string filtered = script(asf, amc, 24, "euler simplify");
    EXPECT_NE(std::string::npos, filtered.find("{\"euler\",\"simplify\"}"));
    EXPECT_NE(std::string::npos, filtered.find("-f euler -f simplify;"));
    EXPECT_EQ(filtered, script(asf, amc, 24, "\teuler\r\n simplify  "));
    EXPECT_EQ(script(asf, amc, 24), script(asf, amc, 24, " \t "));
    std::istringstream rates("15 game 24 film 25 pal 30 ntsc 48 show 50 palf "
                             "60 ntscf");
    int fps = 0;
    for (std::string unit; rates >> fps >> unit;)
        EXPECT_NE(std::string::npos,
                  script(asf, amc, fps)
                      .find("currentUnit -time " + unit + ";\n    readTake"))
            << fps;
}

// An error pending after a body's channels stops the script there, with the
// body named: the root in its own words, a bone as a body.
TEST(MelWriter, APendingErrorStopsTheScriptAtTheBody)
{
    KaASF asf = skeletonFrom(kSkeleton);
    KaAMC amc = motionFrom("1\nroot 0 0 0 0 0 0\nlfemur 1 2 3\n");
    KtError("The cause.");
    EXPECT_EQ(std::string::npos, script(asf, amc, 30).find("importAMC"));
    EXPECT_EQ(errorBlock({"Unable to convert transformations to channel for "
                          "\"root\".",
                          "The cause."}),
              printedChain());
}

// The MEL script: channel numbering over the bodies of the first frame, the
// filter blocks and the time unit of every frame rate. The rest of its text
// is pinned whole by the known captures converted end to end.
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "app/MelWriter.h"
#include "support/documents.h"
#include "support/test_helpers.h"
#include "toolkit/KtError.h"

namespace
{

const std::string kFilterProcs = R"(proc string[] activeFilters()
{
  string $filters[] = `ls -type filter`;
  string $active[];
  int    $active_i=0;

  for ($f in $filters) {
    if (`filter -query -deviceEditorActive $f`) {
      $active[$active_i] = $f;
      ++$active_i;
    }
  }

  return $active;
}

proc int verifyFilters(string $filters[])
{
  string $active_filters[] = activeFilters();

  for ($f in $filters) {
    int $exists = 0;

    for ($a in $active_filters) {
      if ($a==$f) {
        $exists = 1;
        break;
      }
    }

    if (!$exists) {
      print("\n// Filter " + $f + " does not exist or is not active.\n\n");
      return 0;
    }
  }

  return 1;
}

)";

const std::string kFilterCheck = R"(  {
    string $filters[] = {"euler","simplify"};

    if (!verifyFilters($filters))
      return;
  }

)";

// createAMCDevice for the given channels, numbered from 0; a channel is
// named after its body and its usage ("root_posX lfemur_rotY").
std::string createDevice(const std::string& channels)
{
    std::string definitions;
    std::string attachments;
    int axis = 0;
    std::istringstream names(channels);
    for (std::string channel; names >> channel;)
    {
        std::string usage = channel.substr(channel.size() - 4);
        std::string body = channel.substr(0, channel.size() - 5);
        std::string attribute =
            (usage[0] == 'p' ? "translate" : "rotate") + usage.substr(3);
        definitions += "  defineVirtualDevice -channel " + channel +
                       " -usage " + usage + " -axis " + std::to_string(axis++) +
                       ";\n";
        attachments += "  attachDeviceAttr -device \"amc_device\" -axis \"" +
                       channel + "\" \"" + body + "_joint." + attribute +
                       "\";\n";
    }
    return "proc createAMCDevice()\n{\n  defineVirtualDevice -create;\n" +
           definitions + "  defineVirtualDevice -device \"amc_device\";\n\n" +
           attachments + "}\n\n";
}

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

} // namespace

// A root without translations gets no position channels; a bone with only
// ty gets all three, and the numbering runs on without gaps. A body that is
// not in the first frame gets no channels at all; a motion without frames
// (only one built in memory: the reader needs a frame number after the
// header) has none and starts at 0.
TEST(MelWriter, ChannelsAreNumberedOverTheBodiesOfTheFirstFrame)
{
    const KaASF spine = skeletonFrom(
        skeletonText("RX",
                     boneBlock("spine", "ty rz") + boneBlock("neck", "rx"),
                     "    root spine\n    spine neck\n"));
    const KaASF lfemur = skeletonFrom(kSkeleton);
    // clang-format off
    const struct { const KaASF& asf; KaAMC amc; const char* channels; const char* first; } cases[] = {
        {lfemur, motionFrom("1\nroot 0 0 0 0 0 0\nlfemur 1 2 3\n2\nroot 0 0 0 0 0 0\nlfemur 1 2 3\nlhand 4\n"),
         "root_posX root_posY root_posZ root_rotZ root_rotY root_rotX lfemur_rotX lfemur_rotY lfemur_rotZ", "1"},
        {spine, motionFrom("7\nneck 1\nroot 1\nspine 2 3\n", "RADIANS"),
         "root_rotX spine_posX spine_posY spine_posZ spine_rotZ neck_rotX", "7"},
        {lfemur, KaAMC(), "", "0"}};
    // clang-format on
    for (const auto& c : cases)
    {
        const std::string mel = script(c.asf, c.amc, 30);
        const std::string first = c.first;
        EXPECT_NE(std::string::npos,
                  mel.find("\n\n" + createDevice(c.channels) +
                           "proc int amcDeviceExists()"))
            << c.channels;
        EXPECT_NE(std::string::npos,
                  mel.find("currentTime -edit " + first +
                           ";\n    playbackOptions -minTime " + first + ";"));
    }
    EXPECT_EQ("", printedChain());
}

// Filter names add the filter procedures before importAMC, their check at
// its start and one option each to applyTake. Separators anywhere, also at
// the end, only separate names; a text of separators only means no filters.
TEST(MelWriter, FiltersAddTheirProceduresCheckAndOptions)
{
    KaASF asf = skeletonFrom(kSkeleton);
    KaAMC amc = motionFrom("1\nroot 0 0 0 0 0 0\nlfemur 1 2 3\n");
    const std::string plain = script(asf, amc, 24);
    const std::string import = "proc importAMC()\n{\n";
    const std::string apply = "applyTake -device \"amc_device\"";
    std::string filtered = plain;
    filtered.insert(filtered.find(import) + import.size(), kFilterCheck);
    filtered.insert(filtered.find(import), kFilterProcs);
    filtered.insert(filtered.find(apply) + apply.size(),
                    " -f euler -f simplify");
    EXPECT_EQ(filtered, script(asf, amc, 24, "euler simplify"));
    EXPECT_EQ(filtered, script(asf, amc, 24, "\teuler\r\n simplify  "));
    EXPECT_EQ(plain, script(asf, amc, 24, " \t "));
}

TEST(MelWriter, EveryFrameRateHasItsTimeUnit)
{
    KaASF asf = skeletonFrom(kSkeleton);
    KaAMC amc = motionFrom("1\nlfemur 1 2 3\n");
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

// The MEL script: its exact text, channel numbering over the bodies of the
// first frame, the filter blocks and the time unit of every frame rate.
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "app/MelWriter.h"
#include "documents.h"

namespace
{

const std::string kHeader = R"(//
// MEL script created by motbake version 1.1
//
// Quorvane, Inc.
//


)";

const std::string kDeviceProcs = R"(proc int amcDeviceExists()
{
  string $all_devices[] = `listInputDevices`;

  for ($device in $all_devices) {
    if ($device=="amc_device")
      return 1;
  }

  return 0;
}

proc deleteAMCDevice()
{
  defineVirtualDevice -device "amc_device" -undefine;
}

)";

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

// importAMC with the given filter check, time unit, filter options of
// applyTake and first frame.
std::string importProc(const std::string& filterCheck,
                       const std::string& unit,
                       const std::string& applyFilters,
                       const std::string& frame)
{
    return "proc importAMC()\n{\n" + filterCheck + R"(  if (amcDeviceExists())
    deleteAMCDevice();

  createAMCDevice;
  print("\n// Select MOV file to import.\n");

  string $mov_file = `fileDialog`;

  if (""!=$mov_file) {
    currentUnit -time )" +
           unit + R"(;
    readTake -device "amc_device" -angle "degree" -linear "inch" -take $mov_file;
    applyTake -device "amc_device")" +
           applyFilters + ";\n    currentTime -edit " + frame +
           ";\n    playbackOptions -minTime " + frame + R"(;
    fitAllPanels -all;
  }

  deleteAMCDevice;
}

importAMC;
)";
}

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

TEST(MelWriter, WritesTheWholeScriptForRootAndBonesOfTheFirstFrame)
{
    KaASF asf = skeletonFrom(kSkeleton);
    // lhand is not in the first frame, so it gets no channels at all.
    KaAMC amc = motionFrom("1\nroot 0 0 0 0 0 0\nlfemur 1 2 3\n"
                           "2\nroot 0 0 0 0 0 0\nlfemur 1 2 3\nlhand 4\n");
    std::string device =
        createDevice("root_posX root_posY root_posZ root_rotZ root_rotY "
                     "root_rotX lfemur_rotX lfemur_rotY lfemur_rotZ");
    std::string mel = script(asf, amc, 24, "euler simplify");
    EXPECT_EQ(
        kHeader + device + kDeviceProcs + kFilterProcs +
            importProc(kFilterCheck, "film", " -f euler -f simplify", "1"),
        mel);
    EXPECT_NE(std::string::npos,
              mel.find("  attachDeviceAttr -device \"amc_device\" -axis "
                       "\"lfemur_rotY\" \"lfemur_joint.rotateY\";\n"));
    // Separators anywhere, also at the end, only separate names; a text of
    // separators only means no filters.
    EXPECT_EQ(mel, script(asf, amc, 24, "\teuler\r\n simplify  "));
    EXPECT_EQ(kHeader + device + kDeviceProcs + importProc("", "ntsc", "", "1"),
              script(asf, amc, 30, " \t "));
    EXPECT_EQ("", printedChain());
}

TEST(MelWriter, PositionChannelsComeInThreesForAnyTranslation)
{
    // A root without translations gets none; a bone with only ty gets all
    // three, and the numbering runs on without gaps.
    KaASF asf = skeletonFrom(
        skeletonText("RX",
                     boneBlock("spine", "ty rz") + boneBlock("neck", "rx"),
                     "    root spine\n    spine neck\n"));
    KaAMC amc = motionFrom("7\nneck 1\nroot 1\nspine 2 3\n", "RADIANS");
    EXPECT_EQ(kHeader +
                  createDevice("root_rotX spine_posX spine_posY spine_posZ "
                               "spine_rotZ neck_rotX") +
                  kDeviceProcs + importProc("", "ntsc", "", "7"),
              script(asf, amc, 30));
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

TEST(MelWriter, AMotionWithoutFramesHasNoChannelsAndStartsAtZero)
{
    // Only a motion built in memory can have no frames: the reader needs
    // at least a frame number after the header.
    EXPECT_EQ(kHeader + createDevice("") + kDeviceProcs +
                  importProc("", "ntsc", "", "0"),
              script(skeletonFrom(kSkeleton), KaAMC(), 30));
}

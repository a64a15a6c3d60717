// The MEL script: its exact text, channel numbering over the bodies of the
// first frame, the filter blocks and the time unit of every frame rate.
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "app/MelWriter.h"
#include "documents.h"
#include "support/test_helpers.h"
#include "toolkit/KtError.h"

namespace
{

const std::string kHeader = "//\n"
                            "// MEL script created by motbake version 1.1\n"
                            "//\n"
                            "// Quorvane, Inc.\n"
                            "//\n"
                            "\n"
                            "\n";

const std::string kDeviceProcs =
    "proc int amcDeviceExists()\n"
    "{\n"
    "  string $all_devices[] = `listInputDevices`;\n"
    "\n"
    "  for ($device in $all_devices) {\n"
    "    if ($device==\"amc_device\")\n"
    "      return 1;\n"
    "  }\n"
    "\n"
    "  return 0;\n"
    "}\n"
    "\n"
    "proc deleteAMCDevice()\n"
    "{\n"
    "  defineVirtualDevice -device \"amc_device\" -undefine;\n"
    "}\n"
    "\n";

const std::string kFilterProcs =
    "proc string[] activeFilters()\n"
    "{\n"
    "  string $filters[] = `ls -type filter`;\n"
    "  string $active[];\n"
    "  int    $active_i=0;\n"
    "\n"
    "  for ($f in $filters) {\n"
    "    if (`filter -query -deviceEditorActive $f`) {\n"
    "      $active[$active_i] = $f;\n"
    "      ++$active_i;\n"
    "    }\n"
    "  }\n"
    "\n"
    "  return $active;\n"
    "}\n"
    "\n"
    "proc int verifyFilters(string $filters[])\n"
    "{\n"
    "  string $active_filters[] = activeFilters();\n"
    "\n"
    "  for ($f in $filters) {\n"
    "    int $exists = 0;\n"
    "\n"
    "    for ($a in $active_filters) {\n"
    "      if ($a==$f) {\n"
    "        $exists = 1;\n"
    "        break;\n"
    "      }\n"
    "    }\n"
    "\n"
    "    if (!$exists) {\n"
    "      print(\"\\n// Filter \" + $f + \" does not exist or is not "
    "active.\\n\\n\");\n"
    "      return 0;\n"
    "    }\n"
    "  }\n"
    "\n"
    "  return 1;\n"
    "}\n"
    "\n";

// importAMC with the given filter check, time unit, applyTake line and first
// frame.
std::string importProc(const std::string& filterCheck,
                       const std::string& unit,
                       const std::string& applyTake,
                       const std::string& frame)
{
    return "proc importAMC()\n"
           "{\n" +
           filterCheck +
           "  if (amcDeviceExists())\n"
           "    deleteAMCDevice();\n"
           "\n"
           "  createAMCDevice;\n"
           "  print(\"\\n// Select MOV file to import.\\n\");\n"
           "\n"
           "  string $mov_file = `fileDialog`;\n"
           "\n"
           "  if (\"\"!=$mov_file) {\n"
           "    currentUnit -time " +
           unit +
           ";\n"
           "    readTake -device \"amc_device\" -angle \"degree\" -linear "
           "\"inch\" -take $mov_file;\n" +
           applyTake + "    currentTime -edit " + frame +
           ";\n"
           "    playbackOptions -minTime " +
           frame +
           ";\n"
           "    fitAllPanels -all;\n"
           "  }\n"
           "\n"
           "  deleteAMCDevice;\n"
           "}\n"
           "\n"
           "importAMC;\n";
}

const std::string kNoFilterApply = "    applyTake -device \"amc_device\";\n";

// The root with all six DOFs (rotations in z, y, x order) and lfemur.
const std::string kTwoBodySkeleton =
    skeletonText("TX TY TZ RZ RY RX",
                 boneBlock("lfemur", "rx ry rz") + boneBlock("lhand", "rx"),
                 "    root lfemur\n    lfemur lhand\n");

std::string
script(const KaASF& asf, const KaAMC& amc, int fps, const char* filters = "")
{
    theFilterText = filters;
    std::ostringstream out;
    writeMELScript(out, asf, amc, fps);
    theFilterText = "";
    return out.str();
}

std::string createDevice(const std::string& definitions,
                         const std::string& attachments)
{
    return "proc createAMCDevice()\n"
           "{\n"
           "  defineVirtualDevice -create;\n" +
           definitions + "  defineVirtualDevice -device \"amc_device\";\n\n" +
           attachments + "}\n\n";
}

std::string definition(const std::string& channel, int axis)
{
    std::string usage = channel.substr(channel.size() - 4);
    return "  defineVirtualDevice -channel " + channel + " -usage " + usage +
           " -axis " + std::to_string(axis) + ";\n";
}

std::string attachment(const std::string& channel, const std::string& attr)
{
    return "  attachDeviceAttr -device \"amc_device\" -axis \"" + channel +
           "\" \"" + attr + "\";\n";
}

} // namespace

TEST(MelWriter, WritesTheWholeScriptForRootAndBonesOfTheFirstFrame)
{
    KaASF asf = skeletonFrom(kTwoBodySkeleton);
    // lhand is not in the first frame, so it gets no channels at all.
    KaAMC amc = motionFrom(":FULLY-SPECIFIED\n:DEGREES\n"
                           "1\nroot 0 0 0 0 0 0\nlfemur 1 2 3\n"
                           "2\nroot 0 0 0 0 0 0\nlfemur 1 2 3\nlhand 4\n");
    std::string definitions =
        definition("root_posX", 0) + definition("root_posY", 1) +
        definition("root_posZ", 2) + definition("root_rotZ", 3) +
        definition("root_rotY", 4) + definition("root_rotX", 5) +
        definition("lfemur_rotX", 6) + definition("lfemur_rotY", 7) +
        definition("lfemur_rotZ", 8);
    std::string attachments =
        attachment("root_posX", "root_joint.translateX") +
        attachment("root_posY", "root_joint.translateY") +
        attachment("root_posZ", "root_joint.translateZ") +
        attachment("root_rotZ", "root_joint.rotateZ") +
        attachment("root_rotY", "root_joint.rotateY") +
        attachment("root_rotX", "root_joint.rotateX") +
        attachment("lfemur_rotX", "lfemur_joint.rotateX") +
        attachment("lfemur_rotY", "lfemur_joint.rotateY") +
        attachment("lfemur_rotZ", "lfemur_joint.rotateZ");
    EXPECT_EQ(kHeader + createDevice(definitions, attachments) + kDeviceProcs +
                  importProc("", "ntsc", kNoFilterApply, "1"),
              script(asf, amc, 30));
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
    KaAMC amc = motionFrom(
        ":FULLY-SPECIFIED\n:RADIANS\n7\nneck 1\nroot 1\nspine 2 3\n");
    std::string definitions =
        definition("root_rotX", 0) + definition("spine_posX", 1) +
        definition("spine_posY", 2) + definition("spine_posZ", 3) +
        definition("spine_rotZ", 4) + definition("neck_rotX", 5);
    std::string attachments =
        attachment("root_rotX", "root_joint.rotateX") +
        attachment("spine_posX", "spine_joint.translateX") +
        attachment("spine_posY", "spine_joint.translateY") +
        attachment("spine_posZ", "spine_joint.translateZ") +
        attachment("spine_rotZ", "spine_joint.rotateZ") +
        attachment("neck_rotX", "neck_joint.rotateX");
    std::string mel = script(asf, amc, 30);
    EXPECT_EQ(0,
              mel.compare(kHeader.size(),
                          std::string::npos,
                          createDevice(definitions, attachments) +
                              kDeviceProcs +
                              importProc("", "ntsc", kNoFilterApply, "7")));
}

TEST(MelWriter, FiltersAddTheirProceduresCheckAndApplyOrder)
{
    KaASF asf = skeletonFrom(kTwoBodySkeleton);
    KaAMC amc = motionFrom(":FULLY-SPECIFIED\n:DEGREES\n1\nlfemur 1 2 3\n");
    std::string definitions = definition("lfemur_rotX", 0) +
                              definition("lfemur_rotY", 1) +
                              definition("lfemur_rotZ", 2);
    std::string attachments =
        attachment("lfemur_rotX", "lfemur_joint.rotateX") +
        attachment("lfemur_rotY", "lfemur_joint.rotateY") +
        attachment("lfemur_rotZ", "lfemur_joint.rotateZ");
    std::string filterCheck = "  {\n"
                              "    string $filters[] = "
                              "{\"euler\",\"simplify\"};\n"
                              "\n"
                              "    if (!verifyFilters($filters))\n"
                              "      return;\n"
                              "  }\n"
                              "\n";
    std::string expected =
        kHeader + createDevice(definitions, attachments) + kDeviceProcs +
        kFilterProcs +
        importProc(filterCheck,
                   "film",
                   "    applyTake -device \"amc_device\" -f euler -f "
                   "simplify;\n",
                   "1");
    EXPECT_EQ(expected, script(asf, amc, 24, "euler simplify"));
    // Separators anywhere, also at the end, only separate names.
    EXPECT_EQ(expected, script(asf, amc, 24, "\teuler\r\n simplify  "));
}

TEST(MelWriter, ATextOfSeparatorsOnlyMeansNoFilters)
{
    KaASF asf = skeletonFrom(kTwoBodySkeleton);
    KaAMC amc = motionFrom(":FULLY-SPECIFIED\n:DEGREES\n1\nlfemur 1 2 3\n");
    EXPECT_EQ(script(asf, amc, 24), script(asf, amc, 24, " \t "));
}

TEST(MelWriter, EveryFrameRateHasItsTimeUnit)
{
    KaASF asf = skeletonFrom(kTwoBodySkeleton);
    KaAMC amc = motionFrom(":FULLY-SPECIFIED\n:DEGREES\n1\nlfemur 1 2 3\n");
    const struct
    {
        int fps;
        const char* unit;
    } rates[] = {{15, "game"},
                 {24, "film"},
                 {25, "pal"},
                 {30, "ntsc"},
                 {48, "show"},
                 {50, "palf"},
                 {60, "ntscf"}};
    for (const auto& rate : rates)
        EXPECT_NE(std::string::npos,
                  script(asf, amc, rate.fps)
                      .find(std::string("    currentUnit -time ") + rate.unit +
                            ";\n    readTake"))
            << rate.fps;
}

TEST(MelWriter, AMotionWithoutFramesHasNoChannelsAndStartsAtZero)
{
    // Only a motion built in memory can have no frames: the reader needs
    // at least a frame number after the header.
    KaASF asf = skeletonFrom(kTwoBodySkeleton);
    KaAMC amc;
    EXPECT_EQ(kHeader + createDevice("", "") + kDeviceProcs +
                  importProc("", "ntsc", kNoFilterApply, "0"),
              script(asf, amc, 30));
}

TEST(MelWriter, HasTranslationDOFLooksAtTranslationsOnly)
{
    KaASFDOFGroup group;
    EXPECT_FALSE(hasTranslationDOF(group));
    group.addDOF(kDofL);
    group.addDOF(kDofRX);
    EXPECT_FALSE(hasTranslationDOF(group));
    group.addDOF(kDofTZ);
    EXPECT_TRUE(hasTranslationDOF(group));
}

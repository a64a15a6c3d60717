// The built rigbake: exit status, both output streams and its script.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "e2e/e2e_runner.h"
#include "support/test_helpers.h"

namespace
{

const std::string kBanner = "\nrigbake version 1.0\n\n"
                            "Copyright (c) Quorvane, Inc.  All rights "
                            "reserved.\n";

const std::string kUsage = "     rigbake [-h] [-copyright] [-f]\n"
                           "             <asf_file> <mel_file>\n";

} // namespace

TEST(Rigbake, WritesTheExampleRigExactlyAsExpected)
{
    TempDir dir;
    const std::string asf = EXAMPLES_DIR "/human.asf";
    const std::string mel = dir.file("human_rig.mel");
    RunResult run = runProgram(RIGBAKE_BIN, {"-f", asf, mel});
    EXPECT_EQ(0, run.status);
    EXPECT_EQ("", run.err);
    EXPECT_EQ(kBanner + reading(asf) + writing(mel), run.out);
    EXPECT_EQ(readFile(EXAMPLES_DIR "/expected/human_rig.mel"), readFile(mel));
}

// rigbake's own help texts and argument count on the start it shares with
// motbake.
TEST(Rigbake, HelpTextsAndArgumentCount)
{
    const std::string count = "ERROR: Invalid number of arguments.\n";
    const std::string manual = "\nNAME\n     rigbake - build a skeleton in "
                               "Maya(tm) for motbake's data.\n\nSYNOPSIS\n" +
                               kUsage;
    // clang-format off
    const struct { std::vector<std::string> args; int status; std::string out, err; } cases[] = {
        {{}, 0, "\nUSAGE\n" + kUsage + "\nVERSION\n  1.0\n\n", ""},
        {{"-H"}, 0, manual, ""},
        {{"a.asf", "b.mel", "-f"}, 1, kBanner, count}};
    // clang-format on
    for (const auto& c : cases)
    {
        RunResult run = runProgram(RIGBAKE_BIN, c.args);
        EXPECT_EQ(c.status, run.status) << c.args.size();
        EXPECT_EQ(c.out, run.out.substr(0, c.out.size()));
        EXPECT_EQ(c.err, run.err);
    }
}

// A skeleton that cannot have a rig is refused before the overwrite
// question, and the skeleton is never its own script: nothing is written.
TEST(Rigbake, RefusesBeforeWritingAnything)
{
    TempDir dir;
    const std::string asf = dir.file("body.asf");
    const std::string mel = dir.file("rig.mel");
    const std::string skeleton =
        skeletonText("TX TY TZ", boneBlock("l\"arm"), "    root l\"arm\n");
    writeFile(asf, skeleton);
    writeFile(mel, "keep me");
    const std::string refused =
        "Unable to make a rig of \"" + asf + "\": nothing was written.";
    const std::string same = "The output \"" + asf + "\" is the input \"" +
                             asf + "\": nothing was written.";
    // clang-format off
    const struct { std::vector<std::string> args; std::string out, err; } cases[] = {
        {{asf, mel}, kBanner + reading(asf), errorBlock({refused.c_str(),
             "Bone \"l\"arm\": its name cannot name a Maya joint (letters, digits and underscores only, not a digit first)."})},
        {{"-f", asf, asf}, kBanner, errorBlock({same.c_str()})}};
    // clang-format on
    for (const auto& c : cases)
    {
        RunResult run = runProgram(RIGBAKE_BIN, c.args);
        EXPECT_EQ(1, run.status);
        EXPECT_EQ(c.out, run.out);
        EXPECT_EQ(c.err, run.err);
        EXPECT_EQ("keep me", readFile(mel));
        EXPECT_EQ(skeleton, readFile(asf));
    }
}

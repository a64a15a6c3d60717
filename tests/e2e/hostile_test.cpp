// Hostile inputs through the real converter.
#include <cstdlib>
#include <string>

#include <gtest/gtest.h>

#include "e2e/e2e_runner.h"
#include "support/test_helpers.h"
#include "toolkit/KtFile.h"

TEST(MotbakeHostile, TwinInputsConvertToTheSameFiles)
{
    const std::string human = readFile(EXAMPLES_DIR "/human.asf");
    const std::string walk = readFile(EXAMPLES_DIR "/walk.amc");
    const std::string motion = kMotionHeader +
                               "1\nroot 1 2 3 4 5 6\narm 7 8 9\n" +
                               "2\nroot 0 1 0 1 0 1\narm 1 1 1\n";
    const std::string strangers =
        kMotionHeader + "1\nroot 1 2 3 4 5 6\nghost 1 2\narm 7 8 9\nlegs\n" +
        "2\nroot 0 1 0 1 0 1\nghost 3 4\narm 1 1 1\nlegs 5 6 7 8\n";
    // clang-format off
    const struct { const char* what; std::string skeleton[2]; std::string motion[2]; } cases[] = {
        {"Windows line ends in both files", {human, withCRLF(human)}, {walk, withCRLF(walk)}},
        {"motion bones that the skeleton lacks", {kArmSkeleton, kArmSkeleton}, {motion, strangers}}};
    // clang-format on
    for (const auto& c : cases)
    {
        SCOPED_TRACE(c.what);
        Conversion plain(c.motion[0], c.skeleton[0]);
        Conversion twin(c.motion[1], c.skeleton[1]);
        RunResult plainRun = plain.run();
        RunResult twinRun = twin.run();
        EXPECT_EQ(0, plainRun.status);
        EXPECT_EQ(0, twinRun.status);
        EXPECT_EQ(plainRun.err, twinRun.err);
        EXPECT_EQ(readFile(plain.mel), readFile(twin.mel));
        EXPECT_EQ(readFile(plain.mov), readFile(twin.mov));
    }
}

// Bodies the skeleton does not have get no channels; the root alone is
// converted.
TEST(MotbakeHostile, ASkeletonWithoutBonesConvertsTheRoot)
{
    const std::string rootOnly =
        ":version 1.10\n:root\n  order TX TY TZ RX RY RZ\n  axis XYZ\n"
        ":hierarchy\n  begin\n  end\n";
    Conversion job(kMotionHeader + "1\nroot 1 2 3 4 5 6\narm 7 8 9\n",
                   rootOnly);
    RunResult run = job.run();
    EXPECT_EQ(0, run.status);
    EXPECT_EQ("", run.err);
    EXPECT_EQ("0.0333333 1 2 3 4 5 6 \n", readFile(job.mov));
    EXPECT_EQ(std::string::npos, readFile(job.mel).find("arm"));
}

// Reading, evaluating and writing walk the hierarchy without recursion, and
// the per-frame path neither walks the chain nor searches the frame for
// every body, which would take minutes here (the test's time limit catches
// that). Each bone stands one bone length from its parent's origin, then
// its own translation; the first one hangs from the root.
TEST(MotbakeHostile, AChain100000TranslatingBonesDeepConverts)
{
    const int depth = 100000;
    std::string bones;
    std::string hierarchy = "    root b0\n";
    std::string motion = kMotionHeader + "1\nroot 0 0 0 0 0 0\n";
    std::string mov = "0.0333333 0 0 0 0 0 0 1 0 0 ";
    for (int i = 0; i < depth; ++i)
    {
        const std::string name = "b" + std::to_string(i);
        bones += boneBlock(name, "tx");
        if (i > 0)
        {
            hierarchy += "    b" + std::to_string(i - 1) + " " + name + "\n";
            mov += "2 0 0 ";
        }
        motion += name + " 1\n";
    }
    Conversion job(motion, skeletonText("TX TY TZ RX RY RZ", bones, hierarchy));
    RunResult run = job.run();
    EXPECT_EQ(0, run.status);
    EXPECT_EQ("", run.err);
    EXPECT_TRUE(readFile(job.mov) == mov + "\n");
}

// A value that is no number for a stream (nan, inf, 1e39) ends the line's
// values; the run then fails instead of converting fewer values. Frame
// numbers at the limits of int convert.
TEST(MotbakeHostile, MotionsAtTheEdgesConvertOrFailClearly)
{
    const std::string arm = "\nroot 0 0 0 0 0 0\narm 1 2 3\n";
    // clang-format off
    const struct { std::string frames; int status; std::string mov; } cases[] = {
        {"-2147483648" + arm + "2147483647" + arm, 0, "-7.15828e+07 0 0 0 0 0 0 1 2 3 \n7.15828e+07 0 0 0 0 0 0 1 2 3 \n"},
        {"0\nroot 0 0 0 0 0 0\narm 1 nan 3\n", 1, "0 0 0 0 0 0 0 "},
        {"0\nroot 0 0 0 1e39 0 0\narm 1 2 3\n", 1, "0 "}};
    // clang-format on
    for (const auto& c : cases)
    {
        SCOPED_TRACE(c.frames);
        Conversion job(kMotionHeader + c.frames);
        RunResult run = job.run();
        EXPECT_EQ(c.status, run.status);
        EXPECT_EQ(c.mov, readFile(job.mov));
        EXPECT_EQ(c.status != 0,
                  run.err.find("ERROR: Unable to save \"" + job.mov) !=
                      std::string::npos);
    }
}

// A compressed input whose command fails (here a damaged checksum, after
// all the data came through) is a failed read, not a shorter input.
TEST(MotbakeHostile, ADamagedCompressedInputFailsTheRead)
{
    for (bool damageSkeleton : {true, false})
    {
        SCOPED_TRACE(damageSkeleton ? "skeleton" : "motion");
        Conversion job(kMotionHeader + "1\nroot 1 2 3 4 5 6\narm 7 8 9\n");
        std::string& damaged = damageSkeleton ? job.asf : job.amc;
        ASSERT_EQ(0, std::system(("gzip -n " + damaged).c_str()));
        damaged += ".gz";
        std::string packed = readFile(damaged);
        packed[packed.size() - 8] ^= 0x55; // the checksum of the data
        writeFile(damaged, packed);
        RunResult run = job.run();
        EXPECT_EQ(1, run.status);
        // clang-format off
        const std::string reading = "Unable to read '" + damaged + "'.";
        const std::string status = "'gunzip' ended with status 1 on '" + damaged + "'.";
        const std::string chain = errorBlock({reading.c_str(), "Unable to decompress file.", status.c_str()});
        // clang-format on
        EXPECT_NE(std::string::npos, run.err.find(chain)) << run.err;
        EXPECT_EQ(std::string::npos, run.out.find(damaged + " ...done."));
        EXPECT_FALSE(KtFileExists(job.mel.c_str()));
    }
}

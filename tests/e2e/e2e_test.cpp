// The built motbake: exit status, both output streams and its files.
#include <cstdlib>
#include <string>
#include <unistd.h>
#include <vector>

#include <gtest/gtest.h>

#include "e2e/e2e_runner.h"
#include "support/test_helpers.h"
#include "toolkit/KtFile.h"

namespace
{

const std::string kBanner = "\nmotbake version 1.1\n\n"
                            "Copyright (c) Quorvane, Inc.  All rights "
                            "reserved.\n";

const std::string kMov = "0.0333333 1 2 3 0 0 0 10 20 30 \n"
                         "0.0666667 1 2 3 0 0 0 10 20 30 \n";

const std::string kAsk = "Overwrite? [Y/N] ";

std::string prompt(const std::string& path)
{
    return "\nOutput file '" + path + "' exists.\n" + kAsk;
}

// Standard output up to the end of reading both inputs.
std::string readBoth(const Conversion& job)
{
    return kBanner + reading(job.asf) + reading(job.amc);
}

} // namespace

// The bundled example (plain, .gz and .Z), the benchmark's human skeleton
// with and without eight translating bones, and a capture of quirky names,
// translating bones and a length unit converted with filters: byte for byte.
TEST(Motbake, ConvertsTheKnownCapturesExactlyAsBefore)
{
    const std::string walk = EXAMPLES_DIR "/human.asf";
    const std::string amc = EXAMPLES_DIR "/walk.amc";
    const std::string expected = EXAMPLES_DIR "/expected/walk";
    const std::string quirky = TEST_DATA_DIR "/quirky/quirky";
    const std::string standard = BENCH_GOLDEN_DIR "/bench_standard";
    const std::string moving = BENCH_GOLDEN_DIR "/bench_translating";
    TempDir packed;
    const std::string gz = packed.file("human.asf.gz");
    const std::string z = packed.file("walk.amc.Z");
    ASSERT_EQ(0, std::system(("gzip -c " + walk + " >" + gz).c_str()));
    ASSERT_EQ(0, std::system(("compress -c " + amc + " >" + z).c_str()));
    // clang-format off
    const struct { std::vector<std::string> options; std::string asf, amc, fps, expected; } captures[] = {
        {{}, walk, amc, "30", expected}, {{}, gz, z, "30", expected},
        {{}, standard + ".asf", standard + ".amc", "30", standard},
        {{}, moving + ".asf", moving + ".amc", "30", moving},
        {{"-filter", "euler simplify"}, quirky + ".asf", quirky + ".amc", "24", quirky}};
    // clang-format on
    for (const auto& c : captures)
    {
        SCOPED_TRACE(c.asf);
        TempDir dir;
        std::string mel = dir.file("out.mel");
        std::string mov = dir.file("out.mov");
        std::vector<std::string> args = c.options;
        args.insert(args.end(), {"-f", c.asf, c.amc, c.fps, mel, mov});
        RunResult run = runMotbake(args);
        EXPECT_EQ(0, run.status);
        EXPECT_EQ("", run.err);
        EXPECT_EQ(kBanner + reading(c.asf) + reading(c.amc) + writing(mel) +
                      writing(mov),
                  run.out);
        EXPECT_EQ(readFile(c.expected + ".mel"), readFile(mel));
        EXPECT_EQ(readFile(c.expected + ".mov"), readFile(mov));
    }
}

// "n" leaves a file and the run goes on; each answer is the first
// non-blank character typed, and an unclear one is asked for again without
// the heading; the end of input counts as "no".
TEST(Motbake, AsksBeforeOverwriting)
{
    Conversion job;
    writeFile(job.mel, "keep me");
    RunResult run = job.run("n\n", false);
    EXPECT_EQ(0, run.status);
    EXPECT_EQ("", run.err);
    EXPECT_EQ(readBoth(job) + prompt(job.mel) + writing(job.mov), run.out);
    EXPECT_EQ(kMov, readFile(job.mov));

    writeFile(job.mov, "old");
    run = job.run("n x\nY\n", false);
    EXPECT_EQ(readBoth(job) + prompt(job.mel) + prompt(job.mov) + kAsk +
                  writing(job.mov),
              run.out);
    EXPECT_EQ(kMov, readFile(job.mov));

    writeFile(job.mov, "old");
    run = job.run("", false);
    EXPECT_EQ(0, run.status);
    EXPECT_EQ(readBoth(job) + prompt(job.mel) + "\n" + prompt(job.mov) + "\n",
              run.out);
    EXPECT_EQ("keep me", readFile(job.mel));
    EXPECT_EQ("old", readFile(job.mov));
}

// A bad input stops the run after "Reading file: ", without "done.", an
// unreadable one before it is read.
TEST(Motbake, AnInputThatFailsStopsTheRunWithItsChain)
{
    Conversion job(":FULLY-SPECIFIED\n1\nroot 1\n");
    RunResult run = job.run();
    EXPECT_EQ(1, run.status);
    EXPECT_EQ(kBanner + reading(job.asf) + "Reading file: " + job.amc + " ...",
              run.out);
    EXPECT_EQ(errorBlock({("Unable to read '" + job.amc + "'.").c_str(),
                          "File does not contain amc data.",
                          "File does not specify units."}),
              run.err);

    job.amc = job.dir.file("absent.amc");
    run = job.run();
    EXPECT_EQ(1, run.status);
    EXPECT_EQ(kBanner + reading(job.asf), run.out);
    EXPECT_EQ(errorBlock({("Unable to read \"" + job.amc + "\".").c_str(),
                          "File does not exist."}),
              run.err);
}

// A MEL file that cannot be written stops the run before the MOV file; a
// write the system refuses fails with its reason, at closing (the short MEL
// file) or while writing (a long MOV file). A bare name too long for the
// system passes the write check (bare names count as creatable) and fails
// to open.
TEST(Motbake, AnOutputThatFailsEndsTheRunWithItsReason)
{
    std::string longMotion = kMotionHeader;
    for (int frame = 1; frame <= 20000; ++frame)
        longMotion += std::to_string(frame) + "\nroot 1 2 3 0 0 0\narm 1 2 3\n";
    Conversion job(longMotion);
    const std::string mel = job.mel, mov = job.mov;
    const std::string folder = job.dir.file("no/such");
    const std::string longName = std::string(300, 'n') + ".mel";
    // clang-format off
    const std::string unwritable = "File \"" + folder + "/out.mel\" is unwritable.";
    const std::string noFolder = "Parent directory \"" + folder + "\" does not exist.";
    const std::string noOpen = "Unable to open \"" + longName + "\".";
    const std::string full = errorBlock({"Unable to save \"/dev/full\".",
                                         "The file could not be written completely: No space left on device."});
    const struct { std::string mel, mov, written, err; } cases[] = {
        {folder + "/out.mel", mov, "", errorBlock({unwritable.c_str(), noFolder.c_str()})},
        {"/dev/full", mov, writing("/dev/full"), full},
        {longName, mov, writing(longName), errorBlock({noOpen.c_str()})},
        {mel, "/dev/full", writing(mel) + writing("/dev/full"), full}};
    // clang-format on
    for (const auto& c : cases)
    {
        SCOPED_TRACE(c.mel);
        job.mel = c.mel;
        job.mov = c.mov;
        RunResult run = job.run();
        EXPECT_EQ(1, run.status);
        EXPECT_EQ(readBoth(job) + c.written, run.out);
        EXPECT_EQ(c.err, run.err);
        EXPECT_FALSE(KtFileExists(mov.c_str()));
    }
}

// The counts are compared in the first frame only, with warnings; the MOV
// file then fails at the first body whose values do not fit: the root in
// its own words, a bone as a body whose name lacks its closing quote.
TEST(Motbake, DofMismatchesWarnThenTheMovFileFails)
{
    const std::string mismatch =
        "The number of degrees of freedom in the AMC does not match the "
        "number of degrees of freedom in the ASF.";
    const std::string warnings = warningBlock(
        {"Bone \"arm\" has 3 dofs in the ASF, but the AMC specifies 2.",
         "Bone \"root\" has 6 dofs in the ASF, but the AMC specifies 3."});
    const std::string laterFrame = kArmMotion + "3\nroot 0 0 0 0 0 0\narm 1\n";
    // clang-format off
    const struct { std::string motion, warnings, body, mov; } cases[] = {
        {kMotionHeader + "1\nroot 1 2 3\narm 10 20\n", warnings, "\"root\".", "0.0333333 "},
        {laterFrame, "", "body \"arm.", kMov + "0.1 0 0 0 0 0 0 "}};
    // clang-format on
    for (const auto& c : cases)
    {
        Conversion job(c.motion);
        RunResult run = job.run();
        EXPECT_EQ(1, run.status);
        EXPECT_EQ(readBoth(job) + writing(job.mel) + writing(job.mov), run.out);
        // clang-format off
        const std::string save = "Unable to save \"" + job.mov + "\".";
        const std::string body = "Unable to convert transformations to MOV for " + c.body;
        EXPECT_EQ(c.warnings + errorBlock({save.c_str(), body.c_str(), mismatch.c_str()}), run.err);
        // clang-format on
        EXPECT_EQ(c.mov, readFile(job.mov));
    }
}

// An output that is an input or the other output, under any spelling or
// through a link, is refused before any read or write, even with -f.
TEST(Motbake, RefusesAnOutputThatIsAnInputOrTheOtherOutput)
{
    Conversion job;
    const std::string link = job.dir.file("link.amc");
    ASSERT_EQ(0, ::link(job.amc.c_str(), link.c_str()));
    const std::string dotted = job.dir.path() + "/./body.asf";
    // Neither exists yet: the folder and the name tell.
    const std::string sameMel = job.dir.path() + "//100%d %s 'x' $HOME;.mel";
    // clang-format off
    const struct { std::string mel, mov, err; } cases[] = {
        {job.amc, job.mov, "The output \"" + job.amc + "\" is the input \"" + job.amc + "\": nothing was written."},
        {job.mel, dotted, "The output \"" + dotted + "\" is the input \"" + job.asf + "\": nothing was written."},
        {link, job.mov, "The output \"" + link + "\" is the input \"" + job.amc + "\": nothing was written."},
        {job.mel, sameMel, "The outputs \"" + job.mel + "\" and \"" + sameMel + "\" are the same file: nothing was written."}};
    // clang-format on
    for (const auto& c : cases)
    {
        SCOPED_TRACE(c.err);
        RunResult run =
            runMotbake({"-f", job.asf, job.amc, "30", c.mel, c.mov});
        EXPECT_EQ(1, run.status);
        EXPECT_EQ(kBanner, run.out);
        EXPECT_EQ(errorBlock({c.err.c_str()}), run.err);
        EXPECT_EQ(kArmMotion, readFile(job.amc));
        EXPECT_FALSE(KtFileExists(job.mel.c_str()));
    }
}

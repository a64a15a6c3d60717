// Runs the built motbake binary and checks exit status, standard output,
// standard error and the files it writes, together.
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

const std::string kSkeleton =
    ":version 1.10\n:units length 1 angle deg\n"
    ":root order TX TY TZ RX RY RZ axis XYZ position 0 0 0 orientation 0 0 0\n"
    ":bonedata\n  begin name arm direction 1 0 0 length 2 axis 0 0 0 XYZ\n"
    "    dof rx ry rz end\n:hierarchy\n  begin\n    root arm\n  end\n";

const std::string kMotion = ":FULLY-SPECIFIED\n:DEGREES\n"
                            "1\nroot 1 2 3 0 0 0\narm 10 20 30\n"
                            "2\nroot 1 2 3 0 0 0\narm 10 20 30\n";

const std::string kMov = "0.0333333 1 2 3 0 0 0 10 20 30 \n"
                         "0.0666667 1 2 3 0 0 0 10 20 30 \n";

std::string reading(const std::string& path)
{
    return "Reading file: " + path + " ...done.\n";
}

std::string writing(const std::string& path)
{
    return "Writing \"" + path + "\"...done.\n";
}

const std::string kAsk = "Overwrite? [Y/N] ";

std::string prompt(const std::string& path)
{
    return "\nOutput file '" + path + "' exists.\n" + kAsk;
}

// A skeleton and a motion in a fresh folder, with the output names. These
// hold characters that a shell or a format would take specially; to the
// program they are just characters.
struct Job
{
    TempDir dir;
    std::string asf = dir.file("body.asf");
    std::string amc = dir.file("move.amc");
    std::string mel = dir.file("100%d %s 'x' $HOME;.mel");
    std::string mov = dir.file("move %n.mov");

    explicit Job(const std::string& motion = kMotion)
    {
        writeFile(asf, kSkeleton);
        writeFile(amc, motion);
    }

    // The arguments, with -f unless prompts are wanted.
    std::vector<std::string> args(bool force = true) const
    {
        std::vector<std::string> all = {asf, amc, "30", mel, mov};
        if (force)
            all.insert(all.begin(), "-f");
        return all;
    }

    // Standard output up to the end of reading both inputs.
    std::string read() const { return kBanner + reading(asf) + reading(amc); }
};

} // namespace

// The bundled example, the benchmark's two kinds of capture and a capture
// of quirky names: every value of the MOV file (positions under translating
// bones included) and the MEL file stay as they have always been written.
TEST(Motbake, ConvertsTheKnownCapturesExactlyAsBefore)
{
    const std::string examples = EXAMPLES_DIR "/";
    const std::string bench = BENCH_GOLDEN_DIR "/bench_";
    const std::string quirky = TEST_DATA_DIR "/quirky/quirky";
    // Skeleton, motion, frame rate, and the outputs' name without their
    // extension. The quirky capture holds every quirk of names that the
    // converter resolves.
    const std::string captures[][4] = {
        {examples + "human.asf",
         examples + "walk.amc",
         "30",
         examples + "expected/walk"},
        {bench + "standard.asf",
         bench + "standard.amc",
         "30",
         bench + "standard"},
        {bench + "translating.asf",
         bench + "translating.amc",
         "30",
         bench + "translating"},
        {quirky + ".asf", quirky + ".amc", "24", quirky}};
    for (const auto& [asf, amc, fps, expected] : captures)
    {
        SCOPED_TRACE(expected);
        TempDir dir;
        std::string mel = dir.file("out.mel");
        std::string mov = dir.file("out.mov");
        RunResult run = runMotbake({"-f", asf, amc, fps, mel, mov});
        EXPECT_EQ(0, run.status);
        EXPECT_EQ("", run.err);
        EXPECT_EQ(kBanner + reading(asf) + reading(amc) + writing(mel) +
                      writing(mov),
                  run.out);
        EXPECT_EQ(readFile(expected + ".mel"), readFile(mel));
        EXPECT_EQ(readFile(expected + ".mov"), readFile(mov));
    }
}

// "n" leaves a file and the run goes on; each answer is the first
// non-blank character typed, and an unclear one is asked for again without
// the heading; the end of input counts as "no".
TEST(Motbake, AsksBeforeOverwriting)
{
    Job job;
    writeFile(job.mel, "keep me");
    RunResult run = runMotbake(job.args(false), "n\n");
    EXPECT_EQ(0, run.status);
    EXPECT_EQ("", run.err);
    EXPECT_EQ(job.read() + prompt(job.mel) + writing(job.mov), run.out);
    EXPECT_EQ(kMov, readFile(job.mov));

    writeFile(job.mov, "old");
    run = runMotbake(job.args(false), "n x\nY\n");
    EXPECT_EQ(job.read() + prompt(job.mel) + prompt(job.mov) + kAsk +
                  writing(job.mov),
              run.out);
    EXPECT_EQ(kMov, readFile(job.mov));

    writeFile(job.mov, "old");
    run = runMotbake(job.args(false), "");
    EXPECT_EQ(0, run.status);
    EXPECT_EQ(job.read() + prompt(job.mel) + "\n" + prompt(job.mov) + "\n",
              run.out);
    EXPECT_EQ("keep me", readFile(job.mel));
    EXPECT_EQ("old", readFile(job.mov));
}

// A bad input stops the run after "Reading file: ", without "done.", an
// unreadable one before it is read.
TEST(Motbake, AnInputThatFailsStopsTheRunWithItsChain)
{
    Job job(":FULLY-SPECIFIED\n1\nroot 1\n");
    RunResult run = runMotbake(job.args());
    EXPECT_EQ(1, run.status);
    EXPECT_EQ(kBanner + reading(job.asf) + "Reading file: " + job.amc + " ...",
              run.out);
    EXPECT_EQ(errorBlock({("Unable to read '" + job.amc + "'.").c_str(),
                          "File does not contain amc data.",
                          "File does not specify units."}),
              run.err);

    job.amc = job.dir.file("absent.amc");
    run = runMotbake(job.args());
    EXPECT_EQ(1, run.status);
    EXPECT_EQ(kBanner + reading(job.asf), run.out);
    EXPECT_EQ(errorBlock({("Unable to read \"" + job.amc + "\".").c_str(),
                          "File does not exist."}),
              run.err);
}

// A MEL file that cannot be written stops the run before the MOV file. An
// output that the system could not take is a failure with its reason, never
// "done." alone and success, whether it shows at closing (the short MEL
// file) or while writing (a long MOV file). A bare name too long for the
// system passes the write check (bare names are taken as creatable) and
// fails to open.
TEST(Motbake, AnOutputThatFailsEndsTheRunWithItsReason)
{
    std::string longMotion = ":FULLY-SPECIFIED\n:DEGREES\n";
    for (int frame = 1; frame <= 20000; ++frame)
        longMotion += std::to_string(frame) + "\nroot 1 2 3 0 0 0\narm 1 2 3\n";
    Job job(longMotion);
    const std::string mel = job.mel;
    const std::string mov = job.mov;
    const std::string folder = job.dir.file("no/such");
    const std::string unwritable =
        "File \"" + folder + "/out.mel\" is unwritable.";
    const std::string noFolder =
        "Parent directory \"" + folder + "\" does not exist.";
    const std::string longName = std::string(300, 'n') + ".mel";
    const std::string noOpen = "Unable to open \"" + longName + "\".";
    const std::string full = errorBlock(
        {"Unable to save \"/dev/full\".",
         "The file could not be written completely: No space left on device."});
    // clang-format off
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
        RunResult run = runMotbake(job.args());
        EXPECT_EQ(1, run.status);
        EXPECT_EQ(job.read() + c.written, run.out);
        EXPECT_EQ(c.err, run.err);
        EXPECT_FALSE(KtFileExists(mov.c_str()));
    }
}

TEST(Motbake, DofMismatchesWarnThenTheMovFileFails)
{
    Job job(":FULLY-SPECIFIED\n:DEGREES\n1\nroot 1 2 3\narm 10 20\n");
    RunResult run = runMotbake(job.args());
    EXPECT_EQ(1, run.status);
    EXPECT_EQ(job.read() + writing(job.mel) + writing(job.mov), run.out);
    EXPECT_EQ(
        warningBlock({"Bone \"arm\" has 3 dofs in the ASF, but the AMC "
                      "specifies 2.",
                      "Bone \"root\" has 6 dofs in the ASF, but the AMC "
                      "specifies 3."}) +
            errorBlock({("Unable to save \"" + job.mov + "\".").c_str(),
                        "Unable to convert transformations to MOV for "
                        "\"root\".",
                        "The number of degrees of freedom in the AMC does not "
                        "match the number of degrees of freedom in the ASF."}),
        run.err);
    EXPECT_EQ("0.0333333 ", readFile(job.mov));
}

// An output that is an input or the other output, under any spelling or
// through a link, is refused before anything is read or written, even with
// -f.
TEST(Motbake, RefusesAnOutputThatIsAnInputOrTheOtherOutput)
{
    Job job;
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
        EXPECT_EQ(kMotion, readFile(job.amc));
        EXPECT_FALSE(KtFileExists(job.mel.c_str()));
    }
}

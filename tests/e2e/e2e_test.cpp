// Runs the built motbake binary and checks exit status, standard output,
// standard error and the files it writes, together.
#include <string>
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

const std::string kSkeleton = ":version 1.10\n"
                              ":units\n  length 1\n  angle deg\n"
                              ":root\n  order TX TY TZ RX RY RZ\n  axis XYZ\n"
                              "  position 0 0 0\n  orientation 0 0 0\n"
                              ":bonedata\n"
                              "  begin name arm direction 1 0 0 length 2\n"
                              "    axis 0 0 0 XYZ dof rx ry rz end\n"
                              ":hierarchy\n  begin\n    root arm\n  end\n";

const std::string kMotion = ":FULLY-SPECIFIED\n:DEGREES\n"
                            "1\nroot 1 2 3 0 0 0\narm 10 20 30\n"
                            "2\nroot 1 2 3 0 0 0\narm 10 20 30\n";

std::string reading(const std::string& path)
{
    return "Reading file: " + path + " ...done.\n";
}

std::string writing(const std::string& path)
{
    return "Writing \"" + path + "\"...done.\n";
}

std::string prompt(const std::string& path, int times)
{
    std::string text = "\nOutput file '" + path + "' exists.\n";
    for (int i = 0; i < times; ++i)
        text += "Overwrite? [Y/N] ";
    return text;
}

// A skeleton and a motion in a fresh folder, with the output names.
struct Job
{
    TempDir dir;
    std::string asf = dir.file("body.asf");
    std::string amc = dir.file("move.amc");
    std::string mel = dir.file("move.mel");
    std::string mov = dir.file("move.mov");

    explicit Job(const std::string& skeleton = kSkeleton,
                 const std::string& motion = kMotion)
    {
        writeFile(asf, skeleton);
        writeFile(amc, motion);
    }

    std::vector<std::string> args(bool force = true) const
    {
        std::vector<std::string> all = {asf, amc, "30", mel, mov};
        if (force)
            all.insert(all.begin(), "-f");
        return all;
    }
};

} // namespace

TEST(Motbake, NoArgumentsPrintsUsage)
{
    RunResult run = runMotbake({});
    EXPECT_EQ(0, run.status);
    EXPECT_NE(std::string::npos, run.out.find("\nUSAGE\n"));
    EXPECT_EQ("", run.err);
}

TEST(Motbake, InvalidOptionFailsWithStatusOne)
{
    RunResult run = runMotbake({"-x"});
    EXPECT_EQ(1, run.status);
    EXPECT_EQ("", run.out);
    EXPECT_EQ("\nERROR: Invalid option -x\n", run.err);
}

TEST(Motbake, ConvertsTheExampleExactlyAsBefore)
{
    TempDir dir;
    std::string asf = EXAMPLES_DIR "/human.asf";
    std::string amc = EXAMPLES_DIR "/walk.amc";
    std::string mel = dir.file("walk.mel");
    std::string mov = dir.file("walk.mov");
    RunResult run = runMotbake({"-f", asf, amc, "30", mel, mov});
    EXPECT_EQ(0, run.status);
    EXPECT_EQ("", run.err);
    EXPECT_EQ(kBanner + reading(asf) + reading(amc) + writing(mel) +
                  writing(mov),
              run.out);
    EXPECT_EQ(readFile(EXAMPLES_DIR "/expected/walk.mel"), readFile(mel));
    EXPECT_EQ(readFile(EXAMPLES_DIR "/expected/walk.mov"), readFile(mov));
}

// The benchmark's two kinds of capture, short: every value of the MOV file
// (positions under translating bones included) and the MEL file stay as
// they were written before the converter was made fast.
TEST(Motbake, ConvertsTheBenchmarkCapturesExactlyAsBefore)
{
    for (const std::string variant : {"bench_standard", "bench_translating"})
    {
        SCOPED_TRACE(variant);
        TempDir dir;
        std::string golden = BENCH_GOLDEN_DIR "/" + variant;
        std::string mel = dir.file(variant + ".mel");
        std::string mov = dir.file(variant + ".mov");
        RunResult run = runMotbake(
            {"-f", golden + ".asf", golden + ".amc", "30", mel, mov});
        EXPECT_EQ(0, run.status);
        EXPECT_EQ("", run.err);
        EXPECT_EQ(readFile(golden + ".mel"), readFile(mel));
        EXPECT_EQ(readFile(golden + ".mov"), readFile(mov));
    }
}

TEST(Motbake, DecliningAnOverwriteLeavesTheFileAndGoesOn)
{
    Job job;
    writeFile(job.mel, "keep me");
    RunResult run = runMotbake(job.args(false), "n\n");
    EXPECT_EQ(0, run.status);
    EXPECT_EQ("", run.err);
    EXPECT_EQ(kBanner + reading(job.asf) + reading(job.amc) +
                  prompt(job.mel, 1) + writing(job.mov),
              run.out);
    EXPECT_EQ("keep me", readFile(job.mel));
    EXPECT_EQ("0.0333333 1 2 3 0 0 0 10 20 30 \n"
              "0.0666667 1 2 3 0 0 0 10 20 30 \n",
              readFile(job.mov));
}

TEST(Motbake, AnUnclearAnswerIsAskedAgainWithoutTheHeading)
{
    Job job;
    writeFile(job.mov, "old");
    RunResult run = runMotbake(job.args(false), "x\nY\n");
    EXPECT_EQ(0, run.status);
    EXPECT_EQ(kBanner + reading(job.asf) + reading(job.amc) + writing(job.mel) +
                  prompt(job.mov, 2) + writing(job.mov),
              run.out);
    EXPECT_NE("old", readFile(job.mov));
}

TEST(Motbake, EndOfInputAtThePromptCountsAsNo)
{
    Job job;
    writeFile(job.mel, "mel");
    writeFile(job.mov, "mov");
    RunResult run = runMotbake(job.args(false), "");
    EXPECT_EQ(0, run.status);
    EXPECT_EQ(kBanner + reading(job.asf) + reading(job.amc) +
                  prompt(job.mel, 1) + "\n" + prompt(job.mov, 1) + "\n",
              run.out);
    EXPECT_EQ("mel", readFile(job.mel));
    EXPECT_EQ("mov", readFile(job.mov));
}

TEST(Motbake, AMissingInputStopsBeforeReading)
{
    Job job;
    std::string missing = job.dir.file("absent.amc");
    RunResult run =
        runMotbake({"-f", job.asf, missing, "30", job.mel, job.mov});
    EXPECT_EQ(1, run.status);
    EXPECT_EQ(kBanner + reading(job.asf), run.out);
    EXPECT_EQ(errorBlock({("Unable to read \"" + missing + "\".").c_str(),
                          "File does not exist."}),
              run.err);
}

TEST(Motbake, AReadErrorShowsTheReadersChain)
{
    Job job(kSkeleton, ":FULLY-SPECIFIED\n1\nroot 1\n");
    RunResult run = runMotbake(job.args());
    EXPECT_EQ(1, run.status);
    EXPECT_EQ(kBanner + reading(job.asf) + "Reading file: " + job.amc + " ...",
              run.out);
    EXPECT_EQ(errorBlock({("Unable to read '" + job.amc + "'.").c_str(),
                          "File does not contain amc data.",
                          "File does not specify units."}),
              run.err);
}

TEST(Motbake, AnUnwritableOutputFolderFailsWithItsReason)
{
    Job job;
    std::string folder = job.dir.file("no/such");
    std::string mel = folder + "/out.mel";
    RunResult run = runMotbake({"-f", job.asf, job.amc, "30", mel, job.mov});
    EXPECT_EQ(1, run.status);
    EXPECT_EQ(kBanner + reading(job.asf) + reading(job.amc), run.out);
    EXPECT_EQ(
        errorBlock(
            {("File \"" + mel + "\" is unwritable.").c_str(),
             ("Parent directory \"" + folder + "\" does not exist.").c_str()}),
        run.err);
    EXPECT_FALSE(KtFileExists(job.mov.c_str()));
}

TEST(Motbake, DofMismatchesWarnThenTheMovFileFails)
{
    Job job(kSkeleton,
            ":FULLY-SPECIFIED\n:DEGREES\n1\nroot 1 2 3\narm 10 20\n");
    RunResult run = runMotbake(job.args());
    EXPECT_EQ(1, run.status);
    EXPECT_EQ(kBanner + reading(job.asf) + reading(job.amc) + writing(job.mel) +
                  writing(job.mov),
              run.out);
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

TEST(Motbake, AFullDiskIsAFailureNotSuccess)
{
    Job job;
    RunResult run =
        runMotbake({"-f", job.asf, job.amc, "30", job.mel, "/dev/full"});
    EXPECT_EQ(1, run.status);
    EXPECT_EQ(kBanner + reading(job.asf) + reading(job.amc) + writing(job.mel) +
                  writing("/dev/full"),
              run.out);
    EXPECT_EQ(errorBlock({"Unable to save \"/dev/full\".",
                          "The file could not be written completely: No "
                          "space left on device."}),
              run.err);
}

TEST(Motbake, OddCharactersInFileNamesAreJustCharacters)
{
    Job job;
    std::string mel = job.dir.file("100%d %s 'x' $HOME;.mel");
    RunResult run = runMotbake({"-f", job.asf, job.amc, "30", mel, job.mov});
    EXPECT_EQ(0, run.status);
    EXPECT_EQ("", run.err);
    EXPECT_NE(std::string::npos, readFile(mel).find("importAMC;"));
}

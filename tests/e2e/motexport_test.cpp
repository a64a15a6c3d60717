// Runs the built motexport binary: the bundled example against its golden
// exports, the CSV loaded by numpy and pandas, and runs that fail leaving no
// output behind.
#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "e2e/e2e_runner.h"
#include "support/test_helpers.h"
#include "toolkit/KtFile.h"

namespace
{

const std::string kBanner = "\nmotexport version 1.0\n\n"
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

RunResult runMotexport(const std::vector<std::string>& args,
                       const std::string& workDir = "")
{
    return runProgram(MOTEXPORT_BIN, args, "", workDir);
}

// A skeleton, a motion and both outputs in a fresh folder.
struct Job
{
    TempDir dir;
    std::string asf = dir.file("body.asf");
    std::string amc = dir.file("move.amc");
    std::string bvh = dir.file("move.bvh");
    std::string csv = dir.file("move.CSV");

    Job(const std::string& skeleton, const std::string& motion)
    {
        writeFile(asf, skeleton);
        writeFile(amc, motion);
    }

    RunResult run() const
    {
        return runMotexport({"-f", asf, amc, "30", bvh, csv});
    }

    std::string read() const { return kBanner + reading(asf) + reading(amc); }
};

} // namespace

// From the project's folder, as make demo runs it: the page shows the input
// names as given.
TEST(Motexport, ExportsTheBundledExampleExactlyAsBefore)
{
    TempDir dir;
    const std::string bvh = dir.file("walk.bvh");
    const std::string csv = dir.file("walk.csv");
    const std::string html = dir.file("walk.html");
    RunResult run = runMotexport(
        {"-f", "examples/human.asf", "examples/walk.amc", "30", bvh, csv, html},
        EXAMPLES_DIR "/..");
    EXPECT_EQ(0, run.status);
    EXPECT_EQ("", run.err);
    EXPECT_EQ(kBanner + reading("examples/human.asf") +
                  reading("examples/walk.amc") + writing(bvh) + writing(csv) +
                  writing(html),
              run.out);
    const std::string expected = EXAMPLES_DIR "/expected/";
    EXPECT_EQ(readFile(expected + "walk.bvh"), readFile(bvh));
    EXPECT_EQ(readFile(expected + "walk.csv"), readFile(csv));
    EXPECT_EQ(readFile(expected + "walk.html"), readFile(html));
}

// Debian's python, where the test's packages put numpy and pandas.
TEST(Motexport, TheCsvLoadsWithNumpyAndPandas)
{
    const std::string csv = EXAMPLES_DIR "/expected/walk.csv";
    const char* script =
        "import sys, numpy, pandas\n"
        "a = numpy.loadtxt(sys.argv[1], delimiter=',', skiprows=1)\n"
        "d = pandas.read_csv(sys.argv[1])\n"
        "numeric = all(t.kind in 'if' for t in d.dtypes)\n"
        "print(a.shape[0], a.shape[1], d.shape[0], d.shape[1], numeric)\n";
    RunResult run = runProgram("/usr/bin/python3", {"-c", script, csv});
    EXPECT_EQ("", run.err);
    const std::string header =
        readFile(csv).substr(0, readFile(csv).find('\n'));
    const std::string columns =
        std::to_string(std::count(header.begin(), header.end(), ',') + 1);
    EXPECT_EQ("240 " + columns + " 240 " + columns + " True\n", run.out);
}

// Nothing is written when the motion or the skeleton is refused, an output
// that existed stays as it was, and no temporary file is left.
TEST(Motexport, ARefusedRunLeavesNoOutputBehind)
{
    const std::string lengthZero = ":units length 0";
    std::string zeroUnit = kSkeleton;
    zeroUnit.replace(
        zeroUnit.find(":units length 1"), lengthZero.size(), lengthZero);
    // clang-format off
    const struct { std::string skeleton, motion, err; } cases[] = {
        {kSkeleton, kMotion + "7\nroot 1 2 3 0 0 0\narm 10 20\n",
         errorBlock({"Bone \"arm\" has 3 dofs in the ASF, but 2 values in frame 7 of the AMC."})},
        {kSkeleton, kMotion + "3\narm 10 20 30\nroot 1 2 3 0 0 0\n",
         errorBlock({"Every frame of the AMC must hold the first frame's bone lines in the same order.",
                     "Bone line 1 of frame 3 is \"arm\" where the first frame has \"root\"."})},
        {zeroUnit, kMotion,
         errorBlock({"Frame 1 puts \"root\" at a position or rotation that is not a finite "
                     "number: check the skeleton's units, lengths and axes, and the scale."})}};
    // clang-format on
    for (const auto& c : cases)
    {
        SCOPED_TRACE(c.err);
        Job job(c.skeleton, c.motion);
        writeFile(job.bvh, "old");
        RunResult run = job.run();
        EXPECT_EQ(1, run.status);
        EXPECT_EQ(job.read(), run.out);
        EXPECT_EQ(c.err, run.err);
        EXPECT_EQ("old", readFile(job.bvh));
        EXPECT_FALSE(KtFileExists(job.csv.c_str()));
        EXPECT_EQ(3u, filesIn(job.dir.path()).size());
    }
}

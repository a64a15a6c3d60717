// The built motexport: its golden exports and runs that fail.
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

RunResult runMotexport(const std::vector<std::string>& args,
                       const std::string& workDir = "")
{
    return runProgram(MOTEXPORT_BIN, args, "", workDir);
}

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
    for (const std::string name : {"walk.bvh", "walk.csv", "walk.html"})
        EXPECT_EQ(readFile(EXAMPLES_DIR "/expected/" + name),
                  readFile(dir.file(name)));
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

    // A quote that starts a name would open a quoted field of the header.
    std::string skeleton = kArmSkeleton, motion = kArmMotion;
    for (std::string* text : {&skeleton, &motion})
        for (size_t at = 0; (at = text->find("arm", at)) != std::string::npos;
             at += 3)
            text->insert(at++, "\"");
    Conversion job(motion, skeleton);
    const std::string quoted = job.dir.file("quoted.csv");
    ASSERT_EQ(0, runMotexport({"-f", job.asf, job.amc, "30", quoted}).status);
    run = runProgram("/usr/bin/python3",
                     {"-c",
                      "import sys, pandas\n"
                      "print(list(pandas.read_csv(sys.argv[1]).columns[5:]))",
                      quoted});
    EXPECT_EQ("['\"arm_x', '\"arm_y', '\"arm_z', "
              "'\"arm_end_x', '\"arm_end_y', '\"arm_end_z']\n",
              run.out);
}

// Nothing is written when the motion or the skeleton is refused, an output
// that existed stays as it was, and no temporary file is left.
TEST(Motexport, ARefusedRunLeavesNoOutputBehind)
{
    // clang-format off
    const struct { std::string skeleton, motion, err; } cases[] = {
        {kArmSkeleton, kArmMotion + "7\nroot 1 2 3 0 0 0\narm 10 20\n",
         errorBlock({"Bone \"arm\" has 3 dofs in the ASF, but 2 values in frame 7 of the AMC."})},
        {skeletonText("TX TY TZ RX RY RZ", boneBlock("arm", "rx ry rz"), "    root arm\n", "0"), kArmMotion,
         errorBlock({"Frame 1 puts \"root\" at a position or rotation that is not a finite "
                     "number: check the skeleton's units, lengths and axes, and the scale."})}};
    // clang-format on
    for (const auto& c : cases)
    {
        SCOPED_TRACE(c.err);
        Conversion job(c.motion, c.skeleton);
        const std::string bvh = job.dir.file("move.bvh");
        const std::string csv = job.dir.file("move.CSV");
        writeFile(bvh, "old");
        RunResult run = runMotexport({"-f", job.asf, job.amc, "30", bvh, csv});
        EXPECT_EQ(1, run.status);
        EXPECT_EQ(kBanner + reading(job.asf) + reading(job.amc), run.out);
        EXPECT_EQ(c.err, run.err);
        EXPECT_EQ("old", readFile(bvh));
        EXPECT_FALSE(KtFileExists(csv.c_str()));
        EXPECT_EQ(3u, filesIn(job.dir.path()).size());
    }
}

// motexport's command line: what is refused before anything is read.
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "motexport/CommandLine.h"
#include "support/test_helpers.h"

namespace
{

MainOutcome runMotexport(std::vector<const char*> args)
{
    args.insert(args.begin(), "motexport");
    return runMain(motexportMain, args);
}

const std::string kBanner = "\nmotexport version 1.0\n\nCopyright (c) "
                            "Quorvane, Inc.  All rights reserved.\n";

} // namespace

TEST(MotexportCommandLine, ShowsUsageAndManualPage)
{
    MainOutcome bare = runMotexport({});
    EXPECT_EQ(0, bare.status);
    EXPECT_EQ("\nUSAGE\n     motexport [-h] [-copyright] [-f] [-scale "
              "<factor>] [-up y|z]\n"
              "               <asf_file> <amc_file> <fps> <out_file> "
              "[<out_file> ...]\n\nVERSION\n  1.0\n\n",
              bare.out);
    MainOutcome help = runMotexport({"-H"});
    EXPECT_EQ(0, help.status);
    for (const char* format : {"\nBVH\n", "\nCSV\n", "\nHTML\n"})
        EXPECT_NE(std::string::npos, help.out.find(format)) << format;
}

// The frame rate and the scale are whole positive finite decimal numbers,
// the up axis y or z; an output must name its format. The last case passes
// every check and fails only on reading.
TEST(MotexportCommandLine, RefusesBadArgumentsBeforeReading)
{
    const std::string scale = "ERROR: Invalid value for scale.\n";
    // clang-format off
    std::vector<std::pair<std::vector<const char*>, std::string>> cases = {
        {{"-scale"}, "\nERROR: Expecting a scale factor.\n"},
        {{"-f", "a.asf", "b.amc", "30"}, "ERROR: Invalid number of arguments.\n"},
        {{"-scale", "0", "a.asf", "b.amc", "30", "o.bvh"}, scale},
        {{"-SCALE", "1e-3m", "a.asf", "b.amc", "30", "o.bvh"}, scale},
        {{"-up"}, "\nERROR: Expecting an up axis, y or z.\n"},
        {{"-up", "x", "a.asf", "b.amc", "30", "o.html"}, "ERROR: Invalid value for up: expecting y or z.\n"},
        {{"a.asf", "b.amc", "30", "o.bvh", "o.txt"},
         "ERROR: Unknown format of output \"o.txt\": its name must end in .bvh, .csv or .html.\n"},
        {{"-scale", ".0254", "-UP", "Z", "/no/a.asf", "b.amc", "29.97", "o.BVH", "p.Csv", "q.HTML"},
         errorBlock({"Unable to read \"/no/a.asf\".", "File does not exist."})}};
    for (const char* fps : {"30abc", "0", "-5", "nan", "inf", "", " 30", "0x1e", "1e999"})
        cases.push_back({{"a.asf", "b.amc", fps, "o.bvh"}, "ERROR: Invalid value for fps.\n"});
    // clang-format on
    for (const auto& [args, err] : cases)
    {
        SCOPED_TRACE(testing::PrintToString(args));
        MainOutcome run = runMotexport(args);
        EXPECT_EQ(1, run.status);
        EXPECT_EQ(err, run.err);
        if (args.size() > 1)
        {
            EXPECT_EQ(kBanner, run.out);
        }
    }
}

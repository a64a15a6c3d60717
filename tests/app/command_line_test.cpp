#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "app/CommandLine.h"
#include "app/MelWriter.h"
#include "support/test_helpers.h"

namespace
{

// Named "motbake" whatever path it was started by.
MainOutcome runMotbake(std::vector<const char*> args)
{
    args.insert(args.begin(), "/usr/local/bin/motbake-renamed");
    theFilterText = "";
    return runMain(motbakeMain, args);
}

const std::string kUsage = R"(     motbake [-h] [-copyright] [-f]
             [-filter "<filter_name> [<filter_name2> ...]"]
             <asf_file> <amc_file> <fps> <mel_file> <mov_file>
)";

// The manual page up to the sections whose wording is ours to choose.
const std::string kManpage = readFile(TEST_DATA_DIR "/app/manpage_head.txt");

std::string printed(void (*print)(std::ostream&, const KtStr&))
{
    std::ostringstream out;
    print(out, KtStr("motbake"));
    return out.str();
}

} // namespace

// Options ignore case; help texts alone end the run. With positional
// arguments the banner follows, and then the checks.
TEST(CommandLine, HelpOptionsFilterAndArgumentChecks)
{
    const std::string manual = printed(printManpage);
    const std::string copyright = printed(printCopyright);
    const std::string banner = printed(printVersion);
    EXPECT_EQ(0u, manual.find(kManpage));
    EXPECT_EQ(0u, copyright.find("\nCOPYRIGHT NOTICE\n\n"));
    EXPECT_EQ(0u, banner.find("\nmotbake version 1.1\n\n"));
    const std::string count = "ERROR: Invalid number of arguments.\n";
    const std::string fps = "ERROR: Invalid value for fps.\n";
    // clang-format off
    const struct { std::vector<const char*> args; int status; std::string out, err; } cases[] = {
        {{}, 0, "\nUSAGE\n" + kUsage + "\nVERSION\n  1.1\n\n", ""},
        {{"-h"}, 0, manual, ""}, {{"-H"}, 0, manual, ""},
        {{"-h", "-COPYRIGHT"}, 0, manual + copyright, ""}, {{"-copyright"}, 0, copyright, ""},
        {{"-h", "a", "b", "c", "d"}, 1, manual + banner, count},
        {{"-x", "a"}, 1, "", "\nERROR: Invalid option -x\n"},
        {{"-f", "-filter"}, 1, "", "\nERROR: Expecting filter names.\n"},
        {{"a", "b", "30", "c"}, 1, banner, count}, {{"a", "b", "30", "c", "d", "e"}, 1, banner, count},
        // Options after the first positional argument are positional.
        {{"a", "b", "30", "c", "d", "-f"}, 1, banner, count},
        {{"a", "b", "29", "c", "d"}, 1, banner, fps}, {{"a", "b", "30.0", "c", "d"}, 1, banner, fps},
        {{"a", "b", "abc", "c", "d"}, 1, banner, fps}, {{"a", "b", "4294967326", "c", "d"}, 1, banner, fps}};
    // clang-format on
    for (const auto& c : cases)
    {
        MainOutcome run = runMotbake(c.args);
        EXPECT_EQ(c.status, run.status) << c.args.size();
        EXPECT_EQ(c.out, run.out);
        EXPECT_EQ(c.err, run.err);
    }
    // -filter takes the next argument, and the last one wins.
    runMotbake({"-filter", "first", "-FILTER", "euler simplify", "-h"});
    EXPECT_STREQ("euler simplify", theFilterText.text());
    theFilterText = "";
}

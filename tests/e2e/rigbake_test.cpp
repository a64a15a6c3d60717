// Runs the built rigbake binary and checks exit status, standard output,
// standard error and the script it writes, together.
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

std::string reading(const std::string& path)
{
    return "Reading file: " + path + " ...done.\n";
}

std::string writing(const std::string& path)
{
    return "Writing \"" + path + "\"...done.\n";
}

} // namespace

// The bundled example's skeleton gives the expected rig script.
TEST(Rigbake, WritesTheExampleRigExactlyAsExpected)
{
    TempDir dir;
    const std::string asf = EXAMPLES_DIR "/human.asf";
    const std::string mel = dir.file("human_rig.mel");
    RunResult run = runRigbake({"-f", asf, mel});
    EXPECT_EQ(0, run.status);
    EXPECT_EQ("", run.err);
    EXPECT_EQ(kBanner + reading(asf) + writing(mel), run.out);
    EXPECT_EQ(readFile(EXAMPLES_DIR "/expected/human_rig.mel"), readFile(mel));
}

// The start shared with motbake, with rigbake's own texts and count (the
// manual page up to the text that the start does not check).
TEST(Rigbake, HelpOptionsAndArgumentCount)
{
    const std::string count = "ERROR: Invalid number of arguments.\n";
    const std::string manual = "\nNAME\n     rigbake - build a skeleton in "
                               "Maya(tm) for motbake's data.\n\n"
                               "SYNOPSIS\n" +
                               kUsage + "\nDESCRIPTION\n";
    // clang-format off
    const struct { std::vector<std::string> args; int status; std::string out, err; } cases[] = {
        {{}, 0, "\nUSAGE\n" + kUsage + "\nVERSION\n  1.0\n\n", ""},
        {{"-H"}, 0, manual, ""},
        {{"-x"}, 1, "", "\nERROR: Invalid option -x\n"},
        {{"a.asf"}, 1, kBanner, count},
        {{"a.asf", "b.mel", "-f"}, 1, kBanner, count}};
    // clang-format on
    for (const auto& c : cases)
    {
        SCOPED_TRACE(c.args.size());
        RunResult run = runRigbake(c.args);
        EXPECT_EQ(c.status, run.status);
        EXPECT_EQ(c.out, run.out.substr(0, c.out.size()));
        EXPECT_EQ(c.err, run.err);
    }
}

// A skeleton that cannot have a rig is refused before the overwrite
// question; an existing script is replaced only when the user agrees; the
// skeleton is never its own script.
TEST(Rigbake, RefusesBeforeAskingAndAsksBeforeOverwriting)
{
    TempDir dir;
    const std::string asf = dir.file("body.asf");
    const std::string mel = dir.file("rig.mel");
    const std::string bone = "  begin name BONE direction 1 0 0 length 1 "
                             "axis 0 0 0 XYZ end\n";
    const std::string skeleton =
        ":version 1.10\n:units\n  length 1\n  angle deg\n:root\n"
        "  order TX TY TZ\n  axis XYZ\n  position 0 0 0\n"
        "  orientation 0 0 0\n:bonedata\n" +
        bone + ":hierarchy\n  begin\n    root BONE\n  end\n";
    auto named = [&](const std::string& name)
    {
        std::string text = skeleton;
        for (size_t at; (at = text.find("BONE")) != std::string::npos;)
            text.replace(at, 4, name);
        return text;
    };
    writeFile(mel, "keep me");
    writeFile(asf, named("l\"arm"));
    RunResult run = runRigbake({asf, mel});
    EXPECT_EQ(1, run.status);
    EXPECT_EQ(kBanner + reading(asf), run.out);
    const std::string refused =
        "Unable to make a rig of \"" + asf + "\": nothing was written.";
    EXPECT_EQ(errorBlock({refused.c_str(),
                          "Bone \"l\"arm\": its name cannot name a Maya joint "
                          "(letters, digits and underscores only, not a digit "
                          "first)."}),
              run.err);
    EXPECT_EQ("keep me", readFile(mel));

    writeFile(asf, named("larm"));
    const std::string prompt =
        "\nOutput file '" + mel + "' exists.\nOverwrite? [Y/N] ";
    run = runRigbake({asf, mel}, "n\n");
    EXPECT_EQ(0, run.status);
    EXPECT_EQ(kBanner + reading(asf) + prompt, run.out);
    EXPECT_EQ("keep me", readFile(mel));
    run = runRigbake({asf, mel}, "y\n");
    EXPECT_EQ(kBanner + reading(asf) + prompt + writing(mel), run.out);
    EXPECT_NE(std::string::npos,
              readFile(mel).find("  createNode joint -n \"larm_end\" -p "
                                 "\"larm_joint\";\n"));

    run = runRigbake({"-f", asf, asf});
    EXPECT_EQ(1, run.status);
    const std::string same = "The output \"" + asf + "\" is the input \"" +
                             asf + "\": nothing was written.";
    EXPECT_EQ(errorBlock({same.c_str()}), run.err);
    EXPECT_EQ(named("larm"), readFile(asf));
}

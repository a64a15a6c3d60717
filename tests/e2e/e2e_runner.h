// Runs the built programs with given arguments and standard input, and the
// one small conversion that the end-to-end tests share.
#pragma once

#include <string>
#include <vector>

#include "support/test_helpers.h"

struct RunResult
{
    int status = -1; // exit status, or -1 when the program did not exit
    std::string out;
    std::string err;
};

// Runs the program in workDir (the current directory when empty) with the
// given standard input, collecting both output streams.
RunResult runProgram(const std::string& program,
                     const std::vector<std::string>& args,
                     const std::string& input = "",
                     const std::string& workDir = "");

// The same for MOTBAKE_BIN.
RunResult runMotbake(const std::vector<std::string>& args,
                     const std::string& input = "");

// The progress lines that every program prints for an input and an output.
inline std::string reading(const std::string& path)
{
    return "Reading file: " + path + " ...done.\n";
}

inline std::string writing(const std::string& path)
{
    return "Writing \"" + path + "\"...done.\n";
}

// A root and one rotating arm, and two frames for them.
inline const std::string kArmSkeleton = skeletonText(
    "TX TY TZ RX RY RZ", boneBlock("arm", "rx ry rz"), "    root arm\n");
inline const std::string kMotionHeader = ":FULLY-SPECIFIED\n:DEGREES\n";
inline const std::string kArmMotion = kMotionHeader +
                                      "1\nroot 1 2 3 0 0 0\narm 10 20 30\n" +
                                      "2\nroot 1 2 3 0 0 0\narm 10 20 30\n";

// A skeleton and a motion in a fresh folder, and the outputs' names. These
// hold characters that a shell or a format would take specially; to the
// program they are just characters.
struct Conversion
{
    TempDir dir;
    std::string asf = dir.file("body.asf");
    std::string amc = dir.file("move.amc");
    std::string mel = dir.file("100%d %s 'x' $HOME;.mel");
    std::string mov = dir.file("move %n.mov");

    explicit Conversion(const std::string& motion = kArmMotion,
                        const std::string& skeleton = kArmSkeleton)
    {
        writeFile(asf, skeleton);
        writeFile(amc, motion);
    }

    // With -f unless prompts are wanted.
    RunResult run(const std::string& input = "", bool force = true) const
    {
        std::vector<std::string> args = {asf, amc, "30", mel, mov};
        if (force)
            args.insert(args.begin(), "-f");
        return runMotbake(args, input);
    }
};

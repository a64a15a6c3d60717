// motexport's command line: option scan, help texts, argument checks.
#include "motexport/CommandLine.h"

#include <cmath>
#include <cstdlib>
#include <iostream>

#include "motexport/ExportFormat.h"
#include "motexport/ExportRun.h"
#include "motexport/Version.h"
#include "program/ExitStatus.h"
#include "program/ProgramStart.h"

namespace
{

// asf_file, amc_file, fps and at least one output.
constexpr int kLeastPositional = 4;

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

// Digits with at most one decimal point among or after them, at least one
// digit; then the text's position after them.
const char* skipDecimal(const char* text)
{
    const char* digits = text;
    while (isDigit(*text))
        ++text;
    bool any = text != digits;
    if (*text == '.')
        for (++text; isDigit(*text); ++text)
            any = true;
    return any ? text : nullptr;
}

// The whole text a decimal number, "29.97", "120", "2.54e-2", positive and
// finite: no sign, blanks, hexadecimal, "inf" or "nan".
bool parsePositive(const char* text, double* value)
{
    const char* end = skipDecimal(text);
    if (end && (*end == 'e' || *end == 'E'))
    {
        ++end;
        if (*end == '+' || *end == '-')
            ++end;
        const char* digits = end;
        while (isDigit(*end))
            ++end;
        if (end == digits)
            return false;
    }
    if (!end || *end != '\0')
        return false;
    *value = std::strtod(text, nullptr);
    return std::isfinite(*value) && *value > 0.0;
}

} // namespace

int motexportMain(int argc, const char* const* argv)
{
    ExportArguments run;
    int status = kExitSuccess;
    return parseExportCommandLine(argc, argv, &run, &status) ? runExport(run)
                                                             : status;
}

bool parseExportCommandLine(int argc,
                            const char* const* argv,
                            ExportArguments* run,
                            int* status)
{
    const char* scaleText = nullptr;
    const ProgramOption scale = {
        "-scale", &scaleText, "\nERROR: Expecting a scale factor.\n"};
    ProgramDescription program;
    program.name = "motexport";
    program.version = kMotexportVersion;
    program.printUsage = printExportUsage;
    program.printManpage = printExportManpage;
    program.options = &scale;
    program.numOptions = 1;
    const ProgramStart start = startProgram(argc, argv, program);
    *status = start.exitStatus;
    if (start.finished)
        return false;

    *status = kExitFailure;
    if (start.numPositional < kLeastPositional)
    {
        std::cerr << "ERROR: Invalid number of arguments.\n";
        return false;
    }
    const char* const* positional = start.positional;
    if (!parsePositive(positional[2], &run->fps))
    {
        std::cerr << "ERROR: Invalid value for fps.\n";
        return false;
    }
    if (scaleText && !parsePositive(scaleText, &run->scale))
    {
        std::cerr << "ERROR: Invalid value for scale.\n";
        return false;
    }
    for (int i = kLeastPositional - 1; i < start.numPositional; ++i)
    {
        if (!exportFormatOf(positional[i]))
        {
            std::cerr << "ERROR: Unknown format of output \"" << positional[i]
                      << "\": its name must end in " << knownExtensions()
                      << ".\n";
            return false;
        }
        run->outputs.push_back(positional[i]);
    }
    run->asfFile = positional[0];
    run->amcFile = positional[1];
    run->noPrompt = start.noPrompt;
    return true;
}

void printExportUsage(std::ostream& out, const KtStr& programName)
{
    out << "     " << programName
        << " [-h] [-copyright] [-f] [-scale <factor>]\n"
        << "               <asf_file> <amc_file> <fps> <out_file> "
           "[<out_file> ...]\n";
}

void printExportManpage(std::ostream& out, const KtStr& programName)
{
    out << "\n"
        << "NAME\n"
        << "     " << programName
        << " - export ASF/AMC data to BVH and to joint positions (CSV).\n"
        << "\n"
        << "SYNOPSIS\n";
    printExportUsage(out, programName);
    out << "\n"
        << "DESCRIPTION\n"
        << "     Reads a skeleton and a motion once and writes every output "
           "named,\n"
        << "     each in the format that its extension names, ignoring case:\n"
        << "\n"
        << "     .bvh   a BVH file, for Blender and other animation "
           "packages;\n"
        << "     .csv   the world position of every joint in every frame.\n"
        << "\n"
        << "     The motion is posed on the skeleton's standard pose.  "
           "Lengths are\n"
        << "     in the skeleton's unit after its length unit (inches for "
           "the\n"
        << "     public collections), times the scale.  An output is "
           "written\n"
        << "     under a temporary name beside it and renamed when "
           "complete, so a\n"
        << "     failed run leaves no partial or empty output behind.\n"
        << "\n"
        << "     Each frame's bone lines must be the first frame's, in the "
           "same\n"
        << "     order, and each bone must have as many values as it has "
           "dofs in\n"
        << "     the skeleton; otherwise nothing is written.  A bone that "
           "the\n"
        << "     skeleton lacks is left out with a warning.\n"
        << "\n"
        << "     " << programName << " has the following parameters:\n"
        << "\n";
    out << "     -h          Displays this manpage.\n"
        << "\n"
        << "     -copyright  Display copyright information.\n"
        << "\n"
        << "     -f          When used, " << programName
        << " will overwrite files without verification.\n"
        << "\n"
        << "     -scale      Multiplies every length (offsets and "
           "positions, not\n"
        << "                 angles or times); a positive number, 1 by "
           "default.\n"
        << "                 -scale 0.0254 turns inches into metres.\n"
        << "\n"
        << "     asf_file    The file that contains a skeleton's "
           "definition.\n"
        << "\n"
        << "     amc_file    The file that contains motion capture data.\n"
        << "\n"
        << "     fps         The frame rate of the motion capture data: any "
           "positive\n"
        << "                 number, such as 120, 60 or 29.97.\n"
        << "\n"
        << "     out_file    An output file, ending in .bvh or .csv.\n"
        << "\n";
    out << "BVH\n"
        << "     The root is ROOT root with six channels, Xposition "
           "Yposition\n"
        << "     Zposition Zrotation Yrotation Xrotation; its OFFSET is its "
           "rest\n"
        << "     position and its position channels give its position in "
           "each\n"
        << "     frame.  Every bone is a JOINT at its start, nested as the\n"
        << "     hierarchy says, whose OFFSET is its parent's bone vector "
           "at rest\n"
        << "     and whose channels are Zrotation Yrotation Xrotation: its "
           "rotation\n"
        << "     relative to its parent, in degrees.  A bone that "
           "translates (tx,\n"
        << "     ty or tz) has Xposition Yposition Zposition first: how far "
           "its\n"
        << "     start has moved from its rest place, in its parent's "
           "axes.  A\n"
        << "     leaf bone ends in an End Site at its own bone vector.  "
           "Each\n"
        << "     frame's angles are the triple nearest the frame before, so "
           "no\n"
        << "     channel jumps by a whole turn.  Frame Time is 1/fps.\n"
        << "\n";
    out << "CSV\n"
        << "     A header row, then one row per frame: the frame number as "
           "written,\n"
        << "     the time in seconds from the first frame, the x, y and z of "
           "the\n"
        << "     start of every body (root first, then the bones in "
           "skeleton\n"
        << "     order) and of the end of every leaf bone.\n"
        << "\n";
    out << "EXAMPLES\n"
        << "     motexport human.asf walk.amc 120 walk.bvh\n"
        << "\n"
        << "     motexport -scale 0.0254 human.asf walk.amc 29.97 walk.bvh "
           "walk.csv\n"
        << "\n";
    out << "SEE ALSO\n"
        << "     motbake, rigbake\n"
        << "\n";
    out << "AVAILABILITY\n"
        << "     " << programName
        << " is distributed with the Quorvane motion-capture tools,\n"
        << "     together with motbake, rigbake and the ASF and AMC "
           "libraries.\n"
        << "\n"
        << "     Please send problem reports and suggestions to Quorvane\n"
        << "     support, with the command line and the input files.\n"
        << "\n";
    out << "CREDITS\n"
        << "     " << programName
        << " was written and is maintained by Quorvane, Inc.\n"
        << "\n";
}

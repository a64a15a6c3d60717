// motexport's command line: option scan, help texts, argument checks.
#include "motexport/CommandLine.h"

#include <cmath>
#include <cstdlib>
#include <iostream>
#include <iterator>

#include "motexport/ExportFormat.h"
#include "motexport/ExportRun.h"
#include "motexport/Version.h"
#include "program/ExitStatus.h"
#include "program/ProgramManual.h"
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

// "y" or "z", ignoring case.
bool parseUpAxis(const char* text, bool* zUp)
{
    const KtStr axis(text);
    *zUp = axis.iCmp("z") == 0;
    return *zUp || axis.iCmp("y") == 0;
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
    const char* upText = nullptr;
    const ProgramOption options[] = {
        {"-scale", &scaleText, "\nERROR: Expecting a scale factor.\n"},
        {"-up", &upText, "\nERROR: Expecting an up axis, y or z.\n"}};
    ProgramDescription program;
    program.name = kMotexportName;
    program.version = kMotexportVersion;
    program.printUsage = printExportUsage;
    program.printManpage = printExportManpage;
    program.options = options;
    program.numOptions = static_cast<int>(std::size(options));
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
    if (upText && !parseUpAxis(upText, &run->zUp))
    {
        std::cerr << "ERROR: Invalid value for up: expecting y or z.\n";
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
        << " [-h] [-copyright] [-f] [-scale <factor>] [-up y|z]\n"
        << "               <asf_file> <amc_file> <fps> <out_file> "
           "[<out_file> ...]\n";
}

void printExportManpage(std::ostream& out, const KtStr& programName)
{
    out << "\n"
        << "NAME\n"
        << "     " << programName
        << " - export ASF/AMC data to BVH, to joint positions (CSV) and "
           "to a\n"
        << "     page that plays it (HTML).\n"
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
        << "     .csv   the world position of every joint in every frame;\n"
        << "     .html  a page that draws the skeleton and plays the motion "
           "in a\n"
        << "            web browser.\n"
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
    printCommonOptions(out, programName);
    out << "     -scale      Multiplies every length (offsets and "
           "positions, not\n"
        << "                 angles or times); a positive number, 1 by "
           "default.\n"
        << "                 -scale 0.0254 turns inches into metres.\n"
        << "\n"
        << "     -up         The axis that points up in the capture, y "
           "(the\n"
        << "                 default, as in the public collections) or z; "
           "for the\n"
        << "                 page only.\n"
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
        << "     out_file    An output file, ending in .bvh, .csv or "
           ".html.\n"
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
    out << "HTML\n"
        << "     One file with everything inside, which opens from disk in "
           "any\n"
        << "     current browser: the bones as lines and the joints as dots, "
           "the\n"
        << "     root's path and a grid on the ground (one cell is the "
           "length\n"
        << "     written beside it), seen by a camera that follows the "
           "figure.\n"
        << "     Drag to orbit, the wheel zooms and R resets the view; space "
           "plays\n"
        << "     and pauses, the arrow keys step one frame.  The page "
           "plays in\n"
        << "     real time at fps; page.html#frame=N opens it paused at "
           "frame N.\n"
        << "\n";
    out << "EXAMPLES\n"
        << "     motexport human.asf walk.amc 120 walk.bvh\n"
        << "\n"
        << "     motexport -scale 0.0254 human.asf walk.amc 29.97 walk.bvh "
           "walk.csv\n"
        << "\n"
        << "     motexport -up z dance.asf dance.amc 120 dance.html\n"
        << "\n";
    out << "SEE ALSO\n"
        << "     motbake, rigbake\n"
        << "\n";
    printAvailabilityAndCredits(
        out, programName, "motbake, rigbake", "the input files", false);
}

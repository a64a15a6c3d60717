// The MEL script that defines Maya's input device for the MOV channels,
// attaches them to the skeleton's joints and imports the MOV file as a take.
#include "app/MelWriter.h"

#include <cstdlib>
#include <ostream>

#include "amc/KaAMC.h"
#include "app/BodyTable.h"
#include "app/Version.h"
#include "asf/KaASF.h"
#include "toolkit/KtError.h"

KtStr theFilterText;

namespace
{

constexpr const char* kDevice = "amc_device";
constexpr const char* kFilterSeparators = " \t\n\r";

// The rotation channel of a DOF: its device usage and joint attribute.
struct RotationChannel
{
    const char* usage;
    const char* attribute;
};

bool rotationChannel(int code, RotationChannel* channel)
{
    switch (code)
    {
    case kDofRX:
        *channel = {"rotX", "rotateX"};
        return true;
    case kDofRY:
        *channel = {"rotY", "rotateY"};
        return true;
    case kDofRZ:
        *channel = {"rotZ", "rotateZ"};
        return true;
    default:
        return false;
    }
}

// Maya's time unit for each frame rate that the command line accepts.
const char* timeUnit(int fps)
{
    switch (fps)
    {
    case 15:
        return "game";
    case 24:
        return "film";
    case 25:
        return "pal";
    case 30:
        return "ntsc";
    case 48:
        return "show";
    case 50:
        return "palf";
    case 60:
        return "ntscf";
    default:
        // The command line never passes another rate.
        std::abort();
    }
}

// The filter names in command-line order. Splitting stops at the first empty
// token, so separators at the end (or a text of separators only) never make
// an empty name; the name list alone decides whether filters are written.
KtList<KtStr> filterNames()
{
    KtList<KtStr> names;
    KtStr rest(theFilterText);
    while (rest.length() > 0)
    {
        KtStr name = rest.extractFirstToken(kFilterSeparators);
        if (name.length() == 0)
            break;
        names.append(name);
    }
    return names;
}

// The bodies that get channels, in channel order: the root when the first
// frame holds it, then the skeleton's bones that the first frame holds.
// A motion without frames has no bodies.
struct Body
{
    const char* name;
    const KaASFDOFGroup* dofs;
    bool isRoot;
};

KtList<Body> channelBodies(const KaASF& asf, const KaAMC& amc)
{
    KtList<Body> bodies;
    if (amc.numFields() == 0)
        return bodies;
    BodyTable table(asf, &amc.boneNames());
    table.bind(amc.field(0));
    for (int body = 0; body < table.count(); ++body)
        if (table.values(body))
            bodies.append({table.name(body),
                           &table.dofGroup(body),
                           body == BodyTable::kRoot});
    return bodies;
}

void writeHeader(std::ostream& out)
{
    out << "//\n"
        << "// MEL script created by motbake version " << kMotbakeVersion
        << "\n"
        << "//\n"
        << "// Quorvane, Inc.\n"
        << "//\n"
        << "\n"
        << "\n";
}

bool writeCreateDevice(std::ostream& out, const KtList<Body>& bodies)
{
    out << "proc createAMCDevice()\n"
        << "{\n"
        << "  defineVirtualDevice -create;\n";
    int counter = 0;
    for (const Body& body : bodies)
    {
        writeChannelDefinitions(out, body.name, counter, *body.dofs);
        if (theExceptObj.errorOccurred())
        {
            if (body.isRoot)
                KtError("Unable to convert transformations to channel for "
                        "\"root\".");
            else
                KtError("Unable to convert transformations to channel for "
                        "body \"%s\".",
                        body.name);
            return false;
        }
    }
    out << "  defineVirtualDevice -device \"" << kDevice << "\";\n"
        << "\n";
    for (const Body& body : bodies)
    {
        writeChannelAttachments(out, body.name, *body.dofs);
        if (theExceptObj.errorOccurred())
        {
            KtError("Unable to attach device channel to body \"%s\".",
                    body.name);
            return false;
        }
    }
    out << "}\n"
        << "\n";
    return true;
}

void writeDeviceProcs(std::ostream& out)
{
    out << "proc int amcDeviceExists()\n"
        << "{\n"
        << "  string $all_devices[] = `listInputDevices`;\n"
        << "\n"
        << "  for ($device in $all_devices) {\n"
        << "    if ($device==\"" << kDevice << "\")\n"
        << "      return 1;\n"
        << "  }\n"
        << "\n"
        << "  return 0;\n"
        << "}\n"
        << "\n";
    out << "proc deleteAMCDevice()\n"
        << "{\n"
        << "  defineVirtualDevice -device \"" << kDevice << "\" "
        << "-undefine;\n"
        << "}\n"
        << "\n";
}

void writeFilterProcs(std::ostream& out)
{
    out << "proc string[] activeFilters()\n"
        << "{\n"
        << "  string $filters[] = `ls -type filter`;\n"
        << "  string $active[];\n"
        << "  int    $active_i=0;\n"
        << "\n"
        << "  for ($f in $filters) {\n"
        << "    if (`filter -query -deviceEditorActive $f`) {\n"
        << "      $active[$active_i] = $f;\n"
        << "      ++$active_i;\n"
        << "    }\n"
        << "  }\n"
        << "\n"
        << "  return $active;\n"
        << "}\n"
        << "\n";
    out << "proc int verifyFilters(string $filters[])\n"
        << "{\n"
        << "  string $active_filters[] = activeFilters();\n"
        << "\n"
        << "  for ($f in $filters) {\n"
        << "    int $exists = 0;\n"
        << "\n"
        << "    for ($a in $active_filters) {\n"
        << "      if ($a==$f) {\n"
        << "        $exists = 1;\n"
        << "        break;\n"
        << "      }\n"
        << "    }\n"
        << "\n"
        << "    if (!$exists) {\n"
        << "      print(\"\\n// Filter \" + $f + \" does not exist or is not "
           "active.\\n\\n\");\n"
        << "      return 0;\n"
        << "    }\n"
        << "  }\n"
        << "\n"
        << "  return 1;\n"
        << "}\n"
        << "\n";
}

// The names are written as given, without quoting of their own.
void writeFilterCheck(std::ostream& out, const KtList<KtStr>& filters)
{
    out << "  {\n"
        << "    string $filters[] = {";
    const char* separator = "";
    for (const KtStr& name : filters)
    {
        out << separator << "\"" << name << "\"";
        separator = ",";
    }
    out << "};\n"
        << "\n"
        << "    if (!verifyFilters($filters))\n"
        << "      return;\n"
        << "  }\n"
        << "\n";
}

void writeImportProc(std::ostream& out,
                     const KtList<KtStr>& filters,
                     int fps,
                     int firstFrame)
{
    out << "proc importAMC()\n"
        << "{\n";
    if (!filters._isNull())
        writeFilterCheck(out, filters);
    out << "  if (amcDeviceExists())\n"
        << "    deleteAMCDevice();\n"
        << "\n"
        << "  createAMCDevice;\n"
        << "  print(\"\\n// Select MOV file to import.\\n\");\n"
        << "\n"
        << "  string $mov_file = `fileDialog`;\n"
        << "\n"
        << "  if (\"\"!=$mov_file) {\n";
    out << "    currentUnit -time " << timeUnit(fps) << ";\n";
    // Maya reads the MOV values as degrees and inches.
    out << "    readTake -device \"" << kDevice << "\" "
        << "-angle \"degree\" "
        << "-linear \"inch\" "
        << "-take $mov_file"
        << ";\n";
    // Maya applies the filters left to right, in command-line order.
    out << "    applyTake -device \"" << kDevice << "\"";
    for (const KtStr& name : filters)
        out << " -f " << name;
    out << ";\n";
    out << "    currentTime -edit " << firstFrame << ";\n"
        << "    playbackOptions -minTime " << firstFrame << ";\n"
        << "    fitAllPanels -all;\n"
        << "  }\n\n"
        << "  deleteAMCDevice;\n"
        << "}\n\n"
        << "importAMC;\n";
}

} // namespace

bool hasTranslationDOF(const KaASFDOFGroup& dofs)
{
    for (const KaASFDOF* dof : dofs.dofs())
        if (KaIsTranslationDOF(dof->code()))
            return true;
    return false;
}

// A body that translates at all gets all three position channels, matching
// the three position values of every MOV line.
void writeChannelDefinitions(std::ostream& out,
                             const char* name,
                             int& counter,
                             const KaASFDOFGroup& dofs)
{
    if (hasTranslationDOF(dofs))
        for (const char* axis : {"X", "Y", "Z"})
            out << "  defineVirtualDevice -channel " << name << "_pos" << axis
                << " -usage pos" << axis << " -axis " << counter++ << ";\n";
    RotationChannel channel;
    for (const KaASFDOF* dof : dofs.dofs())
        if (rotationChannel(dof->code(), &channel))
            out << "  defineVirtualDevice -channel " << name << "_"
                << channel.usage << " -usage " << channel.usage << " -axis "
                << counter++ << ";\n";
}

void writeChannelAttachments(std::ostream& out,
                             const char* name,
                             const KaASFDOFGroup& dofs)
{
    if (hasTranslationDOF(dofs))
        for (const char* axis : {"X", "Y", "Z"})
            out << "  attachDeviceAttr -device \"" << kDevice << "\" "
                << "-axis \"" << name << "_pos" << axis << "\" "
                << "\"" << name << "_joint.translate" << axis << "\";\n";
    RotationChannel channel;
    for (const KaASFDOF* dof : dofs.dofs())
        if (rotationChannel(dof->code(), &channel))
            out << "  attachDeviceAttr -device \"" << kDevice << "\" "
                << "-axis \"" << name << "_" << channel.usage << "\" "
                << "\"" << name << "_joint." << channel.attribute << "\";\n";
}

void writeMELScript(std::ostream& out,
                    const KaASF& asf,
                    const KaAMC& amc,
                    int fps)
{
    KtList<KtStr> filters = filterNames();
    writeHeader(out);
    if (!writeCreateDevice(out, channelBodies(asf, amc)))
        return;
    writeDeviceProcs(out);
    if (!filters._isNull())
        writeFilterProcs(out);
    // A motion without frames starts at frame 0.
    int firstFrame = amc.numFields() > 0 ? amc.field(0).frameNumber() : 0;
    writeImportProc(out, filters, fps, firstFrame);
}

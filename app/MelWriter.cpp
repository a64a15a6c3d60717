// The MEL script that defines Maya's input device for the MOV channels,
// attaches them to the skeleton's joints and imports the MOV file as a take.
#include "app/MelWriter.h"

#include <cstdlib>
#include <ostream>
#include <vector>

#include "amc/KaAMC.h"
#include "app/MayaFrameRates.h"
#include "app/Version.h"
#include "asf/KaASF.h"
#include "pose/BodyTable.h"
#include "pose/ChannelLayout.h"
#include "program/MelScript.h"
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

// code is a rotation DOF.
RotationChannel rotationChannel(int code)
{
    switch (code)
    {
    case kDofRX:
        return {"rotX", "rotateX"};
    case kDofRY:
        return {"rotY", "rotateY"};
    default:
        return {"rotZ", "rotateZ"};
    }
}

// The filter names in command-line order. Splitting stops at the first empty
// token, so separators at the end (or a text of separators only) never make
// an empty name; the name list alone decides whether filters are written.
KtList<KtStr> filterNames(const KtStr& filterText)
{
    KtList<KtStr> names;
    KtStr rest(filterText);
    while (rest.length() > 0)
    {
        KtStr name = rest.extractFirstToken(kFilterSeparators);
        if (name.length() == 0)
            break;
        names.append(name);
    }
    return names;
}

// A body that translates at all gets all three position channels, matching
// the three position values of every MOV line.
void writeDefinitions(std::ostream& out,
                      const char* name,
                      int& counter,
                      bool translates,
                      const ChannelLayout::Rotation* rotations,
                      int numRotations)
{
    if (translates)
        for (const char* axis : {"X", "Y", "Z"})
            out << "  defineVirtualDevice -channel " << name << "_pos" << axis
                << " -usage pos" << axis << " -axis " << counter++ << ";\n";
    for (int i = 0; i < numRotations; ++i)
    {
        const RotationChannel channel = rotationChannel(rotations[i].code);
        out << "  defineVirtualDevice -channel " << name << "_" << channel.usage
            << " -usage " << channel.usage << " -axis " << counter++ << ";\n";
    }
}

void writeAttachments(std::ostream& out,
                      const char* name,
                      bool translates,
                      const ChannelLayout::Rotation* rotations,
                      int numRotations)
{
    if (translates)
        for (const char* axis : {"X", "Y", "Z"})
            out << "  attachDeviceAttr -device \"" << kDevice << "\" "
                << "-axis \"" << name << "_pos" << axis << "\" "
                << "\"" << name << "_joint.translate" << axis << "\";\n";
    for (int i = 0; i < numRotations; ++i)
    {
        const RotationChannel channel = rotationChannel(rotations[i].code);
        out << "  attachDeviceAttr -device \"" << kDevice << "\" "
            << "-axis \"" << name << "_" << channel.usage << "\" "
            << "\"" << name << "_joint." << channel.attribute << "\";\n";
    }
}

// The channels of the bodies that the first frame holds, in channel order.
// The checks for a pending error after each body are where the script has
// always stopped when one arrived.
bool writeCreateDevice(std::ostream& out,
                       const BodyTable& bodies,
                       const ChannelLayout& layout)
{
    out << "proc createAMCDevice()\n"
        << "{\n"
        << "  defineVirtualDevice -create;\n";
    int counter = 0;
    for (int body = 0; body < layout.numBodies(); ++body)
    {
        const ChannelLayout::Body& channels = layout.body(body);
        if (!channels.present)
            continue;
        writeDefinitions(out,
                         bodies.name(body),
                         counter,
                         channels.translates,
                         layout.rotations(body),
                         channels.numRotations);
        if (theExceptObj.errorOccurred())
        {
            if (body == BodyTable::kRoot)
                KtError("Unable to convert transformations to channel for "
                        "\"root\".");
            else
                KtError("Unable to convert transformations to channel for "
                        "body \"%s\".",
                        bodies.name(body));
            return false;
        }
    }
    out << "  defineVirtualDevice -device \"" << kDevice << "\";\n"
        << "\n";
    for (int body = 0; body < layout.numBodies(); ++body)
    {
        const ChannelLayout::Body& channels = layout.body(body);
        if (!channels.present)
            continue;
        writeAttachments(out,
                         bodies.name(body),
                         channels.translates,
                         layout.rotations(body),
                         channels.numRotations);
        if (theExceptObj.errorOccurred())
        {
            KtError("Unable to attach device channel to body \"%s\".",
                    bodies.name(body));
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
    const char* timeUnit = mayaTimeUnit(fps);
    if (!timeUnit) // the command line never passes another rate
        std::abort();
    out << "    currentUnit -time " << timeUnit << ";\n";
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

void writeChannelDefinitions(std::ostream& out,
                             const char* name,
                             int& counter,
                             const KaASFDOFGroup& dofs)
{
    std::vector<ChannelLayout::Rotation> rotations;
    ChannelLayout::appendRotations(dofs, &rotations);
    writeDefinitions(out,
                     name,
                     counter,
                     hasTranslationDOF(dofs),
                     rotations.data(),
                     static_cast<int>(rotations.size()));
}

void writeChannelAttachments(std::ostream& out,
                             const char* name,
                             const KaASFDOFGroup& dofs)
{
    std::vector<ChannelLayout::Rotation> rotations;
    ChannelLayout::appendRotations(dofs, &rotations);
    writeAttachments(out,
                     name,
                     hasTranslationDOF(dofs),
                     rotations.data(),
                     static_cast<int>(rotations.size()));
}

void writeMELScript(std::ostream& out,
                    const KaAMC& amc,
                    const BodyTable& bodies,
                    const ChannelLayout& layout,
                    int fps,
                    const KtStr& filterText)
{
    KtList<KtStr> filters = filterNames(filterText);
    writeMELHeader(out, kMotbakeName, kMotbakeVersion);
    if (!writeCreateDevice(out, bodies, layout))
        return;
    writeDeviceProcs(out);
    if (!filters._isNull())
        writeFilterProcs(out);
    // A motion without frames starts at frame 0.
    int firstFrame = amc.numFields() > 0 ? amc.field(0).frameNumber() : 0;
    writeImportProc(out, filters, fps, firstFrame);
}

void writeMELScript(std::ostream& out,
                    const KaASF& asf,
                    const KaAMC& amc,
                    int fps)
{
    BodyTable bodies(asf, &amc.boneNames());
    ChannelLayout layout(bodies, amc);
    writeMELScript(out, amc, bodies, layout, fps, theFilterText);
}

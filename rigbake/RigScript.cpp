// The MEL script that builds a rig's joints in Maya.
#include "rigbake/RigScript.h"

#include <cmath>
#include <cstdio>
#include <ostream>
#include <string>

#include "program/MelScript.h"
#include "rigbake/RigJoints.h"
#include "rigbake/Version.h"

namespace
{

// Ten significant digits hold the six of the MOV text with room to spare,
// and are few enough that a last-bit difference in a machine's sines never
// shows: a rig is written the same everywhere.
constexpr const char* kNumberFormat = "%.10g";
// What is left of a zero after a turn's sines and cosines; written as 0.
constexpr double kResidue = 1e-10;

struct Number
{
    double value;
};

std::ostream& operator<<(std::ostream& out, Number number)
{
    // Adding zero also turns -0 into 0.
    double value =
        std::fabs(number.value) < kResidue ? 0.0 : number.value + 0.0;
    char text[32];
    std::snprintf(text, sizeof text, kNumberFormat, value);
    return out << text;
}

// Maya would give a new joint whose name is taken another name, and
// motbake's channels would then drive the old node.
void writeExistenceCheck(std::ostream& out, const RigJoints& joints)
{
    out << "proc int rigJointsExist()\n"
        << "{\n"
        << "  string $joints[] = {";
    const char* separator = "\n";
    joints.forEach(
        [&](const RigJoint& joint)
        {
            out << separator << "    \"" << joint.name << "\"";
            separator = ",\n";
        });
    out << "\n  };\n"
        << "  int $exists = 0;\n"
        << "\n"
        << "  for ($joint in $joints) {\n"
        << "    if (`objExists $joint`) {\n"
        << "      print(\"// A node named \" + $joint + \" exists "
           "already.\\n\");\n"
        << "      $exists = 1;\n"
        << "    }\n"
        << "  }\n"
        << "\n"
        << "  return $exists;\n"
        << "}\n"
        << "\n";
}

void writeVector(std::ostream& out,
                 const std::string& joint,
                 const char* attribute,
                 const KtVec3d& v)
{
    out << "  setAttr \"" << joint << "." << attribute << "\" -type double3 "
        << Number{v[0]} << " " << Number{v[1]} << " " << Number{v[2]} << ";\n";
}

void writeJoint(std::ostream& out, const RigJoint& joint)
{
    out << "  createNode joint -n \"" << joint.name << "\"";
    if (joint.parent >= 0)
        out << " -p \"" << joint.parentName << "\"";
    out << ";\n";
    writeVector(out, joint.name, "translate", joint.translate);
    if (joint.isEnd)
        return;
    writeVector(out, joint.name, "jointOrient", joint.jointOrient);
    out << "  setAttr \"" << joint.name << ".rotateOrder\" "
        << joint.rotateOrder << ";\n";
}

// The procedure returns a value so that catch can call it.
void writeCreation(std::ostream& out, const RigJoints& joints)
{
    out << "proc int createRigJoints()\n"
        << "{\n";
    joints.forEach([&](const RigJoint& joint) { writeJoint(out, joint); });
    out << "  return 1;\n"
        << "}\n"
        << "\n";
}

// The attributes are set in the units of motbake's take; the user's units
// come back on every path that changed them, also after a failure.
void writeBuild(std::ostream& out)
{
    out << "proc buildRig()\n"
        << "{\n"
        << "  if (rigJointsExist()) {\n"
        << "    print(\"// No joint was created.\\n\");\n"
        << "    return;\n"
        << "  }\n"
        << "\n"
        << "  string $linear = `currentUnit -query -linear`;\n"
        << "  string $angle = `currentUnit -query -angle`;\n"
        << "\n"
        << "  currentUnit -linear \"in\";\n"
        << "  currentUnit -angle \"deg\";\n"
        << "  if (catch(createRigJoints()))\n"
        << "    print(\"// The rig is incomplete.\\n\");\n"
        << "  currentUnit -linear $linear;\n"
        << "  currentUnit -angle $angle;\n"
        << "}\n"
        << "\n"
        << "buildRig;\n";
}

} // namespace

void writeRigScript(std::ostream& out, const RigJoints& joints)
{
    writeMELHeader(out, kRigbakeName, kRigbakeVersion);
    writeExistenceCheck(out, joints);
    writeCreation(out, joints);
    writeBuild(out);
}

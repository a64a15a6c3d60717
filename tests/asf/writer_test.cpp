// The skeleton writer: whole texts in radians and degrees, round trips
// through the reader, DOF group references, limits, the messages of a stream that fails, saving to files
// and the bone-list dump.
#include <cstdio>
#include <sstream>
#include <streambuf>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "asf/KaASF.h"
#include "asf/KaAxisOrder.h"
#include "support/test_helpers.h"
#include "toolkit/KtError.h"

namespace
{

// An internal skeleton in radians, as the writer gives it back once
// lhumerus has lost its id: a shared group referred to in part and whole,
// limits with an infinite end, documentation on two lines, two skin names.
const char* const kRadians = R"(:asf-internal
:version 1.10
:name walker
:units
  angle rad
  mass 1.00
  length 1
:documentation
Test skeleton in radians.
 Second line of notes.
:dofgroups
  begin
    name hand
    dof  rx ry rz
    limits (-1.50 1.50)
           (-0.50 0.50)
           (0.00 2.00)
  end
:root
  axis xyz
  order tx ty tz rx ry rz
  position 0 1.5 -2
  orientation 0.1000 0.0000 -0.2500
:bonedata
  begin
    id 1
    name lowerback
    direction 0.0118 0.9999 -0.0044
    length 2.0482
    axis 0.0000 0.0000 0.0000 xyz
    dof rx ry rz
    limits (-inf 1.22)
           (-0.52 0.52)
           (-0.35 0.35)
  end
  begin
    name lhumerus
    direction 1 0 0
    length 5.0125
    axis 0.0000 0.0000 -1.5708 zyx
    dof tx hand<rx ry>
    limits (-1.00 1.00)
  end
  begin
    id 3
    name rhumerus
    direction -1 0 0
    length 5.0125
    axis 0.0000 0.0000 1.5708 xyz
    dof hand
  end
:hierarchy
  begin
    root lowerback
    lowerback lhumerus rhumerus 
  end
:skin walker.skin
:skin hands.skin
)";

// A skeleton in degrees; written back, only the rotation limit read as -inf
// changes: it was converted like any other value and is a number now.
// Translation limits keep their infinite ends.
const char* const kDegrees = R"(:version 1.10
:name deg
:units
  angle deg
  mass 2.50
  length 1
:root
  axis zyx
  order tx ty tz rz ry rx
  position 0 0 -0.5
  orientation 0.0000 90.0000 -45.0000
:bonedata
  begin
    id 1
    name lfemur
    direction 0.34202 -0.939693 0
    length 7.5429
    axis 0.0000 0.0000 20.0000 xyz
    dof rx ry rz tx ty
    limits (-160.00 20.00)
           (-70.00 70.00)
           (-inf 60.00)
           (-1.50 inf)
           (-inf inf)
  end
:hierarchy
  begin
    root lfemur
  end
)";

// A root without an axis order would be written as one that cannot be read
// back, so every skeleton here gives one.
const std::string kRoot = ":root axis XYZ\n";

// A bone block on one line: "name a" or "id 7 name a", then more data.
std::string bone(const std::string& named, const std::string& more = "")
{
    return "  begin " + named + " direction 0 1 0 length 10 axis 0 0 0 XYZ " +
           more + " end\n";
}

KaASF readText(const std::string& text)
{
    KaASF asf;
    std::istringstream in(text);
    asf.scanFrom(in);
    EXPECT_EQ("", printedChain()) << text;
    return asf;
}

std::string written(const KaASF& asf)
{
    std::ostringstream out;
    asf.printOn(out);
    return out.str();
}

// What the error handler prints for these messages, head first.
std::string chainOf(const std::vector<std::string>& messages)
{
    for (auto older = messages.rbegin(); older != messages.rend(); ++older)
        KtError("%s", older->c_str());
    return printedChain();
}

// Takes the first `room` characters and refuses the rest, as a full disk
// does.
struct FailingBuffer : std::streambuf
{
    explicit FailingBuffer(size_t room)
        : room(room)
    {
    }
    int_type overflow(int_type c) override
    {
        if (room == 0 || traits_type::eq_int_type(c, traits_type::eof()))
            return traits_type::eof();
        --room;
        return c;
    }
    size_t room;
};

} // namespace

// Saved to a file and read from it again, it writes the same text.
TEST(KaASFWriter, WritesARadianSkeletonWholeAndReadsItBackTheSame)
{
    TempDir dir;
    const std::string path = dir.file("walker.asf");
    KaASF first = readText(kRadians);
    first.findBone("lhumerus")->setId(0);
    first.save(path.c_str());
    EXPECT_EQ("", printedChain());
    EXPECT_EQ(kRadians, readFile(path));
    // The id-less bone gets its old id back, the first unused one.
    first.findBone("lhumerus")->setId(2);
    KaASF second;
    second.read(path.c_str());
    EXPECT_EQ(written(first), written(second));
}

// Written as a number beyond the range of float, the converted limit reads
// back as a true infinity, which is written "-inf" again.
TEST(KaASFWriter, WritesADegreeSkeletonInDegreesAndReadsItBackTheSame)
{
    const std::string text = written(readText(kDegrees));
    std::string expected = kDegrees;
    const std::string pair = "(-inf 60.00)";
    expected.replace(expected.find(pair),
                     pair.size(),
                     "(-340282364284986443842966019425922187264.00 60.00)");
    EXPECT_EQ(expected, text);
    EXPECT_EQ(kDegrees, written(readText(text)));
}

TEST(KaASFWriter, WritesARootWithoutDOFsOnTheOrderLine)
{
    KaASF asf;
    KtArray<int> order;
    KaAxisOrderFromWord("XYZ", &order);
    asf.root().setAxisOrder(order);
    asf.root().setPosition(KtPoint(1, 2.5f, 3));
    const std::string text = written(asf);
    EXPECT_EQ(":version 0.00\n:name \n:units\n  angle rad\n  mass 1.00\n"
              "  length 1\n:root\n  axis xyz\n  order  position 1 2.5 3\n"
              "  orientation 0.0000 0.0000 0.0000\n"
              ":hierarchy\n  begin\n    root\n  end\n",
              text);
    EXPECT_EQ(text, written(readText(text)));
}

// The bone's dof line and limits as written, and the same list read back.
TEST(KaASFWriter, WritesGroupReferencesWholeOrByName)
{
    // clang-format off
    const struct { const char* dofs; const char* written; } cases[] = {
        {"hand", "    dof hand\n"},
        {"hand<rx ry>", "    dof hand<rx ry>\n"},
        {"hand<ry rx rz>", "    dof hand<ry rx rz>\n"},
        {"hand<rx> hand<ry rz>", "    dof hand\n"},
        {"hand hand", "    dof hand<rx ry rz rx ry rz>\n"},
        {"tx hand<rz> ty limits (-1 1)", "    dof tx hand<rz> ty\n    limits (-1.00 1.00)\n           (-inf inf)\n"}};
    // clang-format on
    for (const auto& c : cases)
    {
        SCOPED_TRACE(c.dofs);
        KaASF asf = readText(
            ":asf-internal\n:version 1\n:dofgroups\n  begin name hand dof rx "
            "ry rz end\n" +
            kRoot + ":bonedata\n" +
            bone("name b", std::string("dof ") + c.dofs));
        const std::string text = written(asf);
        const size_t from = text.find("    dof", text.find(":bonedata"));
        EXPECT_EQ(c.written,
                  text.substr(from, text.find("  end\n", from) - from));
        EXPECT_EQ(text, written(readText(text)));
    }
}

// Only the exact largest float is infinite, degrees or not; the skeleton
// texts above show the conversions.
TEST(KaASFLimits, WritesInfiniteEndsAsWordsAndOthersWithTwoDecimals)
{
    constexpr float kInf = KaASFLimits::kInfinity;
    // clang-format off
    const struct { float lower, upper; int degrees; const char* written; } cases[] = {
        {-kInf, kInf, 1, "(-inf inf)\n"}, {kInf, -kInf, 0, "(inf -inf)\n"},
        {-1.5f, 0.256f, 0, "(-1.50 0.26)\n"}};
    // clang-format on
    for (const auto& c : cases)
    {
        std::ostringstream out;
        KaASFLimits{c.lower, c.upper}.printOn(out, c.degrees);
        EXPECT_EQ(c.written, out.str());
    }
}

// The stream refuses everything from the start of the named text on.
TEST(KaASFWriter, ReportsWhereTheStreamFailed)
{
    KaASF asf = readText(kRadians);
    const std::string header = "Unable to write header info.";
    const std::string root = "Unable to write root.";
    const std::string bone = "Unable to write bone.";
    // clang-format off
    const struct { const char* from; std::vector<std::string> chain; } cases[] = {
        {":asf-internal", {header, "Unable to write version."}},
        {":version", {header, "Unable to write version."}},
        {":name", {header, "Unable to write skeleton name."}},
        {":units", {header, "Unable to write units."}},
        {"  angle", {header, "Unable to write angle units."}},
        {"  mass", {header, "Unable to write mass conversion factor."}},
        {"  length 1", {header, "Unable to write length conversion factor."}},
        {":documentation", {header, "Unable to write documentation section."}},
        {":dofgroups", {root, root}},
        {"  orientation", {root, root}},
        {":bonedata", {bone}},
        {"    name rhumerus", {bone}},
        // The hierarchy is left to the caller's look at the stream.
        {":hierarchy", {}}};
    // clang-format on
    const std::string text = written(asf);
    for (const auto& c : cases)
    {
        SCOPED_TRACE(c.from);
        FailingBuffer buffer(text.find(c.from));
        std::ostream out(&buffer);
        asf.printOn(out);
        EXPECT_TRUE(out.fail());
        const std::string printed = printedChain();
        EXPECT_EQ(chainOf(c.chain), printed);
    }
}

// The stored length is written as held, so a length unit other than 1
// shortens the bones at every round trip.
TEST(KaASFWriter, WritesLengthsAsHeldWithoutTheLengthUnit)
{
    KaASF asf = readText(":version 1\n:units length 2\n" + kRoot +
                         ":bonedata\n" + bone("name a"));
    const std::string text = written(asf);
    EXPECT_NE(std::string::npos, text.find("\n  length 2\n"));
    EXPECT_NE(std::string::npos, text.find("\n    length 5.0000\n"));
    EXPECT_EQ(2.5f, readText(text).findBone("a")->length());
}

// A full device takes the text into the stream's buffer and fails when it
// is flushed: at closing for a small skeleton, among the bones for a large
// one.
TEST(KaASFWriter, ReportsEveryFailedSave)
{
    TempDir dir;
    const std::string unwritable = "File \"" + dir.path() + "\" is unwritable.";
    const std::string slashed = dir.file("new/");
    const std::string unopened = "Unable to open '" + slashed + "'.";
    KaASF small = readText(kRadians);
    KaASF large;
    for (int i = 0; i < 500; ++i)
        large.addBone(*small.findBone("rhumerus"));
    // clang-format off
    const struct { const KaASF& asf; std::string path; std::vector<std::string> chain; } cases[] = {
        {small, dir.path(), {unwritable, "File is a directory."}},
        {small, slashed, {unopened}},
        {small, "/dev/full", {"Unable to write '/dev/full'."}},
        {large, "/dev/full", {"Unable to write '/dev/full'.", "Unable to write bone."}}};
    // clang-format on
    for (const auto& c : cases)
    {
        SCOPED_TRACE(c.path);
        c.asf.save(c.path.c_str());
        const std::string printed = printedChain();
        EXPECT_EQ(chainOf(c.chain), printed);
    }
}

TEST(KaASF, PrintsTheBoneListWithParents)
{
    KaASF asf = readText(":version 1\n:bonedata\n" + bone("name a") +
                         bone("id 7 name b") +
                         ":hierarchy\n  begin\n    root a\n    a b\n  end\n");
    std::ostringstream none;
    std::ostringstream parent;
    none << static_cast<const void*>(nullptr);
    parent << static_cast<const void*>(asf.findBone("a"));
    std::ostringstream out;
    asf.printBoneListOn(out);
    EXPECT_EQ("*** bone list ***\n  Bone: a\n    id: 1\n    parent: ptr = " +
                  none.str() + "\n  Bone: b\n    id: 7\n    parent: ptr = " +
                  parent.str() + " name = a id = 1\n*** end ***\n",
              out.str());
}

// The skeleton reader: each section's messages with their lines, bone ids,
// internal files with DOF groups, and files on disk.
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "asf/KaASF.h"
#include "support/documents.h"
#include "toolkit/KtError.h"

namespace
{

const std::string kVersion = ":version 1.10\n";
const std::string kInternal = ":asf-internal\n:version 1.10\n";
// Bones a and b on lines 3 and 4; the hierarchy starts on line 5.
const std::string kTwoBones =
    kVersion + ":bonedata\n" + boneBlock("a") + boneBlock("b") + ":hierarchy\n";

std::string chainOf(const std::string& text, KaASF* skeleton = nullptr)
{
    KaASF local;
    KaASF& target = skeleton ? *skeleton : local;
    std::istringstream in(text);
    target.scanFrom(in);
    return printedChain();
}

constexpr const char* kInvalidNumber = "Invalid number.";

// One input per message. The chain expected, head first: the section's
// failure, then `outer` (no line prefix), the message with the prefix of
// `line` (none for 0), and `detail`; the same for the input's Windows twin.
struct ChainCase
{
    std::string input;
    int line;
    const char* message;
    const char* detail = nullptr;
    const char* outer = nullptr;
};

void expectChains(const char* failure, const std::vector<ChainCase>& cases)
{
    for (const ChainCase& c : cases)
        for (const std::string& input : {c.input, withCRLF(c.input)})
        {
            SCOPED_TRACE(input);
            KaASF skeleton;
            const std::string printed = chainOf(input, &skeleton);
            EXPECT_EQ(0, skeleton.numBones());
            const std::string message =
                c.line ? "Line " + std::to_string(c.line) + ":  " + c.message
                       : c.message;
            for (const char* older :
                 {c.detail, message.c_str(), c.outer, failure})
                if (older)
                    KtError("%s", older);
            EXPECT_EQ(printedChain(), printed);
        }
}

} // namespace

// clang-format off
TEST(KaASFReader, ReportsEachSectionsErrorsAtTheirLines)
{
    expectChains(nullptr, {
        {"", 0, "Unexpected end of file."},
        {"hello\n", 0, "File does not contain ASF data.", "File does not contain the ':version' keyword."},
        {":version\n", 0, "Unexpected end of file."}, {kVersion, 0, "Unexpected end of file."},
        {":version abc\n:name x\n", 1, "Invalid value for :version.", kInvalidNumber},
        {":version 1.10 2\n", 0, "Unexpected value for :version section."},
        {":asf-internal x\n:version 1\n", 0, "Unexpected value for :asf-internal section."},
        {kVersion + "\n:dofgroups\n", 3, "Unknown keyword ':dofgroups' encountered."},
    });
    expectChains("Unable to read :name section.", {
        {kVersion + ":name a b\n", 2, "Unexpected data 'b' encountered for :name section."},
    });
    const std::string units = kVersion + ":units\n";
    expectChains("Unable to read :units section.", {
        {units + "  mass 1 mass 2\n", 3, "Duplicate mass specification in :units section."},
        {units + "  mass x\n", 3, "Unable to read mass data in :units section.", kInvalidNumber},
        {units + "  length 1\n  length 2\n", 4, "Duplicate length specification in :units section."},
        {units + "  length\n:root\n", 4, "Unable to read length data in :units section.", kInvalidNumber},
        {units + "  angle deg angle rad\n", 3, "Duplicate angle specification in :units section."},
        {units + "  angle grad\n", 3, "Illegal value for angle."},
        {units + "  weight 3\n", 3, "Unexpected 'weight' in :units section."},
    });
    const std::string root = kVersion + ":root\n";
    expectChains("Unable to read :root section.", {
        {root + "  axis XYZ axis XYZ\n", 3, "Duplicate axis keyword in :root section."},
        {root + "  axis XQZ\n", 3, "Unable to read sequence.", "Invalid axis specification."},
        {root + "  order tx TX\n", 3, "Dof 'tx' specified more than once.", nullptr, "Unable to read order in :root section."},
        {root + "  order rx order ry\n", 3, "Duplicate order keyword in :root section."},
        {root + "  position 1 2\n  orientation 0 0 0\n", 4, "Invalid value for position in :root section.", kInvalidNumber},
        {root + "  position 0 0 0 position 0 0 0\n", 3, "Duplicate position keyword in :root section."},
        {root + "  orientation 0 0 0\n  orientation 1 1 1\n", 4, "Duplicate orientation keyword in :root section."},
        {root + "  orientation 0 x 0\n", 3, "Invalid value for orientation in :root section.", kInvalidNumber},
        {root + "  spin 3\n", 3, "Unexpected 'spin' encountered in :root section."},
        {root + "  axis XYZ\n", 4, "Unexpected end of input."},
    });
    // The block begins on line 3; each keyword stands on a line of its own.
    const std::string section = kVersion + ":bonedata\n";
    const std::string block = section + "  begin\n";
    const std::string named = block + "  name a\n";
    expectChains("Unable to read :bonedata section.", {
        {named + "  end\n", 5, "Direction undefined in :bonedata section."},
        {block + "  id 1\n  end\n", 5, "Name undefined in :bonedata section."},
        {named + "  direction 1 0 0\n  end\n", 6, "Length undefined in :bonedata section."},
        {named + "  direction 1 0 0\n  length 1\n  end\n", 7, "Axis undefined in :bonedata section."},
        {named + "  begin\n", 5, "Expected 'end' keyword in :bonedata section."},
        {named + ":hierarchy\n", 5, "Expected 'end' keyword in :bonedata section."},
        {section + "  end\n", 3, "Unexpected 'end' encountered in :bonedata section."},
        {section + "  name a\n", 3, "Data specified outside of begin/end pair in :bonedata section."},
        {named + "  direction 1 0 0\n  id 2\n", 6, "Id must come before all other data except name in :bonedata section."},
        {named + "  dof rx\n  limits (0 1)\n  id 3\n", 7, "Id must come before all other data except name in :bonedata section."},
        {block + "  id 1\n  name a\n  direction 0 0 1\n  name b\n", 7, "Name must come before all other except id in :bonedata section."},
        {block + "  id 1\n  id 2\n", 5, "Duplicate id specification in :bonedata section."},
        {block + "  id x\n", 4, "Invalid value for 'id' in :bonedata section.", kInvalidNumber},
        {named + "  name b\n", 5, "Duplicate name specification in :bonedata section."},
        {block + "  direction 1 0 0\n", 4, "Direction specification defined before name in :bonedata section."},
        {named + "  direction 0 0 1\n  direction 0 0 1\n", 6, "Duplicate direction specification in :bonedata section."},
        {named + "  direction 1 x 0\n", 5, "Invalid value for direction in :bonedata section.", kInvalidNumber},
        {block + "  length 1\n", 4, "Length specification defined before name in :bonedata section."},
        {named + "  length 1\n  length 1\n", 6, "Duplicate length specification in :bonedata section."},
        {named + "  length\n  axis 0 0 0 XYZ\n", 6, "Invalid value for length in :bonedata section.", kInvalidNumber},
        {block + "  axis 0 0 0 XYZ\n", 4, "Axis defined before name in :bonedata section."},
        {named + "  axis 0 0 0 XYZ\n  axis 0 0 0 XYZ\n", 6, "Duplicate axis specification in :bonedata section."},
        {named + "  axis 0 q 0 XYZ\n", 5, "Invalid value for axis in :bonedata section.", kInvalidNumber},
        {named + "  axis 0 0 0 XYW\n", 5, "Unable to read sequence.", "Invalid axis specification."},
        {block + "  bodymass 1\n", 4, "Bodymass defined before name in :bonedata section."},
        {named + "  bodymass 1\n  bodymass 1\n", 6, "Duplicate bodymass specification in :bonedata section."},
        {named + "  bodymass heavy\n", 5, "Invalid value for bodymass in :bonedata section.", kInvalidNumber},
        {block + "  cofmass 1\n", 4, "Cofmass defined before name in :bonedata section."},
        {named + "  cofmass 1\n  cofmass 1\n", 6, "Duplicate cofmass specification in :bonedata section."},
        {named + "  cofmass -\n", 5, "Invalid value for cofmass in :bonedata section.", kInvalidNumber},
        {block + "  dof rx\n", 4, "Dof defined before name in :bonedata section."},
        {named + "  dof rx\n  dof ry\n", 6, "Duplicate dof specification in :bonedata section."},
        {named + "  dof rx ry\n  limits (0 1)\n  dof rz\n", 7, "Limits defined before dof in :bonedata section."},
        {named + "  dof l L\n", 5, "Dof 'l' specified more than once.", nullptr, "Unable to read dof in :bonedata section."},
        {named + "  limits (0 1)\n", 5, "Limits defined without the definition of dof in :bonedata section."},
        {named + "  dof rx ry\n  limits (0 1)\n  limits (0 1)\n", 7, "Duplicate limits specification in :bonedata section."},
        {named + "  dof rx\n  limits (0 x)\n", 6, "Invalid value for upper limit in :bonedata section.", kInvalidNumber},
        {named + "  dof rx\n  limits (2 1)\n", 6, "Lower limit greater than upper limit in :bonedata section."},
        {named + "  dof rx\n  limits (0 1) (0 1)\n", 6, "Too many limits specified in :bonedata section."},
        {named + "  colour red\n", 5, "Unexpected 'colour' encountered in :bonedata section."},
    });
    // Lines 1-3 hold the header and ":dofgroups". Groups share bone data's
    // checks, given the section's name: one of each check is enough here.
    const std::string groups = kInternal + ":dofgroups\n";
    const std::string group = groups + "  begin name g\n";
    expectChains("Unable to read :dofgroups section.", {
        {group + "  begin\n", 5, "Expected 'end' keyword in :dofgroups section."},
        {groups + "  begin\n  end\n", 5, "Name undefined in :dofgroups section."},
        {group + "  name h\n", 5, "Duplicate name specification in :dofgroups section."},
        {groups + "  begin dof rx\n", 4, "Dof defined before name in :dofgroups section."},
        {group + "  dof rx rx\n", 5, "Unable to read dof in :dofgroups section.", "Line 5:  Dof 'rx' specified more than once."},
        {group + "  limits (0 1)\n", 5, "Limits defined without the definition of dof in :dofgroups section."},
        {group + "  dof rx limits (0 1) (0 1)\n", 5, "Too many limits specified in :dofgroups section."},
        {group + "  weight 3\n", 5, "Unexpected 'weight' encountered in :dofgroups section."},
    });
    // Group "arm" (rx ry) is defined on line 4; the bone's "dof" on line 7.
    const std::string armed = kInternal + ":dofgroups\n  begin name arm dof rx ry end\n:bonedata\n  begin name a\n";
    const char* outer = "Unable to read dof in :bonedata section.";
    expectChains("Unable to read :bonedata section.", {
        {armed + "  dof ARM < rz >\n", 7, "Dofgroup 'arm' does not contain dof 'rz'.", nullptr, outer},
        {armed + "  dof arm < q >\n", 7, "Unexpected 'q' encountered.", nullptr, outer},
        {armed + "  dof arm < >\n", 7, "No dof specified within < >.", nullptr, outer},
        {armed + "  dof arm < rx\n", 8, "Unexpected end of input.", nullptr, outer},
        {armed + "  dof arm arm arm arm arm arm arm arm arm end\n", 7, "Too many dofs specified (at most 16).", nullptr, outer},
    });
    const std::string begun = kTwoBones + "  begin\n";
    expectChains("Unable to read :hierarchy section.", {
        {kTwoBones + "  start\n", 6, "Expected 'begin' keyword in :hierarchy section, got 'start'."},
        {begun + "  a x\n", 7, "Unable to find bone 'x'."}, {begun + "  x a\n", 7, "Unable to find bone 'x'."},
        {begun + "  root a\n  end extra\n", 8, "Unexpected 'extra' encountered after :hierarchy section."},
        {begun + "  root a\n", 8, "Unexpected end of input."},
        {begun + "  root a\n:skin\n", 8, "Expected 'end' keyword in :hierarchy section."},
        {begun + "  a A\n  end\n", 7, "Bone 'a' cannot be its own ancestor."},
        {begun + "  root a\n  a b\n  B a\n  end\n", 9, "Bone 'a' cannot be its own ancestor."},
    });
}
// clang-format on

// "id" and "name" are refused only once a direction was given. A bone
// without an id gets the smallest free one when the file ends; -1 becomes 0.
TEST(KaASFReader, TakesIdsBeforeADirectionFillsTheGapsAndLinksTheBones)
{
    auto withId = [](const char* id, const char* name)
    { return "  begin id " + std::string(id) + boneBlock(name).substr(7); };
    const KaASF skeleton = skeletonFrom(
        kVersion + ":bonedata\n" + boneBlock("a") + withId("3", "b") +
        boneBlock("c") + withId("-1", "d") + withId("1", "e") +
        "  begin name f length 1 bodymass 3 dof rx id 6 "
        "direction 0 0 1 axis 0 0 0 XYZ end\n:hierarchy\n  begin\n"
        "    root a\n    a b c\n    b d\n  end\n");
    std::vector<int> ids;
    for (const KaASFBone* b : skeleton.bones())
        ids.push_back(b->id());
    EXPECT_EQ((std::vector<int>{2, 3, 4, 0, 1, 6}), ids);
    EXPECT_EQ(3.0f, skeleton.findBone("f")->bodyMass());
    // The first child named after a bone on each line.
    EXPECT_EQ(skeleton.findBone("b"), skeleton.findBone("a")->firstChild());
    EXPECT_EQ(skeleton.findBone("d"), skeleton.findBone("b")->firstChild());
}

// Group names are found ignoring case, also by later groups; the limits
// pair goes to the bone's own DOF (tz, a translation, so not converted);
// the others report their groups' limits, in radians. An empty selection
// after other DOFs passes.
TEST(KaASFReader, ReadsGroupsAndReferencesInInternalFiles)
{
    KaASF skeleton = skeletonFrom(
        kInternal + ":units angle deg\n:dofgroups\n" +
        "  begin name Arm dof rx ry limits (0 90) (-90 0) end\n"
        "  begin name twist dof arm < ry > end\n:root order tx ARM\n"
        ":bonedata\n" +
        boneBlock("a", "tz arm < rx > twist limits (-1 1)") +
        boneBlock("b", "arm arm < > rz"));
    EXPECT_EQ(skeleton.findDOFGroup("Arm"),
              skeleton.root().dofGroup().dofs()[2]->group());
    const KaASFDOFGroup& a = skeleton.findBone("a")->dofGroup();
    EXPECT_EQ(1.0f, a.limits(kDofTZ)->upper);
    EXPECT_EQ(1.5707964f, a.limits(kDofRX)->upper);
    EXPECT_EQ(skeleton.findDOFGroup("twist"), a.dofs()[2]->group());
    EXPECT_EQ(-1.5707964f, a.dofs()[2]->limits().lower);
    EXPECT_EQ(3, skeleton.findBone("b")->dofGroup().numDOFs());
}

// A name of 51 characters or more is kept, with a warning.
TEST(KaASFReader, KeepsALongNameWithAWarning)
{
    const std::string warning =
        warningBlock({"Line 2:  :name data exceeds limit of 50 characters."});
    for (int length : {50, 51})
    {
        KaASF skeleton;
        std::string name(length, 'n');
        EXPECT_EQ(length > 50 ? warning : "",
                  chainOf(kVersion + ":name " + name + "\n", &skeleton));
        EXPECT_EQ(name, skeleton.header().name.text());
    }
}

TEST(KaASFReader, EndsSectionsAtTheEndOfTheFile)
{
    KaASF skeleton;
    EXPECT_EQ("",
              chainOf(kVersion + ":documentation\n  text  # note\n  more\n" +
                          ":skin a.skn\n  b.skn\n:skin c.skn\n:units angle deg",
                      &skeleton));
    EXPECT_STREQ("text\n more", skeleton.header().documentation.text());
    ASSERT_EQ(3, skeleton.skinFiles().count());
    EXPECT_STREQ("c.skn", skeleton.skinFiles()[2]);
    EXPECT_EQ(1, skeleton.header().angleUnit);
    EXPECT_EQ("", chainOf(kVersion + ":name bob", &skeleton));
    EXPECT_STREQ("bob", skeleton.header().name.text());
}

// Files are read through the compressed stream (compressed ones run end to
// end). Every failure names the file.
TEST(KaASFReader, ReadsFilesAndSaysWhichOneFailed)
{
    TempDir dir;
    const std::string good = dir.file("walk.asf");
    const std::string bad = dir.file("bad.asf");
    writeFile(good,
              kInternal + ":bonedata\n" + boneBlock("a") + boneBlock("b"));
    writeFile(bad, kVersion + ":bogus\n");
    KaASF skeleton;
    skeleton.read(good.c_str());
    EXPECT_EQ("", printedChain());
    EXPECT_EQ(2, skeleton.numBones());
    EXPECT_EQ(1, KaASF::fileContainsASF(good.c_str()));

    skeleton.read(bad.c_str());
    EXPECT_EQ(errorBlock({("Unable to read '" + bad + "'.").c_str(),
                          "Line 2:  Unknown keyword ':bogus' encountered."}),
              printedChain());
    EXPECT_EQ(0, skeleton.numBones());

    writeFile(bad, "not a skeleton\n");
    EXPECT_EQ(0, KaASF::fileContainsASF(bad.c_str()));
    EXPECT_EQ(errorBlock({("Unable to read \"" + bad + "\".").c_str(),
                          "File does not contain ASF data.",
                          "File does not contain the ':version' keyword."}),
              printedChain());
}

// Hostile skeletons: a very deep chain, huge words, values out of range,
// binary bytes, CRLF line ends and degenerate files. Each gives a skeleton
// or a clear message, in memory in proportion to its size.
#include <cmath>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "asf/KaASF.h"
#include "asf/KaAxisOrder.h"
#include "support/failing_tool.h"
#include "support/heap_watch.h"
#include "support/test_helpers.h"
#include "toolkit/KtError.h"

namespace
{

const std::string kVersion = ":version 1.10\n";
constexpr size_t kMegabyte = 1 << 20;

std::string bone(const std::string& name, const std::string& more = "")
{
    return "  begin name " + name +
           " direction 1 0 0 length 1 axis 0 0 0 XYZ " + more + " end\n";
}

// Reads text into skeleton and returns the printed chain; the peak heap use
// of the read goes to *peak when given.
std::string
chainOf(const std::string& text, KaASF& skeleton, size_t* peak = nullptr)
{
    std::istringstream in(text);
    HeapWatch watch;
    skeleton.scanFrom(in);
    if (peak)
        *peak = watch.peakGrowth();
    return printedChain();
}

std::string printed(const KaASF& skeleton)
{
    std::ostringstream out;
    skeleton.printOn(out);
    return out.str();
}

int depthOf(const KaASFBone* bone)
{
    int levels = 0;
    for (; bone; bone = bone->parent())
        ++levels;
    return levels;
}

// Checked only where the heap can be watched.
void expectPeakBelow(size_t peak, size_t limit)
{
    if (HeapWatch::available())
    {
        EXPECT_LT(peak, limit);
    }
}

} // namespace

// Copying, writing and reading back walk the bones in list order, never
// down the hierarchy, so depth costs no stack. (Reading such a chain is a
// reader test of its own; here it is built in memory.)
TEST(KaASFHostile, AChain100000DeepIsCopiedWrittenAndReadBack)
{
    const int depth = 100000;
    KaASF skeleton;
    KtArray<int> order;
    KaAxisOrderFromWord("XYZ", &order);
    KaASFBone* parent = nullptr;
    for (int i = 0; i < depth; ++i)
    {
        KaASFBone bone;
        bone.setName(("b" + std::to_string(i)).c_str());
        bone.setAxisOrder(order);
        bone.setParent(parent);
        KaASFBone* added = skeleton.addBone(bone);
        if (parent)
            parent->setFirstChild(added);
        parent = added;
    }
    KaASF copy(skeleton);
    KaASF reread;
    EXPECT_EQ("", chainOf(printed(copy), reread));
    EXPECT_EQ(depth, depthOf(reread.findBone("b99999")));
    EXPECT_EQ(reread.findBone("b1"), reread.findBone("b0")->firstChild());
}

// Words are cut at 80 characters, so a huge word costs no memory and is
// reported by its first piece; a NUL byte is no part of a word, so none is
// silently cut short at one.
TEST(KaASFHostile, HugeAndBinaryWordsAreReportedNotHeld)
{
    const std::string huge(kMegabyte, 'x');
    const std::string piece(80, 'x');
    const struct
    {
        const char* what;
        std::string text;
        std::string chain;
    } cases[] = {
        {"a bone name of a megabyte",
         kVersion + ":bonedata\n" + bone(huge),
         errorBlock({"Unable to read :bonedata section.",
                     ("Line 3:  Unexpected '" + piece +
                      "' encountered in :bonedata section.")
                         .c_str()})},
        {"a NUL byte in a bone name",
         kVersion + ":bonedata\n" + bone("a" + std::string(1, '\0') + "b"),
         errorBlock({"Unable to read :bonedata section.",
                     "Line 3:  Unexpected '' encountered in :bonedata "
                     "section."})},
        {"a section keyword of a megabyte",
         kVersion + ":" + huge + "\n",
         errorBlock({("Line 2:  Unknown keyword ':" + piece.substr(1) +
                      "' encountered.")
                         .c_str()})},
        {"a number of a megabyte of digits",
         kVersion + ":bonedata\n" +
             bone("a", "bodymass " + std::string(kMegabyte, '9')),
         errorBlock({"Unable to read :bonedata section.",
                     ("Line 3:  Unexpected '" + std::string(80, '9') +
                      "' encountered in :bonedata section.")
                         .c_str()})},
    };
    for (const auto& c : cases)
    {
        SCOPED_TRACE(c.what);
        KaASF skeleton;
        size_t peak = 0;
        EXPECT_EQ(c.chain, chainOf(c.text, skeleton, &peak));
        EXPECT_EQ(0, skeleton.numBones());
        expectPeakBelow(peak, 64 * 1024);
    }
}

// Numbers convert as "%g" reads them: nan and inf are values, and 1e39 is
// an infinite float. Whatever was read is written so that it reads back the
// same (in radians: in degrees infinite limits deliberately change on each
// pass).
TEST(KaASFHostile, ValuesOutOfRangeSurviveWritingAndReadingBack)
{
    const std::string text =
        kVersion + ":units\n  length nan\n  mass 1e39\n  angle rad\n" +
        ":root\n  order tx rx\n  position nan inf -1e39\n" +
        "  orientation 1e39 -inf NaN\n:bonedata\n" +
        bone("a", "dof rx ry rz limits (nan 1) (-1e39 1e39) (inf inf)") +
        ":hierarchy\n  begin\n    root a\n  end\n";
    KaASF skeleton;
    ASSERT_EQ("", chainOf(text, skeleton));
    EXPECT_TRUE(std::isnan(skeleton.findBone("a")->length()));
    KaASF once;
    KaASF twice;
    const std::string written = printed(skeleton);
    EXPECT_EQ("", chainOf(written, once));
    EXPECT_EQ("", chainOf(printed(once), twice));
    EXPECT_EQ(printed(once), printed(twice));
}

// Windows line ends read exactly like their LF twins, messages and their
// line numbers included, also after a comment as long as a comment may be.
TEST(KaASFHostile, CRLFLineEndsReadLikeLF)
{
    const std::string comment = "#" + std::string(255, 'c') + "\n";
    const std::string good = kVersion + comment + ":bonedata\n" + bone("a") +
                             comment + bone("b", "dof rx ry") +
                             ":hierarchy\n  begin\n    root a\n    a b\n";
    for (const std::string& ending :
         {std::string("  end\n"), std::string("  a c\n  end\n")})
    {
        const std::string lf = good + ending;
        std::string crlf;
        for (char c : lf)
            crlf += c == '\n' ? std::string("\r\n") : std::string(1, c);
        KaASF fromLF;
        KaASF fromCRLF;
        std::string chain = chainOf(lf, fromLF);
        EXPECT_EQ(chain, chainOf(crlf, fromCRLF));
        EXPECT_EQ(printed(fromLF), printed(fromCRLF));
    }
}

// A file of nothing but many small things holds memory in proportion to
// its size: bones, DOF group references, skin names, documentation.
TEST(KaASFHostile, DegenerateSkeletonsCostInProportionToTheirSize)
{
    std::string bones = kVersion + ":bonedata\n";
    for (int i = 0; i < 20000; ++i)
        bones += "begin name " + std::to_string(i) +
                 " direction 0 0 0 length 0 axis 0 0 0 xyz end\n";
    std::string groups =
        ":asf-internal\n" + kVersion + ":dofgroups\nbegin name g dof rx end\n";
    for (int i = 0; i < 5000; ++i)
        groups += "begin name g dof g g g g g g g g g g g g g g g g end\n";
    std::string skins;
    for (int i = 0; i < 200000; ++i)
        skins += " s";
    const struct
    {
        const char* what;
        std::string text;
    } cases[] = {
        {"many bones", bones},
        {"many references to groups", groups},
        {"many skin names", kVersion + ":skin" + skins},
        {"a long documentation",
         kVersion + ":documentation\n" + std::string(kMegabyte, 'd')},
    };
    for (const auto& c : cases)
    {
        SCOPED_TRACE(c.what);
        KaASF skeleton;
        size_t peak = 0;
        EXPECT_EQ("", chainOf(c.text, skeleton, &peak));
        expectPeakBelow(peak, 48 * c.text.size());
    }
}

// A compressor that fails leaves a file that is not the skeleton: saving
// reports it.
TEST(KaASFHostile, SavingThroughAFailingCompressorFails)
{
    KaASF skeleton;
    ASSERT_EQ("", chainOf(kVersion + ":bonedata\n" + bone("a"), skeleton));
    TempDir dir;
    const std::string path = dir.file("body.asf.gz");
    FailingTool gzip("gzip");
    skeleton.save(path.c_str());
    EXPECT_EQ(errorBlock({("Unable to write '" + path + "'.").c_str()}),
              printedChain());
}

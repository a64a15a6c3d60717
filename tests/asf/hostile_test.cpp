// Hostile skeletons give a skeleton or a clear message, in memory in
// proportion to their size.
#include <cmath>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "asf/KaASF.h"
#include "support/documents.h"
#include "support/heap_watch.h"
#include "support/test_helpers.h"

namespace
{

const std::string kVersion = ":version 1.10\n";
constexpr size_t kMegabyte = 1 << 20;

// The chain of a word refused in the bone on line 3.
std::string unexpected(const std::string& word)
{
    const std::string message =
        "Line 3:  Unexpected '" + word + "' encountered in :bonedata section.";
    return errorBlock({"Unable to read :bonedata section.", message.c_str()});
}

} // namespace

// Words are cut at 80 characters, so a huge word costs no memory and is
// reported by its first piece; a NUL byte is no part of a word, so none is
// silently cut short at one. A file of nothing but many small things holds
// at most 8 bytes for each of its bytes; a two-letter reference to a group
// stands for a whole DOF, and only the cap of 16 DOFs to a list bounds those.
TEST(KaASFHostile, HostileTextsGiveTheirChainInBoundedMemory)
{
    const std::string huge(kMegabyte, 'x');
    const std::string keyword =
        "Line 2:  Unknown keyword ':" + huge.substr(0, 79) + "' encountered.";
    std::string bones = kVersion + ":bonedata\n";
    std::string dofs = bones;
    std::string named = ":asf-internal\n" + kVersion + ":dofgroups\n";
    for (int i = 0; i < 20000; ++i)
    {
        const std::string block = "begin name " + std::to_string(i) +
                                  " direction 0 0 0 length 0 axis 0 0 0 xyz";
        bones += block + " end\n";
        dofs += block + " dof rx ry rz tx ty tz l end\n";
        named += "begin name " + std::to_string(i) + " end\n";
    }
    std::string groups =
        ":asf-internal\n" + kVersion + ":dofgroups\nbegin name g dof rx end\n";
    for (int i = 0; i < 5000; ++i)
        groups += "begin name g dof g g g g g g g g g g g g g g g g end\n";
    // "<" is a word of its own, even without blanks around it.
    const std::string skins = kVersion + ":skin\n" + std::string(400000, '<');
    const std::string documentation =
        kVersion + ":documentation\n" + std::string(kMegabyte, 'd');
    const size_t small = 64 * 1024;
    // clang-format off
    const struct { const char* what; std::string text; std::string chain; size_t peakLimit; } cases[] = {
        {"a bone name of a megabyte", kVersion + ":bonedata\n" + boneBlock(huge), unexpected(huge.substr(0, 80)), small},
        {"a NUL byte in a bone name", kVersion + ":bonedata\n" + boneBlock(std::string("a\0b", 3)), unexpected(""), small},
        {"a section keyword of a megabyte", kVersion + ":" + huge + "\n", errorBlock({keyword.c_str()}), small},
        {"a number of a megabyte of digits", kVersion + ":bonedata\n" + boneBlock("a bodymass " + std::string(kMegabyte, '9')), unexpected(std::string(80, '9')), small},
        {"many bones", bones, "", 8 * bones.size()}, {"many bones with all DOFs", dofs, "", 8 * dofs.size()},
        {"many groups", named, "", 8 * named.size()}, {"many references to groups", groups, "", 9 * groups.size()},
        {"many skin names", skins, "", 8 * skins.size()},
        {"a long documentation", documentation, "", 8 * documentation.size()}};
    // clang-format on
    for (const auto& c : cases)
    {
        SCOPED_TRACE(c.what);
        KaASF skeleton;
        size_t peak = 0;
        EXPECT_EQ(c.chain, scanWatched(skeleton, c.text, &peak));
        EXPECT_LT(peak, c.peakLimit);
        EXPECT_TRUE(c.chain.empty() || skeleton.numBones() == 0);
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
        boneBlock("a", "rx ry rz limits (nan 1) (-1e39 1e39) (inf inf)") +
        ":hierarchy\n  begin\n    root a\n  end\n";
    KaASF skeleton, once, twice;
    ASSERT_EQ("", scanWatched(skeleton, text));
    EXPECT_TRUE(std::isnan(skeleton.findBone("a")->length()));
    EXPECT_EQ("", scanWatched(once, writtenText(skeleton)));
    EXPECT_EQ("", scanWatched(twice, writtenText(once)));
    EXPECT_EQ(writtenText(once), writtenText(twice));
}

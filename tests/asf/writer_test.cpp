// The skeleton writer, which the programs never call: a whole skeleton read
// back the same, numbers in degrees, and failed saves.
#include <string>

#include <gtest/gtest.h>

#include "support/documents.h"

namespace
{

// An internal skeleton in radians, as the writer gives it back once
// lhumerus has lost its id: a shared group referred to in part and whole,
// limits with an infinite end, documentation on two lines, two skin names.
const std::string kRadians = readFile(TEST_DATA_DIR "/asf/walker.asf");

} // namespace

// Saved to a file and read from it again, it writes the same text.
TEST(KaASFWriter, WritesARadianSkeletonWholeAndReadsItBackTheSame)
{
    TempDir dir;
    const std::string path = dir.file("walker.asf");
    KaASF first = skeletonFrom(kRadians);
    first.findBone("lhumerus")->setId(0);
    first.save(path.c_str());
    EXPECT_EQ("", printedChain());
    EXPECT_EQ(kRadians, readFile(path));
    // The id-less bone gets its old id back, the first unused one.
    first.findBone("lhumerus")->setId(2);
    KaASF second;
    second.read(path.c_str());
    EXPECT_EQ(writtenText(first), writtenText(second));
}

// Angles go back to degrees with four decimals, rotation limits with two; a
// rotation limit read as -inf was converted like any other value and is a
// number now, a translation limit keeps its infinite end. Lengths are
// written as held, without the length unit. A root without DOFs writes its
// position on the order line.
TEST(KaASFWriter, WritesDegreesLengthsAsHeldAndAnEmptyRootOrder)
{
    const std::string text = writtenText(
        skeletonFrom(":version 1.10\n:units length 2 angle deg\n:root axis XYZ "
                     "position 0 0 1 orientation 0 90 0\n:bonedata\n" +
                     boneBlock("arm",
                               "rx tx limits (-inf 20) (-1.5 inf)",
                               "direction 1 0 0 length 10 axis 0 0 20 XYZ")));
    for (const char* line :
         {"  angle deg\n",
          "  length 2\n",
          "  order  position 0 0 1\n  orientation 0.0000 90.0000 0.0000\n",
          "    length 5.0000\n",
          "    axis 0.0000 0.0000 20.0000 xyz\n",
          "    limits (-340282364284986443842966019425922187264.00 20.00)\n"
          "           (-1.50 inf)\n"})
        EXPECT_NE(std::string::npos, text.find(line)) << line << text;
}

// A full device takes the text into the stream's buffer and fails when it
// is flushed: at closing for a small skeleton, among the bones for a large
// one.
TEST(KaASFWriter, ReportsEveryFailedSave)
{
    TempDir dir;
    const std::string unwritable = "File \"" + dir.path() + "\" is unwritable.";
    KaASF small = skeletonFrom(kRadians);
    KaASF large;
    for (int i = 0; i < 500; ++i)
        large.addBone(*small.findBone("rhumerus"));
    // clang-format off
    const struct { const KaASF& asf; std::string path; std::string chain; } cases[] = {
        {small, dir.path(), errorBlock({unwritable.c_str(), "File is a directory."})},
        {small, "/dev/full", errorBlock({"Unable to write '/dev/full'."})},
        {large, "/dev/full", errorBlock({"Unable to write '/dev/full'.", "Unable to write bone."})}};
    // clang-format on
    for (const auto& c : cases)
    {
        SCOPED_TRACE(c.path);
        c.asf.save(c.path.c_str());
        EXPECT_EQ(c.chain, printedChain());
    }
}

// Hostile motions: huge lines and names, odd frame numbers, binary bytes,
// CRLF line ends and degenerate files. Each gives a document or a clear
// message, in time and memory in proportion to its size.
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "amc/KaAMC.h"
#include "support/failing_tool.h"
#include "support/heap_watch.h"
#include "support/test_helpers.h"
#include "toolkit/KtError.h"

namespace
{

const std::string kHeader = ":FULLY-SPECIFIED\n:DEGREES\n";
constexpr size_t kMegabyte = 1 << 20;

std::string repeated(const std::string& piece, size_t times)
{
    std::string text;
    text.reserve(piece.size() * times);
    for (size_t i = 0; i < times; ++i)
        text += piece;
    return text;
}

// Reads text into motion and returns the printed chain; the peak heap use
// of the read goes to *peak when given.
std::string
chainOf(const std::string& text, KaAMC& motion, size_t* peak = nullptr)
{
    std::istringstream in(text);
    HeapWatch watch;
    motion.scanFrom(in);
    if (peak)
        *peak = watch.peakGrowth();
    return printedChain();
}

// Checked only where the heap can be watched.
void expectPeakBelow(size_t peak, size_t limit)
{
    if (HeapWatch::available())
    {
        EXPECT_LT(peak, limit);
    }
}

std::string printed(const KaAMC& motion)
{
    std::ostringstream out;
    motion.printOn(out);
    return out.str();
}

} // namespace

// Nothing of an over-long line is held beyond what its message shows, but
// a keyword line, read whole to name it in its message (by its start). The
// reader itself holds one block of the file at a time (64 KiB).
TEST(KaAMCHostile, OverlongTextIsRefusedWithoutBeingHeld)
{
    const size_t kHeldAtMost = 256 * 1024;
    const std::string keyword =
        "Unrecognized key word \"" + std::string(200, 'K') + "...\".";
    const struct
    {
        const char* what;
        std::string text;
        std::string chain;
        size_t peakLimit;
    } cases[] = {
        {"a value line of megabytes without a line end",
         kHeader + "1\nroot " + repeated("1 ", 2 * kMegabyte),
         errorBlock({"Unable to read field.",
                     "Unable to read bone 'root' for field 1.",
                     "Unable to read bone's values.",
                     "The bone's values are longer than 126 characters."}),
         kHeldAtMost},
        {"a bone name of a megabyte",
         kHeader + "1\n" + std::string(kMegabyte, 'b') + " 1 2 3\n",
         errorBlock({"Unable to read field.",
                     "Unable to read bone name for field 1.",
                     "The bone name \"bbbbbbbbbbbbbbbbbbbb...\" is longer "
                     "than 118 characters."}),
         kHeldAtMost},
        {"NUL bytes where a bone name starts",
         kHeader + "1\nroot 1\n" + std::string(kMegabyte, '\0'),
         errorBlock({"Unable to read field.",
                     "Unable to read bone name for field 1.",
                     "The bone name \"????????????????????...\" is longer "
                     "than 118 characters."}),
         kHeldAtMost},
        {"a frame number of a megabyte of digits",
         kHeader + std::string(kMegabyte, '9') + "\nroot 1\n",
         errorBlock({"Unable to read field.", "Unable to read field number."}),
         kHeldAtMost},
        {"a keyword line of megabytes",
         ":" + std::string(4 * kMegabyte, 'K') + "\n" + kHeader,
         errorBlock({"File does not contain amc data.", keyword.c_str()}),
         4 * 4 * kMegabyte},
    };
    for (const auto& c : cases)
    {
        SCOPED_TRACE(c.what);
        KaAMC motion;
        size_t peak = 0;
        EXPECT_EQ(c.chain, chainOf(c.text, motion, &peak));
        EXPECT_EQ(0, motion.numFields());
        expectPeakBelow(peak, c.peakLimit);
    }
}

// The first field's number is any int; a later line that starts with '-'
// is a bone name, as the format has it.
TEST(KaAMCHostile, FrameNumbersAtTheLimitsOfInt)
{
    const struct
    {
        std::string first;
        int frame;
        std::string chain;
    } cases[] = {
        {"0", 0, ""},
        {"-7", -7, ""},
        {"2147483647", 2147483647, ""},
        {"-2147483648", -2147483647 - 1, ""},
        {"2147483648",
         0,
         errorBlock({"Unable to read field.", "Unable to read field number."})},
        {"-2147483649",
         0,
         errorBlock({"Unable to read field.", "Unable to read field number."})},
    };
    for (const auto& c : cases)
    {
        SCOPED_TRACE(c.first);
        KaAMC motion;
        EXPECT_EQ(c.chain,
                  chainOf(kHeader + c.first + "\nroot 1\n-1 2\n", motion));
        if (!c.chain.empty())
            continue;
        ASSERT_EQ(1, motion.numFields());
        EXPECT_EQ(c.frame, motion.field(0).frameNumber());
        ASSERT_EQ(2, motion.field(0).numBones());
        EXPECT_STREQ("-1", motion.boneNames()[1].text());
    }
}

// Windows line ends read exactly like their LF twins, also where a line is
// as long as a line may be.
TEST(KaAMCHostile, CRLFLineEndsReadLikeLF)
{
    // The 126 characters after the name, as many as a line may hold.
    const std::string longest = "lfemur 1" + std::string(123, ' ') + "2";
    const std::string lf = "# comment\n" + kHeader + "1\nroot 1 2 3\n" +
                           longest + "\nrhand\n2\nroot 4 5 6\n" + longest +
                           "\nrhand 7\n";
    std::string crlf;
    for (char c : lf)
        crlf += c == '\n' ? std::string("\r\n") : std::string(1, c);
    KaAMC fromLF;
    KaAMC fromCRLF;
    EXPECT_EQ("", chainOf(lf, fromLF));
    ASSERT_EQ("", chainOf(crlf, fromCRLF));
    EXPECT_EQ(printed(fromLF), printed(fromCRLF));
    EXPECT_EQ(2, fromCRLF.field(1).bone(1).numValues());
}

// Lines that claim nothing still cost a record each (a frame of two bytes
// holds 32 while the fields are gathered); that cost stays a bounded
// multiple of the line, and a field of many lines is read in linear time.
TEST(KaAMCHostile, DegenerateMotionsCostInProportionToTheirSize)
{
    const struct
    {
        const char* what;
        std::string text;
        int fields;
    } cases[] = {
        {"empty fields", kHeader + repeated("1\n", 500000), 500000},
        {"one field of bones without values",
         kHeader + "1\n" + repeated("b\n", 400000),
         1},
        {"many fields of bones without values",
         kHeader + repeated("1\nb\nc\n", 150000),
         150000},
    };
    for (const auto& c : cases)
    {
        SCOPED_TRACE(c.what);
        KaAMC motion;
        size_t peak = 0;
        EXPECT_EQ("", chainOf(c.text, motion, &peak));
        EXPECT_EQ(c.fields, motion.numFields());
        expectPeakBelow(peak, 48 * c.text.size());
    }
}

// A compressor that fails leaves a file that is not the motion: saving
// reports it.
TEST(KaAMCHostile, SavingThroughAFailingCompressorFails)
{
    KaAMC motion;
    ASSERT_EQ("", chainOf(kHeader + "1\nroot 1 2 3\n", motion));
    TempDir dir;
    const std::string path = dir.file("move.amc.gz");
    FailingTool gzip("gzip");
    motion.save(path.c_str());
    EXPECT_EQ(errorBlock({("Unable to write '" + path + "'.").c_str()}),
              printedChain());
}

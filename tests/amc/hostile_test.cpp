// Hostile motions give a document or a clear message, in time and memory in
// proportion to their size.
#include <string>

#include <gtest/gtest.h>

#include "amc/KaAMC.h"
#include "support/heap_watch.h"
#include "support/test_helpers.h"

namespace
{

const std::string kHeader = ":FULLY-SPECIFIED\n:DEGREES\n";
constexpr size_t kMegabyte = 1 << 20;

std::string repeated(const std::string& piece, size_t times)
{
    std::string text;
    while (times-- > 0)
        text += piece;
    return text;
}

} // namespace

// Nothing of an over-long line is held beyond what its message shows, but
// a keyword line, read whole to name it in its message (by its start). The
// reader itself holds one block of the file at a time (64 KiB). Lines that
// claim nothing still cost a record each, at most 8 bytes for each of their
// bytes; a frame of two bytes costs 8, but the sanitizer's realloc holds the
// old table and the grown one at once while it copies (a plain build's
// realloc of a large block moves no data), so that peak is 2.5 times as
// much. A field of many lines is read in linear time.
TEST(KaAMCHostile, HostileTextsGiveTheirChainInBoundedMemory)
{
    const std::string field = "Unable to read field.";
    const std::string name = "Unable to read bone name for field 1.";
    const std::string keyword =
        "Unrecognized key word \"" + std::string(200, 'K') + "...\".";
    const std::string empty = kHeader + repeated("1\n", 500000);
    const std::string longField = kHeader + "1\n" + repeated("b\n", 400000);
    const std::string manyFields = kHeader + repeated("1\nb\nc\n", 150000);
    const size_t held = 256 * 1024;
    // clang-format off
    const struct { const char* what; std::string text; std::string chain; size_t peakLimit; int fields; } cases[] = {
        {"a value line of megabytes without a line end", kHeader + "1\nroot " + repeated("1 ", 2 * kMegabyte),
         errorBlock({field.c_str(), "Unable to read bone 'root' for field 1.", "Unable to read bone's values.",
                     "The bone's values are longer than 126 characters."}), held, 0},
        {"a bone name of a megabyte", kHeader + "1\n" + std::string(kMegabyte, 'b') + " 1 2 3\n",
         errorBlock({field.c_str(), name.c_str(), "The bone name \"bbbbbbbbbbbbbbbbbbbb...\" is longer than 118 characters."}), held, 0},
        {"NUL bytes where a bone name starts", kHeader + "1\nroot 1\n" + std::string(kMegabyte, '\0'),
         errorBlock({field.c_str(), name.c_str(), "The bone name \"????????????????????...\" is longer than 118 characters."}), held, 0},
        {"a frame number of a megabyte of digits", kHeader + std::string(kMegabyte, '9') + "\nroot 1\n",
         errorBlock({field.c_str(), "Unable to read field number."}), held, 0},
        {"a keyword line of megabytes", ":" + std::string(4 * kMegabyte, 'K') + "\n" + kHeader,
         errorBlock({"File does not contain amc data.", keyword.c_str()}), 16 * kMegabyte, 0},
        {"empty fields", empty, "", 10 * empty.size(), 500000},
        {"one field of bones without values", longField, "", 8 * longField.size(), 1},
        {"many fields of bones without values", manyFields, "", 8 * manyFields.size(), 150000}};
    // clang-format on
    for (const auto& c : cases)
    {
        SCOPED_TRACE(c.what);
        KaAMC motion;
        size_t peak = 0;
        EXPECT_EQ(c.chain, scanWatched(motion, c.text, &peak));
        EXPECT_EQ(c.fields, motion.numFields());
        EXPECT_LT(peak, c.peakLimit);
    }
}

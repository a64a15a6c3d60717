// The AMC reader: values, the header check, fields and their chains.
#include <cstring>
#include <random>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "amc/KaAMC.h"
#include "support/documents.h"
#include "toolkit/KtError.h"

namespace
{

const std::string kHeader = ":FULLY-SPECIFIED\n:DEGREES\n";

KaAMC scanned(const std::string& text)
{
    std::istringstream in(text);
    KaAMC amc;
    amc.scanFrom(in);
    return amc;
}

// A motion in one line: "frame: name values, name values; frame: ...",
// with "?" for a bone without a name.
std::string described(const KaAMC& amc)
{
    std::ostringstream out;
    for (int f = 0; f < amc.numFields(); ++f)
    {
        const KaAMCField& field = amc.field(f);
        out << field.frameNumber() << ":";
        for (int b = 0; b < field.numBones(); ++b)
        {
            const KaAMCBone& bone = field.bone(b);
            out << (b ? ", " : " ") << (bone.name() ? bone.name() : "?");
            for (int v = 0; v < bone.numValues(); ++v)
                out << " " << bone.value(v);
        }
        out << "; ";
    }
    return out.str();
}

// What reading a body after the header gives: the fields, after the printed
// chain of a failure (which must leave neither fields nor names).
std::string bodyRead(const std::string& body)
{
    KaAMC amc = scanned(kHeader + body);
    std::string text = printedChain();
    if (amc.numFields() == 0 && amc.boneNames().count() > 0)
        text += "names kept; ";
    return text + described(amc);
}

} // namespace

// A line's values are exactly, bit for bit, what a stream's float
// extraction reads, up to the first text that is not a number. Short
// decimals take an exact shortcut, longer ones std::from_chars; both must
// agree with the stream around every boundary, on fixed and random lines.
TEST(KaAMCBone, ReadsValuesAsStreamExtractionDoes)
{
    // One case per line; all but the first four stop early.
    std::istringstream fixed(
        " \t1.5 2 -3 +2 .5 -.5e1 5. 1.5.3 1-2 1e5 1E-2 007 -0\r\n"
        "3.4028235e38 1e-40 -1e-50 7e-46 7.1e-46 1e-50 7\n"
        // ties, and ties broken past the 19th digit
        "1.000000059604644775390625 1.0000000596046447753906251 16777217\n"
        "3.4028235677973366e38 3.4028236e38\n"
        "1e 1\n1e+\n- 1\n. 1\ninf 1\nnan\n1e39 2\n-1e39\n0x10\n1,5\n+-5\n"
        "12abc 3\n");
    std::vector<std::string> lines;
    for (std::string line; std::getline(fixed, line);)
        lines.push_back(line);
    std::mt19937 random(20240611);
    auto digits = [&](unsigned count)
    {
        std::string text;
        for (unsigned i = 0; i < count; ++i)
            text += static_cast<char>('0' + random() % 10);
        return text;
    };
    const char* signs[] = {"", "+", "-"};
    for (int i = 0; i < 200000; ++i)
    {
        std::string number = signs[random() % 3] + digits(random() % 10);
        if (random() % 2)
            number += "." + digits(random() % 10);
        if (random() % 3 == 0)
            number += (random() % 2 ? "e" : "E") +
                      std::string(random() % 2 ? "-" : "") +
                      std::to_string(random() % 50);
        lines.push_back(number + " 1");
    }
    std::string field = kHeader + "1\n";
    for (const std::string& line : lines)
        field += "b " + line + "\n";
    KaAMC amc = scanned(field);
    ASSERT_EQ(static_cast<int>(lines.size()), amc.field(0).numBones());
    for (size_t l = 0; l < lines.size(); ++l)
    {
        std::istringstream reference(lines[l]);
        const KaAMCBone bone = amc.field(0).bone(static_cast<int>(l));
        int i = 0;
        for (float value; reference >> value; ++i) // bit for bit: -0 is not 0
            ASSERT_TRUE(i < bone.numValues() &&
                        std::memcmp(&value, bone.values() + i, 4) == 0)
                << lines[l];
        ASSERT_EQ(i, bone.numValues()) << lines[l];
    }
}

TEST(KaAMCHeader, AcceptsVariantsAndNamesWhatIsMissing)
{
    const std::string comment = "#" + std::string(128, 'x');
    const std::string k200(200, 'k');
    // Text, units found, reason. Without a reason the header is complete
    // and the body starts at "1".
    // clang-format off
    const std::tuple<std::string, int, std::string> cases[] = {
        {"# c\n\n  :fully-specified \n\t:radians\r\n 1", 0, ""}, {"#\xfc\r\n:FULLY-SPECIFIED\r\n:DEGREES\r\n1\r\n", 1, ""},
        {":DEGREES\n:RADIANS\n:FULLY-SPECIFIED\n1", 0, ""}, {comment + "\n" + kHeader + "1", 1, ""},
        // The rest of a comment past 128 characters is a new line.
        {comment + ":RADIANS\n:FULLY-SPECIFIED\n1", 0, ""},
        {":DEGREES\n1\n", 1, "File does not specify mode."}, {":FULLY-SPECIFIED\n1\n", 1, "File does not specify units."},
        {":RADIANS\n:ANGLE\n1", 0, "Unrecognized key word \"ANGLE\"."}, {":FULLY-SPECIFIED\n:\n1", 1, "Unrecognized key word \"\"."},
        {":" + k200 + k200, 1, "Unrecognized key word \"" + k200 + "...\"."},
        {"", 1, "Error reading file."}, {kHeader + " \n# end\n", 1, "Error reading file."}};
    // clang-format on
    for (const auto& [text, expectedUnits, reason] : cases)
    {
        SCOPED_TRACE(text);
        std::istringstream in(text);
        int units = 1;
        KtStr message;
        EXPECT_EQ(reason.empty(),
                  KaAMC::streamContainsAMC(in, &units, nullptr, &message));
        EXPECT_EQ(expectedUnits, units);
        EXPECT_EQ(reason, message.text());
        EXPECT_TRUE(!reason.empty() || in.peek() == '1');
    }
    EXPECT_FALSE(theExceptObj.exceptionOccurred());
}

// Frame numbers are kept as written, out of order or repeated. The first
// field names the bones; one with fewer names only its own, extra bones stay
// unnamed.
TEST(KaAMCReader, FirstFieldNamesTheBonesOfEveryFieldByPosition)
{
    KaAMC amc = documentFrom<KaAMC>(
        "# two bones and a hand\n" + kHeader +
        "5\nroot 1 2 3 4 5 6\nlfemur 10 11 12\nrhand\n"
        "3\nROOT 7 8 9 10 11 12\nlfemur 13\n3\nroot 0 0 0 0 0 0\n"
        "lfemur 1.5 -2e-3 3\nrhand 1\nlhand 2\n");
    EXPECT_EQ("5: root 1 2 3 4 5 6, lfemur 10 11 12, rhand; "
              "3: root 7 8 9 10 11 12, lfemur 13; "
              "3: root 0 0 0 0 0 0, lfemur 1.5 -0.002 3, rhand 1, ? 2; ",
              described(amc));
    EXPECT_EQ(3, amc.boneNames().count());
    EXPECT_EQ(1, amc.field(2).findBone("LFEMUR"));
    EXPECT_EQ(-1, amc.field(1).findBone("rhand"));
    EXPECT_EQ(-1, amc.field(2).findBone("lhand"));
}

// Later fields are still read by position; the first one whose lines part
// from the first field's (a name that differs ignoring case, a line more or
// less) is told, and only it; a copy keeps it, a new read replaces it. Short
// and long names alike compare exactly first, then ignoring case.
TEST(KaAMCReader, TellsTheFirstFieldWhoseBoneLinesDiffer)
{
    // clang-format off
    const struct { const char* fields; int field, line; const char* name; } cases[] = {
        {"1\nroot 1\narm 2\n2\nROOT 3\nArm 4\n", -1, -1, ""},
        {"1\nroot 1\narm 2\n2\nroot 3\narm 4\n3\narm 5\nroot 6\n4\nx 1\n", 2, 0, "arm"},
        {"1\nroot 1\narm 2\n2\nroot 3\narm 4\nleg 5\n", 1, 2, "leg"},
        {"1\nroot 1\narm 2\n2\nroot 3\n3\nroot 3\narm 4\n", 1, 1, ""},
        {"1\nname_of_15_abcd 1\nlong_name_of_19_abc 2\n2\nNAME_OF_15_ABCD 1\nlong_name_of_19_ABC 2\n", -1, -1, ""},
        {"1\nname_of_15_abcd 1\n2\nname_of_15_abcde 1\n", 1, 0, "name_of_15_abcde"},
        {"1\nlong_name_of_19_abc 1\n2\nlong_name_of_19_abd 1\n", 1, 0, "long_name_of_19_abd"}};
    // clang-format on
    for (const auto& c : cases)
    {
        SCOPED_TRACE(c.fields);
        KaAMC amc = scanned(kHeader + c.fields);
        const KaAMC copy = amc;
        EXPECT_EQ(c.field, copy.lineMismatch().field);
        EXPECT_EQ(c.line, copy.lineMismatch().line);
        EXPECT_STREQ(c.name, copy.lineMismatch().name.text());
        EXPECT_STREQ(amc.boneNames()[0], amc.field(1).bone(0).name());
        std::istringstream again(kHeader + "1\nroot 1\n");
        amc.scanFrom(again);
        EXPECT_EQ(-1, amc.lineMismatch().field);
    }
}

// Frame numbers are what a stream's int extraction reads. A field ends
// where a word starts with a digit; a failure clears the document.
TEST(KaAMCReader, ReadsFieldsAsWritten)
{
    const std::string name118(118, 'n');
    const std::string values126 = " 1" + std::string(123, ' ') + "2";
    const std::string noNumber =
        errorBlock({"Unable to read field.", "Unable to read field number."});
    const std::string longName = "The bone name \"" + std::string(20, 'n') +
                                 "...\" is longer than 118 characters.";
    // clang-format off
    const std::pair<std::string, std::string> cases[] = {
        {"+7\nroot 1\n007\nroot 2\n2147483647", "7: root 1; 7: root 2; 2147483647:; "},
        {"-2147483648\nroot 1\n", "-2147483648: root 1; "},
        {"2147483648\nroot 1\n", noNumber}, {"-2147483649\nroot 1\n", noNumber},
        {"-\nroot 1\n", noNumber}, {"root 1 2\n", noNumber},
        // The last field needs no final newline, nor a frame any bones.
        {"1\nroot 1 2\nlhand 3 4", "1: root 1 2, lhand 3 4; "}, {"7\nroot 1\n8", "7: root 1; 8:; "},
        // A non-number ends the values quietly.
        {"1\nroot abc 1\nlhand 1 x 2\n", "1: root, lhand 1; "}, {"1\r\n  root 1\r\n\tlhand\t 2.5\r\n\r\n", "1: root 1, lhand 2.5; "},
        // Only a digit starts a field: "-2" is a bone.
        {"1\nroot 1\n-2\nlhand 7\n", "1: root 1, -2, lhand 7; "},
        // A last name with neither values nor a newline is dropped.
        {"1\nroot 1\nlhand 9\nrhand", "1: root 1, lhand 9; "},
        // The longest name and value line (its blank included) that fit.
        {"7\n" + name118 + values126, "7: " + name118 + " 1 2; "},
        {withCRLF("7\n" + name118 + values126 + "\n"), "7: " + name118 + " 1 2; "},
        {"7\nroot 1\n" + name118 + "nX 1\n",
         errorBlock({"Unable to read field.", "Unable to read bone name for field 7.", longName.c_str()})},
        {"7\nroot 1\n8\nlfemur" + values126 + "3\n9\n",
         errorBlock({"Unable to read field.", "Unable to read bone 'lfemur' for field 8.",
                     "Unable to read bone's values.", "The bone's values are longer than 126 characters."})}};
    // clang-format on
    for (const auto& [body, expected] : cases)
        EXPECT_EQ(expected, bodyRead(body)) << body;
}

// A whole motion is read in blocks; the blocks may split a frame number, a
// name, a value line or its line end anywhere, and must not change a value.
TEST(KaAMCReader, ReadsTheSameWhereverTheBlocksSplitTheText)
{
    std::string body;
    std::string expected;
    for (int frame = 1; frame <= 3000; ++frame)
    {
        const std::string last = std::to_string(frame * 37 % 1000);
        body += std::to_string(frame) + "\nroot " + std::to_string(frame) +
                " 0.5 -2e-3\n  lfemur" + std::string(frame % 7, ' ') +
                " 1.25 " + last + "\r\n";
        expected += std::to_string(frame) + ": root " + std::to_string(frame) +
                    " 0.5 -0.002, lfemur 1.25 " + last + "; ";
    }
    for (int shift = 0; shift < 48; shift += 5)
    {
        SCOPED_TRACE(shift);
        KaAMC whole = documentFrom<KaAMC>("#" + std::string(shift, '-') + "\n" +
                                          kHeader + body + "3001\nroot 9");
        EXPECT_EQ(expected + "3001: root 9; ", described(whole));
    }
}

// The programs check that an input exists before reading it; one that cannot
// be opened all the same names its path in both messages of the chain.
TEST(KaAMCReader, SaysWhichFileCouldNotBeOpened)
{
    TempDir dir;
    const std::string missing = dir.file("none.amc");
    const std::string check = "Unable to read \"" + missing + "\".";
    KaAMC amc;
    amc.read(missing.c_str());
    EXPECT_EQ(errorBlock({("Unable to open '" + missing + "'.").c_str(),
                          check.c_str(),
                          "File does not exist."}),
              printedChain());
    // A file whose header lacks its keywords holds no motion.
    const std::string plain = dir.file("walk.amc");
    const std::string bad = dir.file("bad.amc");
    writeFile(plain, ":FULLY-SPECIFIED\n:DEGREES\n1\nroot 1\n");
    writeFile(bad, ":DEGREES\n1\nroot 1\n");
    EXPECT_EQ(1, KaAMC::fileContainsAMC(plain.c_str()));
    EXPECT_EQ(0, KaAMC::fileContainsAMC(bad.c_str()));
    EXPECT_EQ("", printedChain());
}

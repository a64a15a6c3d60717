// The AMC reader: values and their storage, the header check, fields, and
// every message chain.
#include <cstdlib>
#include <cstring>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "amc/KaAMC.h"
#include "amc/KaScanFloat.h"
#include "support/test_helpers.h"
#include "toolkit/KtCancelHandler.h"
#include "toolkit/KtCompStream.h"
#include "toolkit/KtError.h"

namespace
{

const std::string kHeader = ":FULLY-SPECIFIED\n:DEGREES\n";

const char* kWalk = R"AMC(# two bones and a hand
:FULLY-SPECIFIED
:DEGREES
5
root 1 2 3 4 5 6
lfemur 10 11 12
rhand
3
ROOT 7 8 9 10 11 12
lfemur 13
rhand 14
3
root 0 0 0 0 0 0
lfemur 1.5 -2e-3 3
rhand 1
)AMC";

KaAMC scanned(const std::string& text)
{
    std::istringstream in(text);
    KaAMC amc;
    amc.scanFrom(in);
    return amc;
}

std::string names(const KaAMC& amc)
{
    std::string all;
    for (const KtStr& name : amc.boneNames())
        all += std::string(name.text()) + ",";
    return all;
}

std::vector<float> values(const KaAMCBone& bone)
{
    return std::vector<float>(bone.values(), bone.values() + bone.numValues());
}

} // namespace

// A line's values are exactly what a stream's float extraction reads.
TEST(KaAMCBone, ReadsValuesAsStreamExtractionDoes)
{
    for (const char* line : {"1.5 2 -3",
                             "+2 .5 -.5e1 5.",
                             "1.5.3",
                             "1-2",
                             "1e5 1E-2",
                             "1e",
                             "1e+",
                             "-",
                             ".",
                             "inf 1",
                             "nan",
                             "1e39 2",
                             "-1e39",
                             "1e-50 7",
                             "0x10",
                             "12abc 3",
                             "1,5",
                             " \t1\r",
                             "007 -0",
                             "3.4028235e38",
                             "+-5",
                             "1e-40 -1e-50 7e-46 7.1e-46",
                             // ties, and ties broken past the 19th digit
                             "1.000000059604644775390625 "
                             "1.0000000596046447753906251 16777217",
                             "3.4028235677973366e38 3.4028236e38"})
    {
        SCOPED_TRACE(line);
        std::istringstream reference(line);
        std::vector<float> expected;
        for (float value; reference >> value;)
            expected.push_back(value);
        std::istringstream in(line);
        KaAMCBone bone;
        bone.scanFrom(in);
        EXPECT_EQ(expected, values(bone));
    }
}

// Short decimals take an exact shortcut, longer ones std::from_chars; both
// must give the stream's float, bit for bit, around every boundary.
TEST(KaScanFloat, AgreesWithStreamExtractionOnManyNumbers)
{
    std::mt19937 random(20240611);
    auto digits = [&](unsigned count)
    {
        std::string text;
        for (unsigned i = 0; i < count; ++i)
            text += static_cast<char>('0' + random() % 10);
        return text;
    };
    for (int i = 0; i < 200000; ++i)
    {
        const char* signs[] = {"", "+", "-"};
        std::string number = signs[random() % 3];
        number += digits(random() % 10);
        if (random() % 2)
            number += "." + digits(random() % 10);
        if (random() % 3 == 0)
            number += (random() % 2 ? "e" : "E") +
                      std::string(random() % 2 ? "-" : "") +
                      std::to_string(random() % 50);
        std::istringstream reference(number);
        float expected = 0.0f;
        bool read = static_cast<bool>(reference >> expected) && reference.eof();
        const char* cursor = number.c_str();
        float value = 0.0f;
        bool scanned = KaScanFloat(cursor, &value) && *cursor == '\0';
        ASSERT_EQ(read, scanned) << number;
        if (read)
        {
            ASSERT_EQ(std::memcmp(&expected, &value, sizeof value), 0)
                << number << ": " << value << " instead of " << expected;
        }
    }
}

TEST(KaAMCBone, StoresAnyNumberOfValuesAndCopiesDeeply)
{
    float source[64];
    for (int i = 0; i < 64; ++i)
        source[i] = i + 0.5f;
    for (int count : {1, 3, 4, 63})
    {
        SCOPED_TRACE(count);
        KaAMCBone bone;
        bone.setValues(source, count);
        KaAMCBone copy(bone);
        bone.setValues(source + 1, count);
        EXPECT_EQ(std::vector<float>(source, source + count), values(copy));
        bone = copy;
        bone.setValues(bone.values() + 1, count - 1); // its own values
        EXPECT_EQ(std::vector<float>(source + 1, source + count), values(bone));
        KaAMCBone moved(std::move(copy));
        EXPECT_EQ(0, copy.numValues());
        bone = std::move(moved);
        EXPECT_EQ(count, bone.numValues());
    }
}

TEST(KaAMCHeader, AcceptsVariantsAndNamesWhatIsMissing)
{
    const std::string longComment = "#" + std::string(128, 'x');
    struct Case
    {
        std::string text;
        int found;
        int units;
        std::string message;
    } cases[] = {
        {kHeader + "1\n", 1, 1, ""},
        {"# c\n\n  :fully-specified \n\t:radians\r\n 1", 1, 0, ""},
        {"#\xfc\r\n:FULLY-SPECIFIED\r\n:DEGREES\r\n1\r\n", 1, 1, ""},
        {":DEGREES\n:RADIANS\n:FULLY-SPECIFIED\n1", 1, 0, ""},
        {longComment + "\n" + kHeader + "1", 1, 1, ""},
        // The rest of a comment past 128 characters is a header line.
        {longComment + "y\n" + kHeader + "1",
         0,
         1,
         "File does not specify mode."},
        {longComment + ":RADIANS\n" + kHeader + "1", 1, 1, ""},
        {":DEGREES\n1\n", 0, 1, "File does not specify mode."},
        {"1\n", 0, 1, "File does not specify mode."},
        {":FULLY-SPECIFIED\n:RADIANS\n:ANGLE\n1",
         0,
         0,
         "Unrecognized key word \"ANGLE\"."},
        {":FULLY-SPECIFIED\n:\n1", 0, 1, "Unrecognized key word \"\"."},
        {":" + std::string(300, 'k'),
         0,
         1,
         "Unrecognized key word \"" + std::string(200, 'k') + "...\"."},
        {"", 0, 1, "Error reading file."},
        {kHeader + " \n# end\n", 0, 1, "Error reading file."},
    };
    for (const Case& c : cases)
    {
        SCOPED_TRACE(c.text);
        std::istringstream in(c.text);
        int units = 1;
        KaAMC::Mode_t mode = KaAMC::FULLY_SPECIFIED;
        KtStr message;
        EXPECT_EQ(c.found,
                  KaAMC::streamContainsAMC(in, &units, &mode, &message));
        EXPECT_EQ(c.units, units);
        EXPECT_EQ(c.message, message.text());
        EXPECT_TRUE(!c.found || in.peek() == '1'); // where the body starts
    }
    EXPECT_FALSE(theExceptObj.exceptionOccurred());
}

TEST(KaAMCReader, FirstFieldNamesTheBonesOfEveryField)
{
    KaAMC amc = scanned(kWalk);
    EXPECT_FALSE(theExceptObj.exceptionOccurred());
    EXPECT_EQ("root,lfemur,rhand,", names(amc));
    ASSERT_EQ(3, amc.numFields());
    // Frame numbers are kept as written, out of order or repeated.
    EXPECT_EQ(5, amc.field(0).frameNumber());
    EXPECT_EQ(3, amc.field(1).frameNumber());
    EXPECT_EQ(3, amc.field(2).frameNumber());
    for (int f = 0; f < 3; ++f)
        for (int b = 0; b < 3; ++b)
            EXPECT_EQ(&amc.boneNames()[b], amc.field(f).bone(b).name());
    EXPECT_EQ(6, amc.field(0).bone(0).numValues());
    EXPECT_EQ(0, amc.field(0).bone(2).numValues());
    EXPECT_EQ((std::vector<float>{1.5f, -2e-3f, 3}),
              values(amc.field(2).bone(1)));
    EXPECT_EQ(&amc.field(2).bone(1), amc.field(2).findBone("LFEMUR"));
    EXPECT_EQ(nullptr, amc.field(2).findBone("lhand"));
}

TEST(KaAMCReader, ReadsLinesAsWritten)
{
    struct Case
    {
        const char* body;
        const char* names;
        std::vector<float> last;
    } cases[] = {
        // The last field needs no final newline.
        {"1\nroot 1 2\nlhand 3 4", "root,lhand,", {3, 4}},
        // A non-number ends the values quietly.
        {"1\nroot abc 1\nlhand 1 x 2\n", "root,lhand,", {1}},
        {"1\r\n  root 1\r\n\tlhand\t 2.5\r\n\r\n", "root,lhand,", {2.5}},
        // Only a digit starts a field: "-2" is a bone.
        {"1\nroot 1\n-2\nlhand 7\n", "root,-2,lhand,", {7}},
        // A last name with neither values nor a newline is dropped.
        {"1\nroot 1\nlhand 9\nrhand", "root,lhand,", {9}},
    };
    for (const Case& c : cases)
    {
        SCOPED_TRACE(c.body);
        KaAMC amc = scanned(kHeader + c.body);
        EXPECT_FALSE(theExceptObj.exceptionOccurred());
        EXPECT_EQ(c.names, names(amc));
        const KaAMCField& field = amc.field(amc.numFields() - 1);
        EXPECT_EQ(c.last, values(field.bone(field.numBones() - 1)));
    }
}

TEST(KaAMCReader, NamesLaterFieldsOnlyWithinTheirOwnBones)
{
    KaAMC amc = scanned(kHeader + "1\nlfemur 1\nrfemur 2\n"
                                  "2\nlfemur 3\n"
                                  "3\nlfemur 4\nrfemur 5\nlhand 6\n");
    ASSERT_EQ(3, amc.numFields());
    EXPECT_EQ(1, amc.field(1).numBones());
    EXPECT_EQ(&amc.boneNames()[0], amc.field(1).bone(0).name());
    EXPECT_EQ(nullptr, amc.field(1).findBone("rfemur"));
    EXPECT_EQ(nullptr, amc.field(2).bone(2).name());
    EXPECT_EQ(nullptr, amc.field(2).findBone("lhand"));
    EXPECT_EQ(&amc.field(2).bone(1), amc.field(2).findBone("RFEMUR"));
}

TEST(KaAMCReader, BadFieldsClearTheDocumentWithAChainNamingTheFrame)
{
    const std::string name118(118, 'n');
    // The text after a name, its blank included.
    const std::string values126 = " 1" + std::string(123, ' ') + "2";
    EXPECT_EQ(names(scanned(kHeader + "7\n" + name118 + " 1\n")),
              name118 + ",");
    EXPECT_EQ(2,
              scanned(kHeader + "7\nlfemur" + values126)
                  .field(0)
                  .bone(0)
                  .numValues());
    EXPECT_FALSE(theExceptObj.exceptionOccurred());

    struct Case
    {
        std::string body;
        std::string chain;
    } cases[] = {
        {"root 1 2\n",
         errorBlock({"Unable to read field.", "Unable to read field number."})},
        {"7\nroot 1\n" + name118 + "nX 1\n",
         errorBlock({"Unable to read field.",
                     "Unable to read bone name for field 7.",
                     "The bone name \"nnnnnnnnnnnnnnnnnnnn...\" is longer "
                     "than 118 characters."})},
        {"7\nroot 1\n8\nlfemur" + values126 + "3\n9\n",
         errorBlock({"Unable to read field.",
                     "Unable to read bone 'lfemur' for field 8.",
                     "Unable to read bone's values.",
                     "The bone's values are longer than 126 characters."})},
    };
    for (const Case& c : cases)
    {
        SCOPED_TRACE(c.body);
        KaAMC amc = scanned(kWalk);
        std::istringstream in(kHeader + c.body);
        amc.scanFrom(in);
        EXPECT_EQ(c.chain, printedChain());
        EXPECT_EQ(0, amc.numFields());
        EXPECT_EQ(0, amc.boneNames().count());
    }
}

// Frame numbers are what a stream's int extraction reads: a failed one
// stops the read, one at the very end of the file makes an empty field.
TEST(KaAMCReader, ReadsFrameNumbersAsStreamIntegerExtraction)
{
    for (const char* number : {"7",
                               "+7",
                               "007",
                               "2147483647",
                               "-2147483648",
                               "2147483648",
                               "-2147483649",
                               "99999999999999999999",
                               "-",
                               "+x"})
    {
        SCOPED_TRACE(number);
        std::istringstream reference(number);
        int expected = 0;
        bool read = static_cast<bool>(reference >> expected);
        KaAMC amc = scanned(kHeader + number + "\nroot 1\n");
        if (read)
        {
            ASSERT_EQ(1, amc.numFields());
            EXPECT_EQ(expected, amc.field(0).frameNumber());
            EXPECT_EQ("", printedChain());
        }
        else
            EXPECT_EQ(errorBlock({"Unable to read field.",
                                  "Unable to read field number."}),
                      printedChain());
    }
    KaAMC amc = scanned(kHeader + "7\nroot 1\n8");
    ASSERT_EQ(2, amc.numFields());
    EXPECT_EQ(8, amc.field(1).frameNumber());
    EXPECT_EQ(0, amc.field(1).numBones());
}

// A whole motion is read in blocks; the blocks may split a frame number, a
// name, a value line or its line end anywhere, and must not change a value.
TEST(KaAMCReader, ReadsTheSameInBlocksAsFieldByField)
{
    std::string body;
    for (int frame = 1; frame <= 3000; ++frame)
        body += std::to_string(frame) + "\nroot " + std::to_string(frame) +
                " 0.5 -2e-3\n  lfemur" + std::string(frame % 7, ' ') +
                " 1.25 " + std::to_string(frame * 37 % 1000) + "\r\n";
    for (int shift = 0; shift < 48; shift += 5)
    {
        SCOPED_TRACE(shift);
        std::string text = "#" + std::string(shift, '-') + "\n" + kHeader +
                           body + "3001\nroot 9";
        KaAMC whole = scanned(text);
        std::istringstream in(text);
        ASSERT_TRUE(KaAMC::streamContainsAMC(in, nullptr, nullptr, nullptr));
        ASSERT_EQ(3001, whole.numFields());
        for (int f = 0; f < whole.numFields(); ++f)
        {
            KaAMCField field;
            field.scanFrom(in);
            ASSERT_EQ(field.frameNumber(), whole.field(f).frameNumber());
            ASSERT_EQ(field.numBones(), whole.field(f).numBones());
            for (int b = 0; b < field.numBones(); ++b)
                ASSERT_EQ(values(field.bone(b)),
                          values(whole.field(f).bone(b)));
        }
        EXPECT_FALSE(theExceptObj.exceptionOccurred());
    }
}

TEST(KaAMCReader, FileEntryPointsQuoteThePathEachInTheirOwnWay)
{
    TempDir dir;
    std::string good = dir.file("walk.amc");
    std::string bad = dir.file("bad.amc");
    std::string missing = dir.file("none.amc");
    writeFile(good, kWalk);
    writeFile(bad, ":DEGREES\n1\nroot 1\n");
    KaAMC amc;
    amc.readFirstField(good.c_str());
    EXPECT_EQ(1, amc.numFields());
    EXPECT_EQ(1, KaAMC::fileContainsAMC(good.c_str()));
    EXPECT_EQ(0, KaAMC::fileContainsAMC(bad.c_str()));
    EXPECT_FALSE(theExceptObj.exceptionOccurred());

    amc.read(bad.c_str()); // a failed header leaves the document as it was
    EXPECT_EQ(1, amc.numFields());
    std::string head = "Unable to read '" + bad + "'.";
    EXPECT_EQ(errorBlock({head.c_str(),
                          "File does not contain amc data.",
                          "File does not specify mode."}),
              printedChain());

    std::string check = "Unable to read \"" + missing + "\".";
    std::string single = "Unable to open '" + missing + "'.";
    std::string doubled = "Unable to open \"" + missing + "\".";
    amc.read(missing.c_str());
    EXPECT_EQ(
        errorBlock({single.c_str(), check.c_str(), "File does not exist."}),
        printedChain());
    EXPECT_EQ(0, KaAMC::fileContainsAMC(missing.c_str()));
    EXPECT_EQ(
        errorBlock({doubled.c_str(), check.c_str(), "File does not exist."}),
        printedChain());
}

namespace
{

int cancelCalls = 0;

// Installs a callback that cancels at once, for one test.
struct CancelAlways
{
    CancelAlways()
    {
        cancelCalls = 0;
        KtCancelHandler::_proc = [](void*) { return ++cancelCalls; };
    }
    ~CancelAlways() { KtCancelHandler::_proc = nullptr; }
};

std::string frames(int count)
{
    std::string text = kHeader;
    for (int i = 1; i <= count; ++i)
        text += std::to_string(i) + "\nroot 1\n";
    return text;
}

} // namespace

TEST(KaAMCReader, ChecksForACancelEveryTwentyFields)
{
    CancelAlways cancel;
    EXPECT_EQ(20, scanned(frames(20)).numFields()); // the end comes first
    EXPECT_EQ(0, cancelCalls);
    KaAMC amc = scanned(frames(25));
    EXPECT_EQ(1, cancelCalls);
    EXPECT_EQ(errorBlock({"Canceled."}), printedChain());
    EXPECT_EQ(0, amc.numFields());
}

TEST(KaAMCReader, ReadsCompressedMotions)
{
    TempDir dir;
    std::string plain = dir.file("walk.amc");
    writeFile(plain, kWalk);
    ASSERT_EQ(0, std::system(("gzip " + plain).c_str()));
    KtCompIFStream probe;
    probe.open((plain + ".gz").c_str());
    if (!probe.compressed())
        GTEST_SKIP() << "this build's streams do not decompress";
    // Named as it is, or only by its uncompressed name.
    for (const std::string& path : {plain + ".gz", plain})
    {
        KaAMC amc;
        amc.read(path.c_str());
        EXPECT_EQ(3, amc.numFields());
        amc.readFirstField(path.c_str());
        EXPECT_EQ(1, amc.numFields());
        EXPECT_EQ(1, KaAMC::fileContainsAMC(path.c_str()));
        EXPECT_FALSE(theExceptObj.exceptionOccurred());
    }
}

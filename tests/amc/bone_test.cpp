// A bone's values: the number reader, the compact storage and the line
// reader.
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "amc/KaAMC.h"
#include "amc/KaScanFloat.h"
#include "support/test_helpers.h"
#include "toolkit/KtError.h"

namespace
{

std::vector<float> streamFloats(const std::string& text)
{
    std::istringstream in(text);
    std::vector<float> values;
    float value = 0;
    while (in >> value)
        values.push_back(value);
    return values;
}

std::vector<float> boneValues(const std::string& line)
{
    std::istringstream in(line);
    KaAMCBone bone;
    bone.scanFrom(in);
    return std::vector<float>(bone.values(), bone.values() + bone.numValues());
}

} // namespace

// The values of a line are exactly what a stream's float extraction reads.
TEST(KaScanFloat, ReadsWhatStreamExtractionReads)
{
    const char* lines[] = {"1.5 2 -3",    "+2 .5 -.5e1 5.",
                           "1.5.3",       "1-2",
                           "1e5 1E-2",    "1e",
                           "1e+",         "-",
                           ".",           ".e1",
                           "inf 1",       "nan",
                           "1e39 2",      "-1e39",
                           "1e-50 7",     "0x10",
                           "12abc 3",     "1,5",
                           " \t1\r",      "007 -0",
                           "3.4028235e38"};
    for (const char* line : lines)
    {
        SCOPED_TRACE(line);
        EXPECT_EQ(streamFloats(line), boneValues(line));
    }
}

TEST(KaScanFloat, FailureLeavesTheValueAndStopsPastTheRun)
{
    const char* text = "1e+x";
    const char* cursor = text;
    float value = 7;
    EXPECT_FALSE(KaScanFloat(cursor, &value));
    EXPECT_EQ(7, value);
    EXPECT_EQ(text + 3, cursor);
}

TEST(KaAMCBone, StoresAnyNumberOfValuesAndCopiesDeeply)
{
    float source[64];
    for (int i = 0; i < 64; ++i)
        source[i] = i + 0.5f;
    KtStr name("lfemur");
    for (int count : {0, 1, 3, 4, 63})
    {
        SCOPED_TRACE(count);
        KaAMCBone bone;
        bone.setName(&name);
        bone.setValues(source, count);
        KaAMCBone copy(bone);
        KaAMCBone assigned;
        assigned = bone;
        bone.setValues(source + 1, count); // the copies keep their values
        for (const KaAMCBone* b : {&copy, &assigned})
        {
            ASSERT_EQ(count, b->numValues());
            EXPECT_EQ(&name, b->name());
            for (int i = 0; i < count; ++i)
                EXPECT_EQ(source[i], b->value(i));
        }
        KaAMCBone moved(std::move(copy));
        EXPECT_EQ(0, copy.numValues());
        assigned = std::move(moved);
        EXPECT_EQ(count, assigned.numValues());
        EXPECT_EQ(0, moved.numValues());
    }
}

TEST(KaAMCBone, TakesItsOwnValuesBack)
{
    const float source[] = {1, 2, 3, 4, 5};
    for (int count : {2, 5})
    {
        KaAMCBone bone;
        bone.setValues(source, count);
        bone.setValues(bone.values() + 1, count - 1);
        ASSERT_EQ(count - 1, bone.numValues());
        EXPECT_EQ(2, bone.value(0));
        bone = bone;
        EXPECT_EQ(source[count - 1], bone.value(count - 2));
    }
}

TEST(KaAMCBone, ReadsOneLineOfUpTo126Characters)
{
    std::string longest = "1" + std::string(124, ' ') + "2";
    std::istringstream in(longest + "\nnext 3\n");
    KaAMCBone bone;
    bone.scanFrom(in);
    EXPECT_FALSE(theExceptObj.exceptionOccurred());
    ASSERT_EQ(2, bone.numValues());
    EXPECT_EQ(2, bone.value(1));
    std::string rest;
    std::getline(in, rest);
    EXPECT_EQ("next 3", rest);
}

TEST(KaAMCBone, RefusesALongerLineAndAnEmptyStream)
{
    std::istringstream tooLong(std::string(127, '1') + "\n");
    KaAMCBone bone;
    bone.scanFrom(tooLong);
    EXPECT_EQ(errorBlock({"Unable to read bone's values.",
                          "The line is longer than 126 characters."}),
              printedChain());
    std::istringstream empty("");
    bone.scanFrom(empty);
    EXPECT_EQ(errorBlock({"Unable to read bone's values."}), printedChain());
}

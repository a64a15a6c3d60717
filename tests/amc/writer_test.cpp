// The AMC writer and the building operations of the motion model.
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "amc/KaAMC.h"
#include "support/test_helpers.h"
#include "toolkit/KtError.h"

namespace
{

const std::string kKeywords = ":FULLY-SPECIFIED\n:DEGREES\n";

// Bones lhand (1.5 2) and rhand (no values), one field per frame number.
KaAMC hands(std::initializer_list<int> frames)
{
    KtList<KtStr> names;
    names.append("lhand");
    names.append("rhand");
    KaAMC amc;
    amc.setBoneNames(names);
    const float values[] = {1.5f, 2};
    for (int frame : frames)
        amc.createField(frame)->bone(0).setValues(values, 2);
    return amc;
}

std::string printed(const KaAMC& amc)
{
    std::ostringstream out;
    amc.printOn(out);
    return out.str();
}

} // namespace

TEST(KaAMCWriter, WritesKeywordsFramesAndBoneLinesEndingInABlank)
{
    EXPECT_EQ(kKeywords + "1\nlhand 1.5 2 \nrhand \n", printed(hands({1})));
    EXPECT_EQ(kKeywords, printed(KaAMC()));
    // Read back, every value and name is written as it was.
    const char* text = ":FULLY-SPECIFIED\n:RADIANS\n"
                       "1\nroot 0.5 -1e-05 123457 -3.40282e+38 0 7 \n"
                       "lfemur \nlhumerus 1.17549e-38 -0.25 \n"
                       "2\nroot 1 2 3 4 5 6 \nlfemur 9 \nlhumerus 8 7 \n";
    std::istringstream in(text);
    KaAMC amc;
    amc.scanFrom(in);
    EXPECT_EQ(text, printed(amc));
    EXPECT_FALSE(theExceptObj.exceptionOccurred());
}

// Writing stops at the first failure. The bone count is compared after the
// field is written, so the offending field is in the output.
TEST(KaAMCWriter, StopsAtTheFirstFailureWithItsChain)
{
    KaAMC amc = hands({1, 2, 3});
    amc.field(1).setNumBones(1);
    EXPECT_EQ(kKeywords + "1\nlhand 1.5 2 \nrhand \n2\nlhand 1.5 2 \n",
              printed(amc));
    EXPECT_EQ(errorBlock({"The number of bones in field 2 differs from the "
                          "number of bones in previous fields."}),
              printedChain());
    amc.field(1).setNumBones(3); // the new bones have no name
    printed(amc);
    EXPECT_EQ(errorBlock({"Unable to write field.",
                          "Unable to write bone information.",
                          "Unable to write a bone without a name."}),
              printedChain());
    std::ostringstream out;
    out.setstate(std::ios_base::badbit);
    amc.printOn(out);
    EXPECT_EQ(errorBlock({"Unable to write mode."}), printedChain());
}

// Renaming, replacing the fields, copying and moving all leave every bone
// pointing at the names of the motion that holds it.
TEST(KaAMCWriter, FieldsPointAtTheirOwnMotionsNames)
{
    KaAMC amc = hands({1, 2});
    KtArray<KtStr> renamed(3);
    renamed[0] = "LHAND";
    renamed[1] = "RHAND";
    amc.setBoneNames(renamed);
    EXPECT_STREQ("RHAND", amc.field(1).bone(1).name()->text());

    KaAMC other = hands({5});
    KtArray<KaAMCField> fields(1);
    fields[0] = amc.field(0);
    other.setFields(fields);
    EXPECT_EQ(&other.boneNames()[0], other.field(0).bone(0).name());

    KaAMC* original = new KaAMC(amc);
    KaAMC copy(*original);
    KaAMC assigned;
    assigned = *original;
    delete original;
    KaAMC moved(std::move(assigned));
    for (const KaAMC* m : {&copy, &moved})
        EXPECT_EQ(&m->field(1).bone(0), m->field(1).findBone("lhand"));

    amc.setBoneNames(KtArray<KtStr>());
    EXPECT_EQ(nullptr, amc.field(0).bone(0).name());
}

TEST(KaAMCWriter, SavesToAFileOrSaysWhyNot)
{
    TempDir dir;
    std::string path = dir.file("out.amc");
    KaAMC amc = hands({1});
    amc.save(path.c_str());
    EXPECT_FALSE(theExceptObj.exceptionOccurred());
    EXPECT_EQ(printed(amc), readFile(path));

    amc.save("/dev/full"); // the failure shows when the text is flushed
    EXPECT_EQ(errorBlock({"Unable to write '/dev/full'."}), printedChain());
}

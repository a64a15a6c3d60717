// The AMC writer and the building operations of the motion model.
#include <string>

#include <gtest/gtest.h>

#include "amc/KaAMC.h"
#include "support/documents.h"
#include "toolkit/KtError.h"

namespace
{

const std::string kKeywords = ":FULLY-SPECIFIED\n:DEGREES\n";

// Bones lhand (1.5 2) and rhand (no values), one field per frame number;
// the field of frame 2 has only lhand, that of frame 3 a third bone.
KaAMC hands(std::initializer_list<int> frames)
{
    KtNameList names;
    names.append("lhand");
    names.append("rhand");
    KaAMC amc;
    amc.setBoneNames(names);
    const float values[] = {1.5f, 2};
    for (int frame : frames)
    {
        amc.appendField(frame);
        amc.appendBone(values, 2);
        if (frame != 2)
            amc.appendBone(nullptr, 0);
        if (frame == 3)
            amc.appendBone(values, 1);
    }
    return amc;
}

} // namespace

TEST(KaAMCWriter, WritesKeywordsFramesAndBoneLinesEndingInABlank)
{
    EXPECT_EQ(kKeywords + "1\nlhand 1.5 2 \nrhand \n", writtenText(hands({1})));
    EXPECT_EQ(kKeywords, writtenText(KaAMC()));
    // Read back, every value and name is written as it was.
    const char* text = ":FULLY-SPECIFIED\n:RADIANS\n"
                       "1\nroot 0.5 -1e-05 123457 -3.40282e+38 0 7 \n"
                       "lfemur \nlhumerus 1.17549e-38 -0.25 \n"
                       "2\nroot 1 2 3 4 5 6 \nlfemur 9 \nlhumerus 8 7 \n";
    EXPECT_EQ(text, writtenText(documentFrom<KaAMC>(text)));
}

// Writing stops at the first failure. The bone count is compared after the
// field is written, so the offending field is in the output; a bone past
// the names has none to write.
TEST(KaAMCWriter, StopsAtTheFirstFailureWithItsChain)
{
    EXPECT_EQ(kKeywords + "1\nlhand 1.5 2 \nrhand \n2\nlhand 1.5 2 \n",
              writtenText(hands({1, 2, 3})));
    EXPECT_EQ(errorBlock({"The number of bones in field 2 differs from the "
                          "number of bones in previous fields."}),
              printedChain());
    writtenText(hands({3}));
    EXPECT_EQ(errorBlock({"Unable to write field.",
                          "Unable to write bone information.",
                          "Unable to write a bone without a name."}),
              printedChain());
}

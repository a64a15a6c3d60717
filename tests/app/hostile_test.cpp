// The converter's cross-check on a skeleton and a first frame of many bones.
#include <string>

#include <gtest/gtest.h>

#include "amc/KaAMC.h"
#include "app/RunSequence.h"
#include "asf/KaASF.h"
#include "support/test_helpers.h"
#include "toolkit/KtError.h"

// Each skeleton bone is found in the frame by name, not by a search of the
// frame, so many bones on both sides cost linear time; the first bone of a
// name (ignoring case) is the one compared.
TEST(CheckDOFCounts, ManyBonesOnBothSidesInLinearTime)
{
    const int bones = 50000;
    KaASF skeleton;
    KaAMC motion;
    KtDArray<KtStr> names(bones + 1);
    KaASFBone bone;
    bone.dofGroup().addDOF(kDofRX);
    for (int i = 0; i < bones; ++i)
    {
        names[i] = ("b" + std::to_string(i)).c_str();
        bone.setName(names[i]);
        skeleton.addBone(bone);
    }
    names[bones] = "B0"; // a second b0, never compared
    motion.setBoneNames(names);
    KaAMCField* frame = motion.createField(1);
    const float values[] = {1, 2};
    for (int i = 0; i <= bones; ++i)
        frame->bone(i).setValues(values, i == bones - 1 ? 2 : 1);
    frame->bone(bones).setValues(values, 2);
    checkDOFCounts(skeleton, motion);
    EXPECT_EQ(warningBlock({("Bone \"b" + std::to_string(bones - 1) +
                             "\" has 1 dofs in the ASF, but the AMC "
                             "specifies 2.")
                                .c_str()}),
              printedChain());
}

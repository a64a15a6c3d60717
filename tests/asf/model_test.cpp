// The skeleton model: axis orders, groups and their limits, bone lookups.
#include <vector>

#include <gtest/gtest.h>

#include "asf/KaASF.h"
#include "asf/KaAxisOrder.h"
#include "support/documents.h"

namespace
{

KaASFBone boneNamed(const char* name, int id = 0)
{
    KaASFBone bone;
    bone.setName(name);
    bone.setId(id);
    return bone;
}

} // namespace

// clang-format off
TEST(KaAxisOrder, ReadsTheFirstThreeLettersOfAWord)
{
    const struct { const char* word; std::vector<int> order; const char* message; } cases[] = {
        {"XYZ", {1, 2, 3}, nullptr}, {"zyx", {3, 2, 1}, nullptr}, {"xxz", {1, 1, 3}, nullptr},
        {"ZXYW", {3, 1, 2}, nullptr}, {"XY", {}, "Invalid axis specification."},
        {"XAZ", {}, "Invalid axis specification."}, {"", {}, "Unable to read axis orientation order."}};
    for (const auto& c : cases)
    {
        KtArray<int> order(3);
        EXPECT_EQ(c.message == nullptr, KaAxisOrderFromWord(c.word, &order)) << c.word;
        EXPECT_EQ(c.order, std::vector<int>(order.begin(), order.end())) << c.word;
        EXPECT_EQ(c.message ? errorBlock({c.message}) : "", printedChain()) << c.word;
    }
}
// clang-format on

TEST(KaASFDOFGroup, FindsDOFsAndFollowsGroupReferences)
{
    KaASFDOFGroup arm("arm");
    for (int code : {kDofRX, kDofRY, kDofRZ})
        arm.addDOF(code);
    EXPECT_EQ(2, arm.dofIndex(kDofRZ));
    EXPECT_EQ(-1, arm.dofIndex(kDofTX));
    EXPECT_EQ(nullptr, arm.limits(kDofTX));
    arm.limits(kDofRY)->upper = 2.0f;
    // A bone's DOF refers to "shoulder", whose DOF refers to "arm".
    KaASFDOFGroup shoulder("shoulder");
    shoulder.addDOF(KaASFDOF(kDofRY, &arm));
    KaASFDOFGroup bone;
    bone.addDOF(KaASFDOF(kDofRY, &shoulder));
    bone.addDOF(kDofTZ);
    EXPECT_EQ(2.0f, bone.limits(kDofRY)->upper);
    EXPECT_TRUE(bone.hasGroupDOFs() && bone.usesDOFGroup("shoulder"));

    // References that run in a circle leave the DOF its own limits.
    KaASFDOFGroup a("a"), b("b");
    a.addDOF(KaASFDOF(kDofRX, &b));
    b.addDOF(KaASFDOF(kDofRX, &a));
    KaASFDOF circling(kDofRX, &a);
    circling.setLimits({7.0f, 8.0f});
    EXPECT_EQ(7.0f, circling.limits().lower);
}

TEST(KaASF, FindsBonesByNameIgnoringCaseAndById)
{
    KaASF skeleton;
    KaASFBone* first = skeleton.addBone(boneNamed("lfemur", 7));
    skeleton.addBone(boneNamed("LFemur", 8));
    EXPECT_EQ(first, skeleton.findBone("LFEMUR"));
    EXPECT_EQ(nullptr, skeleton.findBone("lfemu"));
    EXPECT_EQ(nullptr, skeleton.findBone(9));
    // A bone renamed after it was added is found under its new name.
    first->setName("hip");
    EXPECT_EQ(first, skeleton.findBone("HIP"));
    EXPECT_EQ(8, skeleton.findBone("lfemur")->id());
    // Groups, unlike bones, are found by their exact name.
    skeleton.addDOFGroup(KaASFDOFGroup("Arm"));
    EXPECT_EQ(nullptr, skeleton.findDOFGroup("arm"));
    EXPECT_NE(nullptr, skeleton.findDOFGroup("Arm"));
}

// A copy is deep: links and group references point into the copy. Removing
// groups, or clearing the document (which keeps its header and root),
// leaves each DOF that used a group with that group's limits.
TEST(KaASF, CopiesDeeplyAndRemovedGroupsLeaveTheirLimits)
{
    KaASF original = skeletonFrom(
        ":asf-internal\n:version 1.10\n:name walker\n:units angle rad\n"
        ":dofgroups\n  begin name arm dof rx limits (-0.5 0) end\n"
        "  begin name leg dof ry limits (0 0.25) end\n:root order leg\n"
        ":bonedata\n" +
        boneBlock("shoulder") + boneBlock("elbow", "arm leg") +
        ":hierarchy\n  begin\n    shoulder elbow\n  end\n");
    KaASFBone* elbow = original.findBone("elbow");
    KaASF copy =
        skeletonFrom(":version 1.10\n:bonedata\n" + boneBlock("stale"));
    copy = original;
    KaASF cleared(copy);
    KaASFBone* copiedElbow = copy.findBone("elbow");
    EXPECT_EQ(copy.findBone("shoulder"), copiedElbow->parent());
    EXPECT_EQ(copiedElbow, copy.findBone("shoulder")->firstChild());
    EXPECT_EQ(copy.findDOFGroup("arm"),
              copiedElbow->dofGroup().dofs()[0]->group());
    EXPECT_EQ(nullptr, copy.findBone("stale"));

    original.removeDOFGroup("arm");
    EXPECT_EQ(nullptr, original.findDOFGroup("arm"));
    EXPECT_EQ(-0.5f, elbow->dofGroup().limits(kDofRX)->lower);
    original.removeDOFGroups();
    EXPECT_EQ(0.25f, elbow->dofGroup().limits(kDofRY)->upper);

    cleared._clear();
    EXPECT_EQ(0, cleared.numBones() + cleared.dofGroups().count());
    EXPECT_STREQ("walker", cleared.header().name.text());
    EXPECT_EQ(0.25f, cleared.root().dofGroup().limits(kDofRY)->upper);
}

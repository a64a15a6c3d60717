// The skeleton model: DOF codes, axis orders, groups and their limits, bone
// lookups and ids, and the deep copy of a document.
#include <iostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "asf/KaASF.h"
#include "asf/KaAxisOrder.h"
#include "support/test_helpers.h"
#include "toolkit/KtError.h"

namespace
{

constexpr float kInf = KaASFLimits::kInfinity;

KaASFBone boneNamed(const char* name, int id = 0)
{
    KaASFBone bone;
    bone.setName(name);
    bone.setId(id);
    return bone;
}

KaASFDOFGroup groupOf(const char* name, std::vector<int> codes)
{
    KaASFDOFGroup group(name);
    for (int code : codes)
        group.addDOF(code);
    return group;
}

std::vector<int> codesOf(const KaASFDOFGroup& group)
{
    std::vector<int> codes;
    for (const KaASFDOF* dof : group.dofs())
        codes.push_back(dof->code());
    return codes;
}

const KaASFDOF* firstDOF(const KaASFDOFGroup& group)
{
    return *group.dofs()[0];
}

std::vector<int> idsOf(const KtList<KaASFBone*>& bones)
{
    std::vector<int> ids;
    for (const KaASFBone* bone : bones)
        ids.push_back(bone->id());
    return ids;
}

} // namespace

TEST(KaDOFCode, NamesMatchIgnoringCaseAndPrintInLowerCase)
{
    const struct
    {
        const char* input;
        int code;
        const char* written;
    } cases[] = {{"TX", kDofTX, "tx"},
                 {"ty", kDofTY, "ty"},
                 {"Tz", kDofTZ, "tz"},
                 {"rX", kDofRX, "rx"},
                 {"RY", kDofRY, "ry"},
                 {"rz", kDofRZ, "rz"},
                 {"L", kDofL, "l"}};
    for (const auto& c : cases)
    {
        SCOPED_TRACE(c.input);
        EXPECT_EQ(c.code, KaDOFCodeOfName(c.input));
        EXPECT_STREQ(c.written, KaDOFNameOfCode(c.code).text());
    }
    for (const char* other : {"", "r", "rxx", "len", "t x"})
        EXPECT_EQ(kDofInvalid, KaDOFCodeOfName(other)) << other;
}

TEST(KaDOFCode, AnUnknownCodeIsReportedOnStandardError)
{
    StreamCapture err(std::cerr);
    EXPECT_STREQ("", KaDOFNameOfCode(9).text());
    EXPECT_STREQ("", KaDOFNameOfCode(kDofInvalid).text());
    EXPECT_EQ("Invalid dof value '9'\nInvalid dof value '-1'\n", err.text());
}

TEST(KaAxisOrder, ReadsTheFirstThreeLettersOfAWord)
{
    const struct
    {
        const char* word;
        std::vector<int> order;
        const char* message;
    } cases[] = {
        {"XYZ", {1, 2, 3}, nullptr},
        {"zyx", {3, 2, 1}, nullptr},
        {"yXz", {2, 1, 3}, nullptr},
        {"xxz", {1, 1, 3}, nullptr},
        {"ZXYW", {3, 1, 2}, nullptr},
        {"XY", {}, "Invalid axis specification."},
        {"XAZ", {}, "Invalid axis specification."},
        {"", {}, "Unable to read axis orientation order."},
    };
    for (const auto& c : cases)
    {
        SCOPED_TRACE(c.word);
        KtArray<int> order(3);
        EXPECT_EQ(c.message == nullptr, KaAxisOrderFromWord(c.word, &order));
        EXPECT_EQ(c.order, std::vector<int>(order.begin(), order.end()));
        EXPECT_EQ(c.message ? errorBlock({c.message}) : "", printedChain());
    }
    EXPECT_STREQ("x", KaAxisName(kAxisX));
    EXPECT_STREQ("z", KaAxisName(kAxisZ));
    EXPECT_STREQ("", KaAxisName(0));
}

TEST(KaASFDOFGroup, FindsDOFsByCode)
{
    KaASFDOFGroup rotations = groupOf("r", {kDofRX, kDofRY, kDofRZ});
    EXPECT_EQ(2, rotations.dofIndex(kDofRZ));
    EXPECT_TRUE(rotations.hasDOF(kDofRY));
    KaASFDOFGroup noRZ = groupOf("r", {kDofRX, kDofRY});
    EXPECT_EQ(-1, noRZ.dofIndex(kDofRZ));
    EXPECT_FALSE(noRZ.hasDOF(kDofRZ));
    EXPECT_EQ(nullptr, noRZ.limits(kDofRZ));
    ASSERT_NE(nullptr, noRZ.limits(kDofRY));
    EXPECT_EQ(-kInf, noRZ.limits(kDofRY)->lower);
    EXPECT_EQ(kInf, noRZ.limits(kDofRY)->upper);
}

TEST(KaASFDOFGroup, ADOFOfAGroupReportsTheGroupsLimits)
{
    KaASFDOFGroup arm = groupOf("arm", {kDofRX, kDofRY});
    arm.limits(kDofRY)->lower = -1.0f;
    arm.limits(kDofRY)->upper = 2.0f;
    // A group that refers to arm, and a bone list that refers to that.
    KaASFDOFGroup shoulder("shoulder");
    shoulder.addDOF(KaASFDOF(kDofRY, &arm));
    KaASFDOFGroup bone;
    KaASFDOF viaShoulder(kDofRY, &shoulder);
    viaShoulder.setLimits({5.0f, 6.0f});
    bone.addDOF(viaShoulder);
    bone.addDOF(kDofRZ);

    EXPECT_EQ(-1.0f, bone.limits(kDofRY)->lower);
    EXPECT_EQ(2.0f, bone.limits(kDofRY)->upper);
    EXPECT_TRUE(bone.hasGroupDOFs());
    EXPECT_TRUE(bone.hasNonGroupDOFs());
    EXPECT_TRUE(bone.usesDOFGroup("shoulder"));
    EXPECT_FALSE(bone.usesDOFGroup("arm"));
    // A group without the code leaves the DOF its own limits.
    KaASFDOF missing(kDofRZ, &arm);
    missing.setLimits({3.0f, 4.0f});
    EXPECT_EQ(3.0f, missing.limits().lower);
}

TEST(KaASFDOFGroup, AReferenceThatLoopsEndsAtTheDOFsOwnLimits)
{
    KaASFDOFGroup a("a");
    KaASFDOFGroup b("b");
    a.addDOF(KaASFDOF(kDofRX, &b));
    b.addDOF(KaASFDOF(kDofRX, &a));
    a.limits(kDofRX); // must return
    KaASFDOF outside(kDofRX, &a);
    outside.setLimits({7.0f, 8.0f});
    EXPECT_EQ(7.0f, outside.limits().lower);
}

TEST(KaASFDOFGroup, CopiesAreDeepAndMaySetFromTheirOwnList)
{
    KaASFDOFGroup original = groupOf("g", {kDofTX, kDofRX});
    KaASFDOFGroup copy(original);
    copy.limits(kDofRX)->upper = 1.0f;
    EXPECT_EQ(kInf, original.limits(kDofRX)->upper);

    KtList<KaASFDOF*> own = copy.dofs();
    copy.setDOFs(own);
    EXPECT_EQ((std::vector<int>{kDofTX, kDofRX}), codesOf(copy));
    EXPECT_EQ(1.0f, copy.limits(kDofRX)->upper);

    KtDArray<int> codes(2);
    codes[0] = kDofL;
    codes[1] = kDofRZ;
    copy.setDOFs(codes);
    EXPECT_EQ((std::vector<int>{kDofL, kDofRZ}), codesOf(copy));
}

TEST(KaASF, FindsBonesByNameIgnoringCaseAndById)
{
    KaASF skeleton;
    KaASFBone* first = skeleton.addBone(boneNamed("lfemur", 7));
    skeleton.addBone(boneNamed("LFemur", 8));
    EXPECT_EQ(first, skeleton.findBone("LFEMUR"));
    EXPECT_EQ(nullptr, skeleton.findBone("lfemu"));
    EXPECT_EQ(nullptr, skeleton.findBone("lfemurs"));
    EXPECT_EQ(8, skeleton.findBone(8)->id());
    EXPECT_EQ(nullptr, skeleton.findBone(9));

    // A bone renamed after it was added is found under its new name.
    first->setName("hip");
    EXPECT_EQ(first, skeleton.findBone("HIP"));
    EXPECT_EQ(8, skeleton.findBone("lfemur")->id());
}

TEST(KaASF, HandsOutTheSmallestFreeBoneId)
{
    const struct
    {
        std::vector<int> ids;
        int last;
        int firstUnused;
    } cases[] = {
        {{}, 0, 1},
        {{1, 2, 4}, 4, 3},
        {{1, 2, 3}, 3, 4},
        {{5}, 5, 1},
        {{-1, 0}, 0, 1},
        {{3, 1, 2147483647, 2}, 2147483647, 4},
    };
    for (const auto& c : cases)
    {
        KaASF skeleton;
        for (int id : c.ids)
            skeleton.addBone(boneNamed("b", id));
        EXPECT_EQ(c.last, skeleton.lastBoneId());
        EXPECT_EQ(c.firstUnused, skeleton.firstUnusedBoneId());
    }
}

TEST(KaASF, ListsChildrenAndCountsBonesWithDOFs)
{
    KaASF skeleton;
    KaASFBone* hip = skeleton.addBone(boneNamed("hip", 1));
    KaASFBone* knee = skeleton.addBone(boneNamed("knee", 2));
    KaASFBone* chest = skeleton.addBone(boneNamed("chest", 3));
    KaASFBone* toe = skeleton.addBone(boneNamed("toe", 4));
    knee->setParent(hip);
    toe->setParent(hip);
    knee->dofGroup().addDOF(kDofRX);

    KtList<KaASFBone*> roots;
    skeleton.getChildBonesOfRoot(&roots);
    EXPECT_EQ((std::vector<int>{1, 3}), idsOf(roots));
    KtList<KaASFBone*> children;
    skeleton.getChildBonesOfBone(&children, 1);
    EXPECT_EQ((std::vector<int>{2, 4}), idsOf(children));
    EXPECT_EQ(1, skeleton.numBonesWithDOF());
    EXPECT_EQ(nullptr, chest->parent());
}

TEST(KaASF, CopiesDeeplyAndRepointsLinksAndGroups)
{
    KaASF original;
    KaASFDOFGroup arm = groupOf("arm", {kDofRX});
    arm.limits(kDofRX)->upper = 1.0f;
    KaASFDOFGroup* originalArm = original.addDOFGroup(arm);
    KaASFBone* shoulder = original.addBone(boneNamed("shoulder", 1));
    KaASFBone* elbow = original.addBone(boneNamed("elbow", 2));
    elbow->setParent(shoulder);
    shoulder->setFirstChild(elbow);
    elbow->dofGroup().addDOF(KaASFDOF(kDofRX, originalArm));
    original.root().dofGroup().addDOF(KaASFDOF(kDofRX, originalArm));
    original.addSkinFile("body.skn");

    KaASF assigned;
    assigned.addBone(boneNamed("stale"));
    for (KaASF* copy : {new KaASF(original), &(assigned = original)})
    {
        KaASFBone* copiedElbow = copy->findBone("elbow");
        ASSERT_NE(nullptr, copiedElbow);
        EXPECT_NE(elbow, copiedElbow);
        EXPECT_EQ(copy->findBone("shoulder"), copiedElbow->parent());
        EXPECT_EQ(copiedElbow, copy->findBone("shoulder")->firstChild());
        KaASFDOFGroup* copiedArm = copy->findDOFGroup("arm");
        EXPECT_NE(originalArm, copiedArm);
        EXPECT_EQ(copiedArm, firstDOF(copiedElbow->dofGroup())->group());
        EXPECT_EQ(copiedArm, firstDOF(copy->root().dofGroup())->group());
        EXPECT_EQ(nullptr, copy->findBone("stale"));
        EXPECT_EQ(2, copy->numBones());
        EXPECT_EQ(1, copy->skinFiles().count());
        copiedArm->limits(kDofRX)->upper = 2.0f;
        EXPECT_EQ(1.0f, elbow->dofGroup().limits(kDofRX)->upper);
        if (copy != &assigned)
            delete copy;
    }
}

TEST(KaASF, RemovedGroupsLeaveTheirLimitsWithTheDOFsThatUsedThem)
{
    KaASF skeleton;
    KaASFDOFGroup arm = groupOf("arm", {kDofRX});
    arm.limits(kDofRX)->lower = -0.5f;
    KaASFDOFGroup* added = skeleton.addDOFGroup(arm);
    KaASFDOFGroup leg = groupOf("leg", {kDofRY});
    leg.limits(kDofRY)->upper = 0.25f;
    KaASFDOFGroup* addedLeg = skeleton.addDOFGroup(leg);
    KaASFBone* elbow = skeleton.addBone(boneNamed("elbow"));
    elbow->dofGroup().addDOF(KaASFDOF(kDofRX, added));
    elbow->dofGroup().addDOF(KaASFDOF(kDofRY, addedLeg));
    EXPECT_TRUE(skeleton._bonesUseDOFGroup("arm"));

    skeleton.removeDOFGroup("arm");
    EXPECT_EQ(nullptr, skeleton.findDOFGroup("arm"));
    EXPECT_EQ(addedLeg, skeleton.findDOFGroup("leg"));
    EXPECT_FALSE(skeleton._bonesUseDOFGroup("arm"));
    EXPECT_EQ(-0.5f, elbow->dofGroup().limits(kDofRX)->lower);

    skeleton.root().dofGroup().addDOF(KaASFDOF(kDofRY, addedLeg));
    skeleton.removeDOFGroups();
    EXPECT_EQ(0, skeleton.dofGroups().count());
    EXPECT_FALSE(skeleton._bonesUseGroupDOFs());
    EXPECT_EQ(0.25f, elbow->dofGroup().limits(kDofRY)->upper);
    EXPECT_EQ(0.25f, skeleton.root().dofGroup().limits(kDofRY)->upper);
}

TEST(KaASF, ClearingKeepsTheHeaderAndTheRoot)
{
    KaASF skeleton;
    skeleton.header().name = "walker";
    KaASFDOFGroup* group = skeleton.addDOFGroup(groupOf("g", {kDofTX}));
    group->limits(kDofTX)->upper = 3.0f;
    skeleton.root().dofGroup().addDOF(KaASFDOF(kDofTX, group));
    skeleton.addBone(boneNamed("hip"));
    skeleton.addSkinFile("a.skn");

    skeleton._clear();
    EXPECT_EQ(0, skeleton.numBones());
    EXPECT_EQ(nullptr, skeleton.findBone("hip"));
    EXPECT_EQ(0, skeleton.dofGroups().count());
    EXPECT_EQ(0, skeleton.skinFiles().count());
    EXPECT_STREQ("walker", skeleton.header().name.text());
    const KaASFDOF* rootDOF = firstDOF(skeleton.root().dofGroup());
    EXPECT_EQ(nullptr, rootDOF->group());
    EXPECT_EQ(3.0f, rootDOF->limits().upper);
}

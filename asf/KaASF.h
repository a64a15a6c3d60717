// KaASF: one skeleton document (header, DOF groups, root, bones, skins).
#pragma once

#include <iosfwd>

#include "asf/KaASFBone.h"
#include "asf/KaASFDOF.h"
#include "asf/KaASFRoot.h"
#include "toolkit/KtArray.h"
#include "toolkit/KtGrowArray.h"
#include "toolkit/KtList.h"
#include "toolkit/KtNameIndex.h"
#include "toolkit/KtNameList.h"
#include "toolkit/KtStr.h"

struct KaASFHeader
{
    int asfInternal = 0; // the file began with an :asf-internal section
    float version = 0.0f;
    KtStr name;
    float massFactor = 1.0f;
    // Bone lengths are divided by it when read.
    float lengthFactor = 1.0f;
    short angleUnit = 0; // 0 radians, 1 degrees (as the file was written)
    KtStr documentation;

    void printOn(std::ostream& out) const;
};

// The document owns its groups, bones and their DOFs. Reading and writing
// report failures through the error handler (KtError) and return normally;
// a read that fails leaves the document cleared.
class KaASF
{
public:
    KaASF();
    // Deep copies; bones are re-linked to the copy's own bones and DOFs that
    // refer to a group are re-pointed to the copy's group of that name.
    KaASF(const KaASF& other);
    KaASF& operator=(const KaASF& other);
    ~KaASF();

    const KaASFHeader& header() const { return _header; }
    KaASFHeader& header() { return _header; }
    const KaASFRoot& root() const { return _root; }
    KaASFRoot& root() { return _root; }
    // In file order.
    const KtGrowArray<KaASFBone*>& bones() const { return _bones; }
    int numBones() const { return _bones.count(); }
    const KtGrowArray<KaASFDOFGroup*>& dofGroups() const { return _dofGroups; }
    const KtNameList& skinFiles() const { return _skinFiles; }

    // First bone whose name equals name ignoring case, else null.
    KaASFBone* findBone(const char* name) const;
    KaASFBone* findBone(int id) const;
    // First group whose name equals name exactly, else null.
    KaASFDOFGroup* findDOFGroup(const char* name) const;
    // Append, in bone-list order, the bones attached to the root / to the
    // bone with the given id.
    void getChildBonesOfRoot(KtList<KaASFBone*>* children) const;
    void getChildBonesOfBone(KtList<KaASFBone*>* children, int id) const;
    // The largest id, at least 0.
    int lastBoneId() const;
    // The smallest positive id that no bone holds.
    int firstUnusedBoneId() const;
    int numBonesWithDOF() const;

    // Append a copy and return it.
    KaASFBone* addBone(const KaASFBone& bone);
    KaASFDOFGroup* addDOFGroup(const KaASFDOFGroup& group);
    // Deletes the first group of that exact name / every group. DOFs that
    // referred to a deleted group keep its limits as their own.
    void removeDOFGroup(const char* name);
    void removeDOFGroups();
    void addSkinFile(const char* name);
    void setSkinFiles(const KtNameList& names);

    // Reading: opens the file through KtCompIFStream, so compressed
    // skeletons read transparently.
    void read(const char* path);
    void scanFrom(std::istream& in);
    // Whether the stream (file) begins with a valid ASF header; either
    // output may be null.
    static int
    streamContainsASF(std::istream& in, int* internalFlag, float* version);
    static int fileContainsASF(const char* path);

    // Writing.
    void printOn(std::ostream& out) const;
    void save(const char* path) const;
    void printBoneListOn(std::ostream& out) const;

    bool _bonesUseDOFGroup(const char* name) const;
    bool _bonesUseGroupDOFs() const;
    // Deletes groups, bones and skin names; header and root keep their
    // values (root DOFs that referred to a group keep that group's limits
    // as their own).
    void _clear();

private:
    void _copyFrom(const KaASF& other);
    void _repointGroupReferences();
    void _detachFromGroup(const KaASFDOFGroup* group);

    KaASFHeader _header;
    KtGrowArray<KaASFDOFGroup*> _dofGroups;
    KaASFRoot _root;
    KtGrowArray<KaASFBone*> _bones;
    KtNameList _skinFiles;
    // Bones by name ignoring case, so that reading a large hierarchy does
    // not search the bone list for every name.
    KtNameIndex<KaASFBone> _bonesByName;
};

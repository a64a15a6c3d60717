// KaASF: the skeleton document's tables, lookups and deep copy, and its
// reading entry points (files and streams).
#include "asf/KaASF.h"

#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "asf/KaASFReader.h"
#include "toolkit/KtCompStream.h"
#include "toolkit/KtError.h"

namespace
{

// fileContainsASF reads the rest of a compressed file in pieces of this size.
constexpr size_t kDrainChunk = 1024;

template <class T>
void deleteAll(KtList<T*>& items)
{
    for (T* item : items)
        delete item;
    items.clear();
}

// The DOF keeps the limits it reported through the group and no longer
// refers to it.
void detach(KaASFDOF* dof)
{
    dof->setLimits(dof->limits());
    dof->setGroup(nullptr);
}

// Calls visit for each list of DOFs of the document: the root's, each
// group's and each bone's.
template <class Visit>
void forEachDOFGroup(KaASFRoot& root,
                     const KtList<KaASFDOFGroup*>& groups,
                     const KtList<KaASFBone*>& bones,
                     Visit visit)
{
    visit(root.dofGroup());
    for (KaASFDOFGroup* group : groups)
        visit(*group);
    for (KaASFBone* bone : bones)
        visit(bone->dofGroup());
}

KaASFBone*
relinked(const std::unordered_map<const KaASFBone*, KaASFBone*>& copies,
         const KaASFBone* bone)
{
    auto found = copies.find(bone);
    return found == copies.end() ? nullptr : found->second;
}

} // namespace

KaASF::KaASF() = default;

KaASF::KaASF(const KaASF& other)
{
    _copyFrom(other);
}

KaASF& KaASF::operator=(const KaASF& other)
{
    if (this != &other)
    {
        _clear();
        _copyFrom(other);
    }
    return *this;
}

KaASF::~KaASF()
{
    _clear();
}

// Parent and first-child links point into the source document; they are
// translated to the copies (a link to a bone outside the source becomes
// null). Group references are re-pointed by name once all groups exist.
void KaASF::_copyFrom(const KaASF& other)
{
    _header = other._header;
    _root = other._root;
    for (const KaASFDOFGroup* group : other._dofGroups)
        addDOFGroup(*group);
    std::unordered_map<const KaASFBone*, KaASFBone*> copies;
    for (const KaASFBone* bone : other._bones)
        copies.emplace(bone, addBone(*bone));
    for (KaASFBone* bone : _bones)
    {
        bone->setParent(relinked(copies, bone->parent()));
        bone->setFirstChild(relinked(copies, bone->firstChild()));
    }
    _skinFiles = other._skinFiles;
    _repointGroupReferences();
}

// Every DOF that refers to a group is pointed at this document's first group
// of the same name, or at none. A map of the names keeps this linear in the
// number of DOFs.
void KaASF::_repointGroupReferences()
{
    std::unordered_map<std::string, KaASFDOFGroup*> groupsByName;
    for (KaASFDOFGroup* group : _dofGroups)
        groupsByName.emplace(group->name().text(), group);
    forEachDOFGroup(
        _root,
        _dofGroups,
        _bones,
        [&](KaASFDOFGroup& dofs)
        {
            for (KaASFDOF* dof : dofs.dofs())
            {
                if (!dof->group())
                    continue;
                auto found = groupsByName.find(dof->group()->name().text());
                dof->setGroup(found == groupsByName.end() ? nullptr
                                                          : found->second);
            }
        });
}

void KaASF::_detachFromGroup(const KaASFDOFGroup* group)
{
    forEachDOFGroup(_root,
                    _dofGroups,
                    _bones,
                    [&](KaASFDOFGroup& dofs)
                    {
                        for (KaASFDOF* dof : dofs.dofs())
                            if (dof->group() == group)
                                detach(dof);
                    });
}

// The root outlives the groups, so its DOFs must not keep pointing at them.
void KaASF::_clear()
{
    for (KaASFDOF* dof : _root.dofGroup().dofs())
        if (dof->group())
            detach(dof);
    deleteAll(_bones);
    deleteAll(_dofGroups);
    _skinFiles._clear();
    _bonesByName.clear();
}

// The index answers at once; a bone renamed after it was added is still
// found, by the slower walk through the list.
KaASFBone* KaASF::findBone(const char* name) const
{
    KaASFBone* indexed = _bonesByName.find(name);
    if (indexed && indexed->name().iCmp(name) == 0)
        return indexed;
    for (KaASFBone* bone : _bones)
        if (bone->name().iCmp(name) == 0)
            return bone;
    return nullptr;
}

KaASFBone* KaASF::findBone(int id) const
{
    for (KaASFBone* bone : _bones)
        if (bone->id() == id)
            return bone;
    return nullptr;
}

KaASFDOFGroup* KaASF::findDOFGroup(const char* name) const
{
    for (KaASFDOFGroup* group : _dofGroups)
        if (group->name() == name)
            return group;
    return nullptr;
}

void KaASF::getChildBonesOfRoot(KtList<KaASFBone*>* children) const
{
    for (KaASFBone* bone : _bones)
        if (!bone->parent())
            children->append(bone);
}

void KaASF::getChildBonesOfBone(KtList<KaASFBone*>* children, int id) const
{
    for (KaASFBone* bone : _bones)
        if (bone->parent() && bone->parent()->id() == id)
            children->append(bone);
}

int KaASF::lastBoneId() const
{
    int last = 0;
    for (const KaASFBone* bone : _bones)
        if (bone->id() > last)
            last = bone->id();
    return last;
}

// The answer is at most the number of bones plus one, so only ids up to
// that bound need to be marked.
int KaASF::firstUnusedBoneId() const
{
    const int bound = _bones.count() + 1;
    std::vector<bool> held(bound + 1, false);
    for (const KaASFBone* bone : _bones)
        if (bone->id() >= 1 && bone->id() <= bound)
            held[bone->id()] = true;
    int id = 1;
    while (held[id])
        ++id;
    return id;
}

int KaASF::numBonesWithDOF() const
{
    int count = 0;
    for (const KaASFBone* bone : _bones)
        if (bone->dofGroup().numDOFs() > 0)
            ++count;
    return count;
}

KaASFBone* KaASF::addBone(const KaASFBone& bone)
{
    KaASFBone* copy = new KaASFBone(bone);
    _bones.append(copy);
    _bonesByName.add(copy->name(), copy);
    return copy;
}

KaASFDOFGroup* KaASF::addDOFGroup(const KaASFDOFGroup& group)
{
    KaASFDOFGroup* copy = new KaASFDOFGroup(group);
    _dofGroups.append(copy);
    return copy;
}

void KaASF::removeDOFGroup(const char* name)
{
    for (KtList<KaASFDOFGroup*>::Node* node = _dofGroups._firstLive(); node;
         node = KtDoubleLinkedList::_nextLive(node))
    {
        KaASFDOFGroup* group = *static_cast<KaASFDOFGroup**>(node->data);
        if (group->name() == name)
        {
            _detachFromGroup(group);
            _dofGroups.remove(node);
            delete group;
            return;
        }
    }
}

// Every reference is resolved before any is cut, since a reference may pass
// through several groups; one pass keeps this linear in the number of DOFs.
void KaASF::removeDOFGroups()
{
    std::vector<std::pair<KaASFDOF*, KaASFLimits>> resolved;
    forEachDOFGroup(_root,
                    _dofGroups,
                    _bones,
                    [&](KaASFDOFGroup& dofs)
                    {
                        for (KaASFDOF* dof : dofs.dofs())
                            if (dof->group())
                                resolved.emplace_back(dof, dof->limits());
                    });
    for (auto& [dof, limits] : resolved)
    {
        dof->setLimits(limits);
        dof->setGroup(nullptr);
    }
    deleteAll(_dofGroups);
}

void KaASF::addSkinFile(const char* name)
{
    int count = _skinFiles.count();
    _skinFiles._resize(count + 1);
    _skinFiles[count] = name;
}

void KaASF::setSkinFiles(const KtArray<KtStr>& names)
{
    _skinFiles = names;
}

bool KaASF::_bonesUseDOFGroup(const char* name) const
{
    for (const KaASFBone* bone : _bones)
        if (bone->dofGroup().usesDOFGroup(name))
            return true;
    return false;
}

bool KaASF::_bonesUseGroupDOFs() const
{
    for (const KaASFBone* bone : _bones)
        if (bone->dofGroup().hasGroupDOFs())
            return true;
    return false;
}

// -------------------------------------------------------------- reading

// A new read starts from an empty document, so nothing of an earlier file
// (its units, say) carries over.
void KaASF::scanFrom(std::istream& in)
{
    _clear();
    _header = KaASFHeader();
    _root = KaASFRoot();
    KaASFReadDocument(in, this);
}

void KaASF::read(const char* path)
{
    if (!path)
        path = "";
    KtCompIFStream in;
    in.open(path);
    if (!in.good() || theExceptObj.errorOccurred())
    {
        // The stream records why it failed; a failure is never silent.
        if (!theExceptObj.errorOccurred())
            KtError("Unable to open '%s'.", path);
        _clear();
        return;
    }
    scanFrom(in);
    // A decompression command that failed has cut the text short, though
    // what came through may read as a whole skeleton.
    in.close();
    if (!theExceptObj.errorOccurred())
        return;
    _clear();
    KtError("Unable to read '%s'.", path);
}

int KaASF::streamContainsASF(std::istream& in,
                             int* internalFlag,
                             float* version)
{
    return KaASFReadHeader(in, internalFlag, version) ? 1 : 0;
}

// A decompressing command must be able to write all its output before the
// stream closes, so a compressed file is read to its end.
int KaASF::fileContainsASF(const char* path)
{
    if (!path)
        path = "";
    KtCompIFStream in;
    in.open(path);
    if (!in.good())
    {
        KtError("Unable to open '%s'.", path);
        return 0;
    }
    if (!streamContainsASF(in, nullptr, nullptr))
    {
        KtError("Unable to read \"%s\".", path);
        return 0;
    }
    if (in.compressed())
    {
        char buffer[kDrainChunk];
        while (in.read(buffer, sizeof buffer))
        {
        }
    }
    return 1;
}

// BodyTable: the skeleton's bodies with their DOF codes, what their names
// mean, and the lookup of their values in a frame by the position of names.
#include "pose/BodyTable.h"

#include <cstring>

#include "amc/KaAMC.h"
#include "asf/KaASF.h"
#include "toolkit/KtNameIndex.h"

BodyTable::BodyTable(const KaASF& asf, const KtArray<KtStr>* motionNames)
    : _asf(asf)
    , _motionNames(motionNames)
{
    int numCodes = asf.root().dofGroup().numDOFs();
    for (const KaASFBone* bone : asf.bones())
        numCodes += bone->dofGroup().numDOFs();
    _codes._resize(numCodes);
    _bodies._resize(1 + asf.numBones());
    _values._resize(count());

    int code = 0;
    _addBody(kRoot, nullptr, asf.root().dofGroup(), code);
    int body = 1;
    for (const KaASFBone* bone : asf.bones())
        _addBody(body++, bone, bone->dofGroup(), code);
    _linkBodies();
    if (_motionNames)
        _locateNames(*_motionNames);
}

const char* BodyTable::name(int body) const
{
    return body == kRoot ? kKaRootName : _bodies[body].bone->name().text();
}

int BodyTable::bodyNamed(const char* name) const
{
    if (std::strcmp(name, kKaRootName) == 0)
        return kRoot;
    return _bodyOf(_asf.findBone(name));
}

int BodyTable::_bodyOf(const KaASFBone* bone) const
{
    auto found = _bodyOfBone.find(bone);
    return found == _bodyOfBone.end() ? kNone : found->second;
}

void BodyTable::_addBody(int body,
                         const KaASFBone* bone,
                         const KaASFDOFGroup& dofs,
                         int& code)
{
    Body& b = _bodies[body];
    b.bone = bone;
    b.dofs = &dofs;
    b.firstCode = code;
    b.numCodes = dofs.numDOFs();
    for (const KaASFDOF* dof : dofs.dofs())
        _codes[code++] = dof->code();
}

void BodyTable::_linkBodies()
{
    for (int body = 1; body < count(); ++body)
        _bodyOfBone.emplace(_bodies[body].bone, body);
    _bodies[kRoot].named = kRoot;
    for (int body = 1; body < count(); ++body)
    {
        Body& b = _bodies[body];
        b.parentBone = _bodyOf(b.bone->parent());
        b.parent = b.parentBone == kNone ? kRoot : b.parentBone;
        b.named = bodyNamed(b.bone->name().text());
    }
}

// The index keeps the first of names that differ only in case, as a search
// from the front finds it.
void BodyTable::_locateNames(const KtArray<KtStr>& names)
{
    KtNameIndex<const KtStr> index;
    for (const KtStr& name : names)
        index.add(name.text(), &name);
    for (int body = 0; body < count(); ++body)
    {
        const KtStr* found = index.find(name(body));
        _bodies[body].namePosition =
            found ? static_cast<int>(found - names.data()) : -1;
    }
}

void BodyTable::bind(const KaAMCField& frame)
{
    if (_motionNames && frame.bonesNamedByPosition(*_motionNames))
    {
        for (int body = 0; body < count(); ++body)
        {
            int position = _bodies[body].namePosition;
            _values[body] = position >= 0 && position < frame.numBones()
                                ? &frame.bone(position)
                                : nullptr;
        }
        return;
    }
    for (int body = 0; body < count(); ++body)
        _values[body] = frame.findBone(name(body));
}

// BodyTable: the skeleton's bodies with their DOF codes, what their names
// mean, and the lookup of their values in a frame by the position of names.
#include "pose/BodyTable.h"

#include <algorithm>
#include <cstring>
#include <strings.h>

#include "amc/KaAMC.h"
#include "asf/KaASF.h"

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
    auto found = std::lower_bound(
        _bodyOfBone.begin(), _bodyOfBone.end(), BoneBody{bone, kNone});
    return found != _bodyOfBone.end() && found->bone == bone ? found->body
                                                             : kNone;
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
    _bodyOfBone.reserve(count() - 1);
    for (int body = 1; body < count(); ++body)
    {
        _bodyOfBone.push_back({_bodies[body].bone, body});
        _bonesByName.add(_bodies[body].bone);
    }
    std::sort(_bodyOfBone.begin(), _bodyOfBone.end());
    _bodies[kRoot].named = kRoot;
    for (int body = 1; body < count(); ++body)
    {
        Body& b = _bodies[body];
        b.parentBone = _bodyOf(b.bone->parent());
        b.parent = b.parentBone == kNone ? kRoot : b.parentBone;
        b.named = bodyNamed(b.bone->name().text());
    }
}

// Bodies whose names differ only in case share the first position of that
// name, as a search from the front finds it: each motion name is looked up
// once among the bodies, through the skeleton's own index, and each body
// then takes the position of the first body of its name.
void BodyTable::_locateNames(const KtArray<KtStr>& names)
{
    for (int i = names.count() - 1; i >= 0; --i)
    {
        int body = _firstBodyNamed(names[i]);
        if (body != kNone)
            _bodies[body].namePosition = i;
    }
    for (int body = 0; body < count(); ++body)
        _bodies[body].namePosition =
            _bodies[_firstBodyNamed(name(body))].namePosition;
}

// The root, or the first bone, whose name equals name ignoring case. The
// table's own index answers for names that no bone has without a search.
int BodyTable::_firstBodyNamed(const char* name) const
{
    if (strcasecmp(name, kKaRootName) == 0)
        return kRoot;
    return _bodyOf(_bonesByName.find(name));
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

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
    return _bodies[body].name();
}

const char* BodyTable::Body::name() const
{
    return bone ? bone->name().text() : kKaRootName;
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

// Bodies whose names differ only in case share the first position of that
// name, as a search from the front finds it. The bodies are indexed, not the
// motion's names, which may be many more.
void BodyTable::_locateNames(const KtArray<KtStr>& names)
{
    KtNameIndex<Body> index;
    for (Body& body : _bodies)
        index.add(&body);
    for (int i = 0; i < names.count(); ++i)
    {
        Body* first = index.find(names[i]);
        if (first && first->namePosition < 0)
            first->namePosition = i;
    }
    for (int body = 0; body < count(); ++body)
        _bodies[body].namePosition = index.find(name(body))->namePosition;
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

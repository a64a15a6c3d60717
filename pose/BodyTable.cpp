// BodyTable: the skeleton's bodies with their DOF codes, what their names
// mean, and the lookup of their values in a frame by the position of names.
#include "pose/BodyTable.h"

#include <algorithm>
#include <cstring>
#include <strings.h>

#include "amc/KaAMC.h"
#include "asf/KaASF.h"

BodyTable::BodyTable(const KaASF& asf, const KtNameList* motionNames)
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
    _makeSlots();
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
void BodyTable::_locateNames(const KtNameList& names)
{
    int i = 0;
    for (const char* name : names)
    {
        int body = _firstBodyNamed(name);
        if (body != kNone && _bodies[body].namePosition < 0)
            _bodies[body].namePosition = i;
        ++i;
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

// Every field of a motion takes its names by position from the first, so
// with the motion's names a body's line is found without a search.
void BodyTable::bind(const KaAMCField& frame)
{
    const int numLines = frame.numBones();
    for (int body = 0; body < count(); ++body)
    {
        const int slot = _slot[body];
        int line = kNone;
        if (slot != kNone)
            line = _motionNames ? _bodies[body].namePosition
                                : frame.findBone(name(body));
        if (line < 0 || line >= numLines)
        {
            _values[body] = nullptr;
            continue;
        }
        _lines[slot] = line;
        _views[slot] = frame.bone(line);
        _values[body] = &_views[slot];
    }
}

int BodyTable::line(int body) const
{
    return _values[body] ? _lines[_slot[body]] : kNone;
}

// A body gets room for its line only if a frame can hold it: with the
// motion's names, only the bodies they name.
void BodyTable::_makeSlots()
{
    _slot._resize(count());
    int slots = 0;
    for (int body = 0; body < count(); ++body)
        _slot[body] =
            !_motionNames || _bodies[body].namePosition >= 0 ? slots++ : kNone;
    _views._resize(slots);
    _lines._resize(slots);
}

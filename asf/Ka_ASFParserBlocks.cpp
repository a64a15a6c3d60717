// The skeleton reader's :bonedata and :dofgroups blocks, and the DOF and
// limit lists that they (and the root's order) are made of.
#include <cstring>

#include "asf/KaASF.h"
#include "asf/KaAxisOrder.h"
#include "asf/Ka_ASFParser.h"
#include "toolkit/KtCancelHandler.h"
#include "toolkit/KtError.h"

namespace
{

// Channels are named once each, so real lists hold at most seven DOFs. Only
// references to groups can repeat a channel, and this cap keeps such repeats
// from multiplying through groups that refer to groups.
constexpr int kMaxDOFsInList = 16;

} // namespace

// What one begin ... end block has given so far.
struct Ka_ASFParser::BlockState
{
    bool name = false;
    bool dof = false;
    bool limits = false;
};

struct Ka_ASFParser::BoneBlock : BlockState
{
    static constexpr const char* kSection = ":bonedata";

    KaASFBone bone;
    bool id = false;
    bool direction = false;
    bool length = false;
    bool axis = false;
    bool bodyMass = false;
    bool cofMass = false;
    // Once set, "id" and "name" are refused: they must come first.
    bool ordered = false;
};

struct Ka_ASFParser::GroupBlock : BlockState
{
    static constexpr const char* kSection = ":dofgroups";

    KaASFDOFGroup group;
};

// ---------------------------------------------------- bone and group blocks

bool Ka_ASFParser::_readBoneData()
{
    return _readBlocks<BoneBlock>();
}

bool Ka_ASFParser::_readDOFGroups()
{
    return _readBlocks<GroupBlock>();
}

// The begin ... end structure shared by :bonedata and :dofgroups. The end
// of the file ends the section like the next section keyword.
template <class Block>
bool Ka_ASFParser::_readBlocks()
{
    const char* section = Block::kSection;
    Block block;
    bool inBlock = false;
    int finished = 0;
    for (;;)
    {
        if (!_next() || _isEndOfSection())
        {
            if (inBlock)
                return _fail("Expected 'end' keyword in %s section.", section);
            return true;
        }
        if (_is("begin"))
        {
            if (inBlock)
                return _fail("Expected 'end' keyword in %s section.", section);
            block = Block();
            inBlock = true;
        }
        else if (_is("end"))
        {
            if (!inBlock)
                return _fail("Unexpected 'end' encountered in %s section.",
                             section);
            if (!_finish(block))
                return false;
            inBlock = false;
            if (++finished % kPollEvery == 0 && KtCancelHandler::checkCancel())
                return false;
        }
        else if (!inBlock)
            return _fail(
                "Data specified outside of begin/end pair in %s section.",
                section);
        else if (!_readKeyword(block))
            return false;
    }
}

bool Ka_ASFParser::_finish(BoneBlock& block)
{
    if (!block.name)
        return _fail("Name undefined in :bonedata section.");
    if (!block.direction)
        return _fail("Direction undefined in :bonedata section.");
    if (!block.length)
        return _fail("Length undefined in :bonedata section.");
    if (!block.axis)
        return _fail("Axis undefined in :bonedata section.");
    _document->addBone(block.bone);
    return true;
}

bool Ka_ASFParser::_finish(GroupBlock& block)
{
    if (!block.name)
        return _fail("Name undefined in :dofgroups section.");
    KaASFDOFGroup* group = _document->addDOFGroup(block.group);
    _groupsByName.add(group->name(), group);
    return true;
}

// "id" and "name" must come first: once a direction is given (or, after
// "limits", any of direction, length, axis, cofmass, dof or limits) they are
// refused. Body mass deliberately does not count.
bool Ka_ASFParser::_readKeyword(BoneBlock& block)
{
    using Reader = bool (Ka_ASFParser::*)(BoneBlock&);
    static const struct
    {
        const char* keyword;
        Reader read;
    } kKeywords[] = {
        {"id", &Ka_ASFParser::_readBoneId},
        {"name", &Ka_ASFParser::_readBoneName},
        {"direction", &Ka_ASFParser::_readBoneDirection},
        {"length", &Ka_ASFParser::_readBoneLength},
        {"axis", &Ka_ASFParser::_readBoneAxis},
        {"bodymass", &Ka_ASFParser::_readBoneBodyMass},
        {"cofmass", &Ka_ASFParser::_readBoneCofMass},
        {"dof", &Ka_ASFParser::_readBoneDOFs},
        {"limits", &Ka_ASFParser::_readBoneLimits},
    };
    for (const auto& entry : kKeywords)
    {
        if (!_is(entry.keyword))
            continue;
        if (!(this->*entry.read)(block))
            return false;
        if (entry.read == &Ka_ASFParser::_readBoneLimits)
            block.ordered = block.direction || block.length || block.axis ||
                            block.cofMass || block.dof || block.limits;
        else
            block.ordered = block.direction;
        return true;
    }
    return _fail("Unexpected '%s' encountered in :bonedata section.", _token);
}

bool Ka_ASFParser::_readBoneId(BoneBlock& block)
{
    if (block.ordered)
        return _fail("Id must come before all other data except name in "
                     ":bonedata section.");
    if (block.id)
        return _fail("Duplicate id specification in :bonedata section.");
    int id = 0;
    if (!_readInt(&id))
        return _fail("Invalid value for 'id' in :bonedata section.");
    block.bone.setId(id);
    block.id = true;
    return true;
}

bool Ka_ASFParser::_readBoneName(BoneBlock& block)
{
    if (block.ordered)
        return _fail(
            "Name must come before all other except id in :bonedata section.");
    if (block.name)
        return _fail("Duplicate name specification in :bonedata section.");
    _next();
    block.bone.setName(_token);
    block.name = true;
    return true;
}

// The checks shared by the data that must follow the name.
bool Ka_ASFParser::_checkBoneData(const BoneBlock& block,
                                  bool given,
                                  const char* beforeName,
                                  const char* duplicate)
{
    if (!block.name)
        return _fail("%s", beforeName);
    if (given)
        return _fail("%s", duplicate);
    return true;
}

bool Ka_ASFParser::_readBoneDirection(BoneBlock& block)
{
    float values[kPointSize];
    if (!_checkBoneData(
            block,
            block.direction,
            "Direction specification defined before name in :bonedata "
            "section.",
            "Duplicate direction specification in :bonedata section.") ||
        !_readFloats(values,
                     kPointSize,
                     "Invalid value for direction in :bonedata section."))
        return false;
    block.bone.setDirection(KtPoint(values[0], values[1], values[2]));
    block.direction = true;
    return true;
}

// The length is held in the skeleton's length unit.
bool Ka_ASFParser::_readBoneLength(BoneBlock& block)
{
    float length = 0.0f;
    if (!_checkBoneData(
            block,
            block.length,
            "Length specification defined before name in :bonedata section.",
            "Duplicate length specification in :bonedata section.") ||
        !_readFloats(
            &length, 1, "Invalid value for length in :bonedata section."))
        return false;
    block.bone.setLength(length / _document->header().lengthFactor);
    block.length = true;
    return true;
}

bool Ka_ASFParser::_readBoneAxis(BoneBlock& block)
{
    float values[kPointSize];
    if (!_checkBoneData(block,
                        block.axis,
                        "Axis defined before name in :bonedata section.",
                        "Duplicate axis specification in :bonedata section.") ||
        !_readFloats(
            values, kPointSize, "Invalid value for axis in :bonedata section."))
        return false;
    KtArray<float> angles(kPointSize);
    for (int i = 0; i < kPointSize; ++i)
        angles[i] = _radians(values[i]);
    _next();
    KtArray<int> order;
    if (!KaAxisOrderFromWord(_token, &order))
        return _fail("Unable to read sequence.");
    block.bone.setAxis(angles);
    block.bone.setAxisOrder(order);
    block.axis = true;
    return true;
}

bool Ka_ASFParser::_readBoneBodyMass(BoneBlock& block)
{
    float mass = 0.0f;
    if (!_checkBoneData(
            block,
            block.bodyMass,
            "Bodymass defined before name in :bonedata section.",
            "Duplicate bodymass specification in :bonedata section.") ||
        !_readFloats(
            &mass, 1, "Invalid value for bodymass in :bonedata section."))
        return false;
    block.bone.setBodyMass(mass);
    block.bodyMass = true;
    return true;
}

bool Ka_ASFParser::_readBoneCofMass(BoneBlock& block)
{
    float value = 0.0f;
    if (!_checkBoneData(
            block,
            block.cofMass,
            "Cofmass defined before name in :bonedata section.",
            "Duplicate cofmass specification in :bonedata section.") ||
        !_readFloats(
            &value, 1, "Invalid value for cofmass in :bonedata section."))
        return false;
    block.bone.setCofMass(value);
    block.cofMass = true;
    return true;
}

// The list's failure message carries no line prefix: the list's own message
// under it already has one.
bool Ka_ASFParser::_readBoneDOFs(BoneBlock& block)
{
    if (!_checkDOFKeyword(block, BoneBlock::kSection))
        return false;
    if (!_readDOFList(&block.bone.dofGroup()))
    {
        KtError("Unable to read dof in :bonedata section.");
        return false;
    }
    block.dof = true;
    return true;
}

bool Ka_ASFParser::_readBoneLimits(BoneBlock& block)
{
    if (!_checkLimitsKeyword(block, BoneBlock::kSection) ||
        !_readLimitsList(&block.bone.dofGroup(), BoneBlock::kSection))
        return false;
    block.limits = true;
    return true;
}

bool Ka_ASFParser::_readKeyword(GroupBlock& block)
{
    if (_is("name"))
    {
        if (block.name)
            return _fail("Duplicate name specification in :dofgroups section.");
        _next();
        block.group.setName(_token);
        block.name = true;
    }
    else if (_is("dof"))
    {
        if (!_checkDOFKeyword(block, GroupBlock::kSection))
            return false;
        if (!_readDOFList(&block.group))
            return _fail("Unable to read dof in :dofgroups section.");
        block.dof = true;
    }
    else if (_is("limits"))
    {
        if (!_checkLimitsKeyword(block, GroupBlock::kSection) ||
            !_readLimitsList(&block.group, GroupBlock::kSection))
            return false;
        block.limits = true;
    }
    else
        return _fail("Unexpected '%s' encountered in :dofgroups section.",
                     _token);
    return true;
}

bool Ka_ASFParser::_checkDOFKeyword(const BlockState& state,
                                    const char* section)
{
    if (state.limits)
        return _fail("Limits defined before dof in %s section.", section);
    if (!state.name)
        return _fail("Dof defined before name in %s section.", section);
    if (state.dof)
        return _fail("Duplicate dof specification in %s section.", section);
    return true;
}

bool Ka_ASFParser::_checkLimitsKeyword(const BlockState& state,
                                       const char* section)
{
    if (!state.dof)
        return _fail("Limits defined without the definition of dof in %s "
                     "section.",
                     section);
    if (!state.name)
        return _fail("Limits defined before name in %s section.", section);
    if (state.limits)
        return _fail("Duplicate limits specification in %s section.", section);
    return true;
}

// ------------------------------------------------------- DOF and limit lists

// DOF names, and in internal files names of groups (ignoring case): a group
// name alone stands for all the group's DOFs, "group < rx ry >" for some of
// them; those DOFs take their limits from the group. The word that ends the
// list is held for the caller.
bool Ka_ASFParser::_readDOFList(KaASFDOFGroup* list)
{
    bool reexamine = false;
    for (;;)
    {
        if (!reexamine)
            _next();
        reexamine = false;
        if (_atEnd())
            break;
        int code = KaDOFCodeOfName(_token);
        if (code != kDofInvalid)
        {
            if (list->hasDOF(code))
                return _fail("Dof '%s' specified more than once.",
                             KaDOFNameOfCode(code).text());
            if (!_roomFor(list, 1))
                return false;
            list->addDOF(code);
            continue;
        }
        KaASFDOFGroup* group = _internal ? _groupsByName.find(_token) : nullptr;
        if (!group)
            break;
        if (_next() && std::strcmp(_token, "<") == 0)
        {
            if (!_readGroupSelection(list, group))
                return false;
            continue;
        }
        // The whole group, without the check for repeats; the word after
        // the group name is examined again.
        if (!_roomFor(list, group->numDOFs()))
            return false;
        for (const KaASFDOF* dof : group->dofs())
            list->addDOF(KaASFDOF(dof->code(), group));
        reexamine = true;
    }
    _hold();
    return true;
}

bool Ka_ASFParser::_readGroupSelection(KaASFDOFGroup* list,
                                       KaASFDOFGroup* group)
{
    while (_next())
    {
        if (std::strcmp(_token, ">") == 0)
        {
            // The test is on the whole list, so an empty "< >" after other
            // DOFs passes.
            if (list->numDOFs() == 0)
                return _fail("No dof specified within < >.");
            return true;
        }
        int code = KaDOFCodeOfName(_token);
        if (code == kDofInvalid)
            return _fail("Unexpected '%s' encountered.", _token);
        if (!group->hasDOF(code))
            return _fail("Dofgroup '%s' does not contain dof '%s'.",
                         group->name().text(),
                         KaDOFNameOfCode(code).text());
        if (!_roomFor(list, 1))
            return false;
        list->addDOF(KaASFDOF(code, group));
    }
    return _fail("Unexpected end of input.");
}

bool Ka_ASFParser::_roomFor(const KaASFDOFGroup* list, int count)
{
    if (list->numDOFs() + count <= kMaxDOFsInList)
        return true;
    return _fail("Too many dofs specified (at most %d).", kMaxDOFsInList);
}

// Pairs of lower and upper limits for the list's own DOFs in order (DOFs
// that refer to a group take the group's limits and get no pair). The list
// ends at the first word that is no number; fewer pairs than DOFs leave the
// rest unlimited. Infinite limits are converted from degrees like any other
// (deliberately no special case).
bool Ka_ASFParser::_readLimitsList(KaASFDOFGroup* list, const char* section)
{
    auto target = list->dofs().begin();
    const auto end = list->dofs().end();
    for (;;)
    {
        float lower = 0.0f;
        float upper = 0.0f;
        if (!_next() || !_limitValue(&lower))
        {
            _hold();
            return true;
        }
        if (!_next() || !_limitValue(&upper))
        {
            KtError("Invalid number.");
            return _fail("Invalid value for upper limit in %s section.",
                         section);
        }
        if (upper < lower)
            return _fail("Lower limit greater than upper limit in %s section.",
                         section);
        while (target != end && (*target)->group())
            ++target;
        if (!(target != end))
            return _fail("Too many limits specified in %s section.", section);
        KaASFDOF* dof = *target;
        ++target;
        if (dof->isRotation())
        {
            lower = _radians(lower);
            upper = _radians(upper);
        }
        dof->setLimits(KaASFLimits{lower, upper});
    }
}

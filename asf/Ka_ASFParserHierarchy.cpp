// The skeleton reader's :hierarchy section, and what is settled once the
// whole file is read: no bone is its own ancestor, and every bone has an id.
#include <cstring>
#include <unordered_map>
#include <unordered_set>

#include "asf/KaASF.h"
#include "asf/Ka_ASFParser.h"
#include "toolkit/KtCancelHandler.h"

struct Ka_ASFParser::HierarchyState
{
    KaASFBone* parent = nullptr; // null: the root
    bool firstChildArmed = true;
    bool done = false;
    int children = 0;
};

// Each line names a parent ("root" or a bone) and then its children; the
// words on the "begin" line itself hang from the root. The first child
// named after a bone becomes that bone's first child.
bool Ka_ASFParser::_readHierarchy()
{
    if (!_next())
        return _fail("Unexpected end of input.");
    if (!_is("begin"))
        return _fail(
            "Expected 'begin' keyword in :hierarchy section, got '%s'.",
            _token);
    HierarchyState state;
    bool atLineStart = false;
    for (;;)
    {
        if (!_nextInLine())
            return _fail("Unexpected end of input.");
        if (_isEndOfLine())
        {
            atLineStart = true;
            continue;
        }
        bool read = atLineStart ? _readHierarchyHead(&state)
                                : _readHierarchyChild(&state);
        if (!read || state.done)
            return read;
        atLineStart = false;
    }
}

bool Ka_ASFParser::_readHierarchyHead(HierarchyState* state)
{
    if (_is("end"))
    {
        state->done = true;
        if (!_next() || _isEndOfSection())
            return true;
        return _fail("Unexpected '%s' encountered after :hierarchy section.",
                     _token);
    }
    if (_isEndOfSection())
        return _fail("Expected 'end' keyword in :hierarchy section.");
    state->parent = nullptr;
    if (!_is(kKaRootName) && !(state->parent = _boneNamedByToken()))
        return false;
    state->firstChildArmed = true;
    return true;
}

// The word "root" among the children (exact case) is skipped.
bool Ka_ASFParser::_readHierarchyChild(HierarchyState* state)
{
    if (std::strcmp(_token, kKaRootName) == 0)
        return true;
    KaASFBone* child = _boneNamedByToken();
    if (!child)
        return false;
    child->setParent(state->parent);
    _parentSetAt[child] = {_tokenizer.lineNumber(), ++_assignments};
    if (state->parent && state->firstChildArmed)
    {
        state->parent->setFirstChild(child);
        state->firstChildArmed = false;
    }
    if (++state->children % kPollEvery == 0 && KtCancelHandler::checkCancel())
        return false;
    return true;
}

KaASFBone* Ka_ASFParser::_boneNamedByToken()
{
    KaASFBone* bone = _document->findBone(_token);
    if (!bone)
        _fail("Unable to find bone '%s'.", _token);
    return bone;
}

// Everything that walks the hierarchy relies on reaching the root, so no
// bone may be its own ancestor. Checked once, when the whole file is read
// (later lines may still move a bone), in time linear in the number of
// bones: each bone is walked over once.
bool Ka_ASFParser::_checkHierarchy()
{
    std::unordered_map<const KaASFBone*, int> walkThatReached;
    int walk = 0;
    for (const KaASFBone* start : _document->bones())
    {
        ++walk;
        const KaASFBone* bone = start;
        while (bone && walkThatReached.emplace(bone, walk).second)
            bone = bone->parent();
        if (bone && walkThatReached[bone] == walk)
            return _refuseCycleThrough(bone);
    }
    return true;
}

// Names the bone of the circle whose parent link was set last: that line
// closed the circle.
bool Ka_ASFParser::_refuseCycleThrough(const KaASFBone* bone)
{
    const KaASFBone* latest = bone;
    const KaASFBone* member = bone;
    do
    {
        if (_parentSetAt[member].order > _parentSetAt[latest].order)
            latest = member;
        member = member->parent();
    } while (member != bone);
    return _failAtLine(_parentSetAt[latest].line,
                       "Bone '%s' cannot be its own ancestor.",
                       latest->name().text());
}

// In bone-list order, a bone without an id (0) takes the smallest positive
// id that no bone holds at that moment, and an id of -1 becomes 0. The
// smallest free id only grows as ids are handed out, so one pass suffices.
void Ka_ASFParser::_assignMissingIds()
{
    std::unordered_set<int> held;
    for (const KaASFBone* bone : _document->bones())
        if (bone->id() > 0)
            held.insert(bone->id());
    int candidate = 1;
    for (KaASFBone* bone : _document->bones())
    {
        if (bone->id() == 0)
        {
            while (held.count(candidate))
                ++candidate;
            bone->setId(candidate);
            held.insert(candidate);
        }
        else if (bone->id() == -1)
            bone->setId(0);
    }
}

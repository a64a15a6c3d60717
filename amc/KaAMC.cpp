// The motion model: bone value storage, name sharing, copies and building.
#include "amc/KaAMC.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <type_traits>
#include <utility>

namespace
{

static_assert(sizeof(float*) <= sizeof(float) * 3,
              "a spilled bone keeps its block's address in its inline bytes");
// The reader moves every bone and field it reads; a copy there would cost
// an allocation each.
static_assert(std::is_nothrow_move_constructible_v<KaAMCBone> &&
                  std::is_nothrow_move_constructible_v<KaAMCField>,
              "bones and fields move without copying");

// Allocation failure is handled as in the containers: no message through
// the error handler, the process stops.
float* allocateValues(int count)
{
    void* block = std::malloc(sizeof(float) * static_cast<size_t>(count));
    if (!block)
    {
        std::fputs("Memory allocation failed\n", stderr);
        std::abort();
    }
    return static_cast<float*>(block);
}

} // namespace

// ---- KaAMCBone -----------------------------------------------------------

KaAMCBone::KaAMCBone(const KaAMCBone& other)
    : _name(other._name)
{
    setValues(other.values(), other._count);
}

KaAMCBone::KaAMCBone(KaAMCBone&& other) noexcept
    : _name(other._name)
    , _count(other._count)
    , _storage(other._storage)
{
    other._count = 0;
}

KaAMCBone& KaAMCBone::operator=(const KaAMCBone& other)
{
    if (this != &other)
    {
        _name = other._name;
        setValues(other.values(), other._count);
    }
    return *this;
}

KaAMCBone& KaAMCBone::operator=(KaAMCBone&& other) noexcept
{
    if (this != &other)
    {
        _release();
        _name = other._name;
        _count = other._count;
        _storage = other._storage;
        other._count = 0;
    }
    return *this;
}

KaAMCBone::~KaAMCBone()
{
    _release();
}

float* KaAMCBone::_spilled() const
{
    float* block = nullptr;
    std::memcpy(&block, _storage.heapAddress, sizeof block);
    return block;
}

void KaAMCBone::_release()
{
    if (_count > kInlineValues)
        std::free(_spilled());
    _count = 0;
}

void KaAMCBone::setValues(const float* values, int count)
{
    count = std::max(count, 0);
    if (count <= kInlineValues)
    {
        float kept[kInlineValues];
        std::copy_n(values, count, kept);
        _release();
        std::copy_n(kept, count, _storage.inlineValues);
    }
    else
    {
        float* block = allocateValues(count);
        std::copy_n(values, count, block);
        _release();
        std::memcpy(_storage.heapAddress, &block, sizeof block);
    }
    _count = count;
}

// ---- KaAMCField ----------------------------------------------------------

const KaAMCBone* KaAMCField::findBone(const char* name) const
{
    if (!name)
        return nullptr;
    for (const KaAMCBone& bone : _bones)
        if (bone.name() && bone.name()->iCmp(name) == 0)
            return &bone;
    return nullptr;
}

bool KaAMCField::bonesNamedByPosition(const KtArray<KtStr>& names) const
{
    for (int i = 0; i < _bones.count(); ++i)
        if (_bones[i].name() != (i < names.count() ? &names[i] : nullptr))
            return false;
    return true;
}

// A field may hold fewer bones than there are names (it then takes only
// its own share) or more (the extra bones have no name).
void KaAMCField::setBoneNamesPtr(const KtArray<KtStr>* names)
{
    int named = names ? std::min(names->count(), _bones.count()) : 0;
    for (int i = 0; i < _bones.count(); ++i)
        _bones[i].setName(i < named ? &(*names)[i] : nullptr);
    _boneNames = names;
}

void KaAMCField::setNumBones(int n)
{
    _bones._resize(n);
}

void KaAMCField::setBones(const KtArray<KaAMCBone>& bones)
{
    _bones = bones;
}

void KaAMCField::setBones(const KtList<KaAMCBone>& bones)
{
    _bones._resize(bones.count());
    int i = 0;
    for (const KaAMCBone& bone : bones)
        _bones[i++] = bone;
}

// ---- KaAMC ---------------------------------------------------------------

KaAMC::KaAMC(const KaAMC& other)
    : _mode(other._mode)
    , _units(other._units)
    , _boneNames(other._boneNames)
    , _fields(other._fields)
    , _lineMismatch(other._lineMismatch)
{
    if (_boneNames.count() > 0)
        _pointFieldsAtNames();
}

KaAMC& KaAMC::operator=(const KaAMC& other)
{
    if (this != &other)
    {
        _mode = other._mode;
        _units = other._units;
        _boneNames = other._boneNames;
        _fields = other._fields;
        _lineMismatch = other._lineMismatch;
        if (_boneNames.count() > 0)
            _pointFieldsAtNames();
    }
    return *this;
}

// The names' storage moves with them, so the bones keep their names; only
// the fields' pointer to the list itself must follow.
KaAMC::KaAMC(KaAMC&& other) noexcept
    : _mode(other._mode)
    , _units(other._units)
    , _boneNames(std::move(other._boneNames))
    , _fields(std::move(other._fields))
    , _lineMismatch(other._lineMismatch)
{
    for (KaAMCField& field : _fields)
        if (field._boneNames == &other._boneNames)
            field._boneNames = &_boneNames;
}

KaAMC& KaAMC::operator=(KaAMC&& other) noexcept
{
    if (this != &other)
    {
        _mode = other._mode;
        _units = other._units;
        _boneNames = std::move(other._boneNames);
        _fields = std::move(other._fields);
        _lineMismatch = other._lineMismatch;
        other._clear();
        for (KaAMCField& field : _fields)
            if (field._boneNames == &other._boneNames)
                field._boneNames = &_boneNames;
    }
    return *this;
}

void KaAMC::_clear()
{
    _boneNames._clear();
    _fields._clear();
    _lineMismatch = KaAMCLineMismatch();
}

void KaAMC::_pointFieldsAtNames()
{
    for (KaAMCField& field : _fields)
        field.setBoneNamesPtr(&_boneNames);
}

// The old names are gone, so every field is re-pointed, even to an empty
// list: no bone may keep a name that no longer exists.
void KaAMC::setBoneNames(const KtArray<KtStr>& names)
{
    _boneNames = names;
    _lineMismatch = KaAMCLineMismatch();
    _pointFieldsAtNames();
}

void KaAMC::setBoneNames(const KtList<KtStr>& names)
{
    _boneNames._resize(names.count());
    _lineMismatch = KaAMCLineMismatch();
    int i = 0;
    for (const KtStr& name : names)
        _boneNames[i++] = name;
    _pointFieldsAtNames();
}

// Without names of its own the motion leaves the copied bones' names as
// they were.
void KaAMC::setFields(const KtArray<KaAMCField>& fields)
{
    _fields = fields;
    _lineMismatch = KaAMCLineMismatch();
    if (_boneNames.count() > 0)
        _pointFieldsAtNames();
}

// The fields grow by exactly one, as a builder appends frame by frame.
KaAMCField* KaAMC::createField(int frameNumber)
{
    _fields._resize(_fields.count() + 1);
    KaAMCField& field = _fields[_fields.count() - 1];
    field.setFrameNumber(frameNumber);
    field.setNumBones(_boneNames.count());
    field.setBoneNamesPtr(&_boneNames);
    return &field;
}

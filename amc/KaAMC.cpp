// The motion model: its tables, the views into them, and building.
#include "amc/KaAMC.h"

#include <strings.h>

// ---- KaAMCField ----------------------------------------------------------

int KaAMCField::frameNumber() const
{
    return _motion->_fields[_index].frameNumber;
}

int KaAMCField::numBones() const
{
    return _motion->_firstBone(_index + 1) - _motion->_firstBone(_index);
}

KaAMCBone KaAMCField::bone(int i) const
{
    const KaAMC& m = *_motion;
    const int line = m._firstBone(_index) + i;
    const int start = m._valuesStart(line);
    return KaAMCBone(i < m._boneNames.count() ? m._boneNames[i] : nullptr,
                     m._values.data() + start,
                     m._valueEnds[line] - start);
}

// The names are walked in order, not looked up one by one.
int KaAMCField::findBone(const char* name) const
{
    if (!name)
        return -1;
    int i = 0;
    const int bones = numBones();
    for (const char* candidate : _motion->_boneNames)
    {
        if (i >= bones)
            break;
        if (strcasecmp(candidate, name) == 0)
            return i;
        ++i;
    }
    return -1;
}

// ---- KaAMC ---------------------------------------------------------------

// The field past the last one starts after the last line.
int KaAMC::_firstBone(int field) const
{
    return field < _fields.count() ? _fields[field].firstBone
                                   : _valueEnds.count();
}

int KaAMC::_valuesStart(int bone) const
{
    return bone > 0 ? _valueEnds[bone - 1] : 0;
}

void KaAMC::_clear()
{
    _boneNames.clear();
    _fields.clear();
    _valueEnds.clear();
    _values.clear();
    _lineMismatch = KaAMCLineMismatch();
}

void KaAMC::setBoneNames(const KtNameList& names)
{
    _boneNames = names;
    _lineMismatch = KaAMCLineMismatch();
}

void KaAMC::appendField(int frameNumber)
{
    _fields.append({frameNumber, _valueEnds.count()});
}

void KaAMC::appendBone(const float* values, int count)
{
    if (count > 0)
        _values.append(values, count);
    _valueEnds.append(_values.count());
}

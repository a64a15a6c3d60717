// The motion model: its tables, the views into them, and building.
#include "amc/KaAMC.h"

#include <strings.h>

// ---- KaAMCBone -----------------------------------------------------------

const char* KaAMCBone::name() const
{
    return _names && _position < _names->count() ? (*_names)[_position]
                                                 : nullptr;
}

// ---- KaAMCField ----------------------------------------------------------

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

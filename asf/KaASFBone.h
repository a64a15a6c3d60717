// KaASFBone: one bone of a skeleton, its rest geometry and its channels.
#pragma once

#include <iosfwd>

#include "asf/KaASFDOF.h"
#include "geometry/KtPoint.h"
#include "toolkit/KtArray.h"
#include "toolkit/KtStr.h"

class KaASFBone
{
public:
    KaASFBone();

    // 0 means not given; the reader gives every bone an id at the end.
    int id() const { return _id; }
    void setId(int id) { _id = id; }

    const KtStr& name() const { return _name; }
    void setName(const char* name) { _name = name; }

    // Null for a bone attached to the root. The bones of a skeleton are
    // owned by its KaASF; these pointers only link them.
    KaASFBone* parent() const { return _parent; }
    void setParent(KaASFBone* parent) { _parent = parent; }
    KaASFBone* firstChild() const { return _firstChild; }
    void setFirstChild(KaASFBone* child) { _firstChild = child; }

    // In world axes as written in the file; not normalised.
    const KtPoint& direction() const { return _direction; }
    void setDirection(const KtPoint& direction) { _direction = direction; }

    // Already divided by the skeleton's length unit.
    float length() const { return _length; }
    void setLength(float length) { _length = length; }

    // Local axis orientation angles indexed by axis (x, y, z), in radians,
    // and their axis order (codes 1 X, 2 Y, 3 Z).
    const KtPoint& axis() const { return _axis; }
    void setAxis(const KtPoint& angles) { _axis = angles; }
    const KtArray<int>& axisOrder() const { return _axisOrder; }
    void setAxisOrder(const KtArray<int>& order) { _axisOrder = order; }
    bool _axisOrientOrderValid() const;

    float bodyMass() const { return _bodyMass; }
    void setBodyMass(float mass) { _bodyMass = mass; }
    float cofMass() const { return _cofMass; }
    void setCofMass(float value) { _cofMass = value; }

    const KaASFDOFGroup& dofGroup() const { return _dofGroup; }
    KaASFDOFGroup& dofGroup() { return _dofGroup; }

    // The bone block of a skeleton file; degrees converts angles.
    void printOn(std::ostream& out, int degrees) const;

private:
    int _id = 0;
    KtStr _name;
    KaASFBone* _parent = nullptr;
    KaASFBone* _firstChild = nullptr;
    KtPoint _direction;
    float _length = 0.0f;
    // Held in the bone: a skeleton may have many bones.
    KtPoint _axis;
    KtArray<int> _axisOrder;
    float _bodyMass = 0.0f;
    float _cofMass = 0.0f;
    KaASFDOFGroup _dofGroup;
};

// Degrees of freedom of a skeleton: their codes, limits and named groups.
#pragma once

#include <iosfwd>

#include "toolkit/KtArray.h"
#include "toolkit/KtGrowArray.h"
#include "toolkit/KtStr.h"

// DOF codes. Input names are matched ignoring case ("TX" ... "L"); names are
// written in lower case.
enum KaDOFCode : int
{
    kDofInvalid = -1,
    kDofTX = 1, // translation along x
    kDofTY = 2,
    kDofTZ = 3,
    kDofRX = 4, // rotation about x
    kDofRY = 5,
    kDofRZ = 6,
    kDofL = 7 // length
};

// The code of a DOF name, kDofInvalid for anything else.
int KaDOFCodeOfName(const char* name);
// "tx" ... "l"; for any other code writes "Invalid dof value '<code>'" to
// standard error and returns the empty string.
KtStr KaDOFNameOfCode(int code);
inline bool KaIsTranslationDOF(int code)
{
    return code >= kDofTX && code <= kDofTZ;
}
inline bool KaIsRotationDOF(int code)
{
    return code >= kDofRX && code <= kDofRZ;
}

// One lower/upper pair. Infinity is the largest finite float with its sign;
// rotation limits are held in radians.
struct KaASFLimits
{
    static constexpr float kInfinity = 3.4028235e38f;

    float lower = -kInfinity;
    float upper = kInfinity;

    // Writes "(lower upper)\n"; degrees converts both values from radians.
    void printOn(std::ostream& out, int degrees) const;
};

class KaASFDOFGroup;

// One DOF. A DOF that refers to a group takes its limits from that group's
// DOF of the same code; its own limits are then unused.
class KaASFDOF
{
public:
    explicit KaASFDOF(int code = kDofInvalid, KaASFDOFGroup* group = nullptr);

    int code() const { return _code; }
    KaASFDOFGroup* group() const { return _group; }
    void setGroup(KaASFDOFGroup* group) { _group = group; }
    bool isRotation() const { return KaIsRotationDOF(_code); }

    const KaASFLimits& limits() const;
    const KaASFLimits& ownLimits() const { return _limits; }
    void setLimits(const KaASFLimits& limits) { _limits = limits; }

private:
    KaASFDOFGroup* _group;
    int _code;
    KaASFLimits _limits;
};

// A named, ordered list of DOFs; it holds its DOFs. Bones and the root each
// have one (their channels); internal files also define shared named groups
// that bone DOFs may refer to.
class KaASFDOFGroup
{
public:
    KaASFDOFGroup() = default;
    explicit KaASFDOFGroup(const char* name);
    KaASFDOFGroup(const KaASFDOFGroup& other);
    KaASFDOFGroup& operator=(const KaASFDOFGroup& other);
    ~KaASFDOFGroup();

    const KtStr& name() const { return _name; }
    void setName(const char* name) { _name = name; }

    // In order, as pointers to the group's own DOFs; they stay valid until
    // the group's DOFs next change.
    KtPointerRange<const KaASFDOF> dofs() const
    {
        return {_dofs.data(), _dofs.count()};
    }
    KtPointerRange<KaASFDOF> dofs() { return {_dofs.data(), _dofs.count()}; }
    int numDOFs() const { return _dofs.count(); }
    // The DOF codes in order, for loops that should not walk the list.
    KtArray<int> codes() const;
    bool hasDOF(int code) const;
    // Zero-based position of the first DOF with the code, -1 if none.
    int dofIndex(int code) const;
    // Limits of the first DOF with the code (following its group reference);
    // null when the group has no such DOF.
    const KaASFLimits* limits(int code) const;
    KaASFLimits* limits(int code);

    void addDOF(int code);
    void addDOF(const KtDArray<int>& codes);
    // Appends a copy of a DOF (with its group reference and own limits).
    void addDOF(const KaASFDOF& dof);
    void setDOFs(const KtDArray<int>& codes);
    void setDOFs(KtPointerRange<const KaASFDOF> dofs);
    void clearDOFs();

    bool usesDOFGroup(const char* name) const;
    bool hasGroupDOFs() const;
    bool hasNonGroupDOFs() const;

    // The group block of a skeleton file.
    void printOn(std::ostream& out, int degrees) const;

private:
    KtStr _name;
    // Held in one block: a skeleton has many small lists of DOFs.
    KtGrowArray<KaASFDOF> _dofs;
};

// Whether any DOF of the group is tx, ty or tz: such a body has position
// channels.
bool hasTranslationDOF(const KaASFDOFGroup& dofs);

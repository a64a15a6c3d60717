// DOF codes and names, a DOF's limits and the named groups of DOFs.
#include "asf/KaASFDOF.h"

#include <iostream>
#include <utility>

namespace
{

struct DOFName
{
    int code;
    const char* name; // as written; input is matched ignoring case
};

constexpr DOFName kDOFNames[] = {{kDofTX, "tx"},
                                 {kDofTY, "ty"},
                                 {kDofTZ, "tz"},
                                 {kDofRX, "rx"},
                                 {kDofRY, "ry"},
                                 {kDofRZ, "rz"},
                                 {kDofL, "l"}};

// The DOF whose limits a group reference stands for: the first DOF of the
// referenced group with the same code. Null without a reference or when the
// group has no such DOF.
const KaASFDOF* referencedDOF(const KaASFDOF* dof)
{
    if (!dof || !dof->group())
        return nullptr;
    for (const KaASFDOF* candidate : dof->group()->dofs())
        if (candidate->code() == dof->code())
            return candidate;
    return nullptr;
}

} // namespace

int KaDOFCodeOfName(const char* name)
{
    KtStr text(name);
    for (const DOFName& entry : kDOFNames)
        if (text.iCmp(entry.name) == 0)
            return entry.code;
    return kDofInvalid;
}

KtStr KaDOFNameOfCode(int code)
{
    for (const DOFName& entry : kDOFNames)
        if (entry.code == code)
            return entry.name;
    std::cerr << "Invalid dof value '" << code << "'\n";
    return KtStr();
}

KaASFDOF::KaASFDOF(int code, KaASFDOFGroup* group)
    : _group(group)
    , _code(code)
{
}

// Group references may chain (a group's DOF may itself refer to an earlier
// group), so the chain is followed to its end without recursion. A chain
// that runs in a circle - only a program can build one - gives the DOF's own
// limits.
const KaASFLimits& KaASFDOF::limits() const
{
    const KaASFDOF* slow = this;
    const KaASFDOF* fast = this;
    while ((fast = referencedDOF(fast)) && (fast = referencedDOF(fast)))
    {
        slow = referencedDOF(slow);
        if (slow == fast)
            return _limits;
    }
    const KaASFDOF* owner = this;
    while (const KaASFDOF* next = referencedDOF(owner))
        owner = next;
    return owner->_limits;
}

KaASFDOFGroup::KaASFDOFGroup(const char* name)
    : _name(name)
{
}

KaASFDOFGroup::KaASFDOFGroup(const KaASFDOFGroup& other)
    : _name(other._name)
    , _dofs(other._dofs)
{
}

KaASFDOFGroup& KaASFDOFGroup::operator=(const KaASFDOFGroup& other)
{
    if (this != &other)
    {
        _name = other._name;
        _dofs = other._dofs;
    }
    return *this;
}

KaASFDOFGroup::~KaASFDOFGroup()
{
    clearDOFs();
}

KtArray<int> KaASFDOFGroup::codes() const
{
    KtArray<int> result(numDOFs());
    int i = 0;
    for (const KaASFDOF* dof : dofs())
        result[i++] = dof->code();
    return result;
}

bool KaASFDOFGroup::hasDOF(int code) const
{
    return dofIndex(code) >= 0;
}

int KaASFDOFGroup::dofIndex(int code) const
{
    int index = 0;
    for (const KaASFDOF* dof : dofs())
    {
        if (dof->code() == code)
            return index;
        ++index;
    }
    return -1;
}

const KaASFLimits* KaASFDOFGroup::limits(int code) const
{
    for (const KaASFDOF* dof : dofs())
        if (dof->code() == code)
            return &dof->limits();
    return nullptr;
}

// The DOFs are owned by groups and never const themselves, so handing out a
// writable pointer to the limits found is sound.
KaASFLimits* KaASFDOFGroup::limits(int code)
{
    const KaASFDOFGroup* self = this;
    return const_cast<KaASFLimits*>(self->limits(code));
}

void KaASFDOFGroup::addDOF(int code)
{
    _dofs.append(KaASFDOF(code));
}

void KaASFDOFGroup::addDOF(const KtDArray<int>& codes)
{
    for (int code : codes)
        addDOF(code);
}

void KaASFDOFGroup::addDOF(const KaASFDOF& dof)
{
    _dofs.append(dof);
}

void KaASFDOFGroup::setDOFs(const KtDArray<int>& codes)
{
    clearDOFs();
    addDOF(codes);
}

// The copies are made before the old DOFs go, so the source may be this
// group's own list.
void KaASFDOFGroup::setDOFs(KtPointerRange<const KaASFDOF> dofs)
{
    KtGrowArray<KaASFDOF> copies;
    for (const KaASFDOF* dof : dofs)
        copies.append(*dof);
    _dofs = std::move(copies);
}

void KaASFDOFGroup::clearDOFs()
{
    _dofs.clear();
}

bool KaASFDOFGroup::usesDOFGroup(const char* name) const
{
    for (const KaASFDOF* dof : dofs())
        if (dof->group() && dof->group()->name() == name)
            return true;
    return false;
}

bool KaASFDOFGroup::hasGroupDOFs() const
{
    for (const KaASFDOF* dof : dofs())
        if (dof->group())
            return true;
    return false;
}

bool KaASFDOFGroup::hasNonGroupDOFs() const
{
    for (const KaASFDOF* dof : dofs())
        if (!dof->group())
            return true;
    return false;
}

bool hasTranslationDOF(const KaASFDOFGroup& dofs)
{
    for (const KaASFDOF* dof : dofs.dofs())
        if (KaIsTranslationDOF(dof->code()))
            return true;
    return false;
}

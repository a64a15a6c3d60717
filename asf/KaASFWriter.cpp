// Writing skeleton files: the text of the header, DOF groups, limits, root
// and bones, the whole document, saving it, and the bone-list dump.
#include <ostream>
#include <unordered_map>
#include <vector>

#include "asf/KaASF.h"
#include "asf/KaAxisOrder.h"
#include "geometry/KtAngles.h"
#include "toolkit/KtCompStream.h"
#include "toolkit/KtError.h"

namespace
{

// Decimals of the fixed formats: the version and the mass factor, limits;
// lengths and angles.
constexpr int kShortDecimals = 2;
constexpr int kLongDecimals = 4;
// Further limit pairs line up under the first one, after "    limits ".
constexpr const char* kLimitsIndent = "           ";

// One number in fixed notation with the given decimals. Angles are held in
// radians and written in degrees when the skeleton was given in degrees.
struct Fixed
{
    double value;
    int decimals;
};

Fixed asFixed(double value, int decimals, bool toDegrees = false)
{
    return {toDegrees ? value * 180.0 / kKtPi : value, decimals};
}

// The fixed format holds for this one value: the stream's own format and
// precision are back afterwards, so plain numbers keep the default format.
std::ostream& operator<<(std::ostream& out, const Fixed& number)
{
    const std::ios_base::fmtflags flags = out.flags();
    const std::streamsize precision = out.precision();
    out.setf(std::ios_base::fixed, std::ios_base::floatfield);
    out.precision(number.decimals);
    out << number.value;
    out.flags(flags);
    out.precision(precision);
    return out;
}

// Records the message when the stream has failed; true then.
bool failed(const std::ostream& out, const char* message)
{
    if (!out.fail())
        return false;
    KtError("%s", message);
    return true;
}

// Records the message on top of a pending error; true then.
bool errorPending(const char* message)
{
    if (!theExceptObj.errorOccurred())
        return false;
    KtError("%s", message);
    return true;
}

// Positions and directions use the stream's default format.
void writePoint(std::ostream& out, const KtPoint& point)
{
    out << point[0] << ' ' << point[1] << ' ' << point[2];
}

void writeAngles(std::ostream& out, const KtPoint& angles, bool degrees)
{
    const char* separator = "";
    for (int axis = 0; axis < 3; ++axis)
    {
        out << separator << asFixed(angles[axis], kLongDecimals, degrees);
        separator = " ";
    }
}

void writeAngles(std::ostream& out, const KtArray<float>& angles, bool degrees)
{
    const char* separator = "";
    for (float angle : angles)
    {
        out << separator << asFixed(angle, kLongDecimals, degrees);
        separator = " ";
    }
}

// Three codes of X, Y or Z, as the reader makes them.
bool isAxisOrder(const KtArray<int>& order)
{
    if (order.count() != 3)
        return false;
    for (int code : order)
        if (code < 1 || code > 3)
            return false;
    return true;
}

// "xyz": the letters without separators.
void writeAxisOrder(std::ostream& out, const KtArray<int>& order)
{
    for (int code : order)
        out << KaAxisName(code);
}

// Whether the DOFs [first, end) are exactly the group's own list, in its
// order, so that the group's name alone stands for them.
bool isWholeGroup(const std::vector<const KaASFDOF*>& dofs,
                  size_t first,
                  size_t end,
                  const KaASFDOFGroup& group)
{
    if (end - first != static_cast<size_t>(group.numDOFs()))
        return false;
    size_t index = first;
    for (const KaASFDOF* member : group.dofs())
        if (dofs[index++]->code() != member->code())
            return false;
    return true;
}

// Each DOF with limits of its own is " rx" and so on. A run of consecutive
// DOFs that refer to one group is " hand" when the run is the whole group,
// else " hand<rx ry>", which reads back to the same list.
void writeDOFList(std::ostream& out, const KaASFDOFGroup& list)
{
    std::vector<const KaASFDOF*> dofs;
    for (const KaASFDOF* dof : list.dofs())
        dofs.push_back(dof);
    size_t first = 0;
    while (first < dofs.size())
    {
        const KaASFDOFGroup* group = dofs[first]->group();
        if (!group)
        {
            out << ' ' << KaDOFNameOfCode(dofs[first++]->code());
            continue;
        }
        size_t end = first;
        while (end < dofs.size() && dofs[end]->group() == group)
            ++end;
        out << ' ' << group->name();
        if (!isWholeGroup(dofs, first, end, *group))
        {
            out << '<';
            for (size_t i = first; i < end; ++i)
                out << (i == first ? "" : " ")
                    << KaDOFNameOfCode(dofs[i]->code());
            out << '>';
        }
        first = end;
    }
}

// One pair per DOF with limits of its own, after the "limits" keyword: the
// reader hands the pairs to those DOFs in order and skips the DOFs that
// refer to a group. Only rotation limits are converted to degrees.
void writeOwnLimits(std::ostream& out, const KaASFDOFGroup& list, bool degrees)
{
    out << "    limits";
    const char* separator = " ";
    for (const KaASFDOF* dof : list.dofs())
    {
        if (dof->group())
            continue;
        out << separator;
        dof->ownLimits().printOn(out, degrees && dof->isRotation());
        separator = kLimitsIndent;
    }
}

// Only the exact largest float is infinite: a limit converted from degrees
// when it was read is no longer that value and is written as a number.
void writeLimit(std::ostream& out, float value, bool degrees)
{
    if (value == -KaASFLimits::kInfinity)
        out << "-inf";
    else if (value == KaASFLimits::kInfinity)
        out << "inf";
    else
        out << asFixed(value, kShortDecimals, degrees);
}

// "    root a b\n" and one line per bone with children, "    a c d \n", both
// in bone-list order. The children are gathered in one pass so that large
// skeletons take time in proportion to their bones.
void writeHierarchy(std::ostream& out, const KtGrowArray<KaASFBone*>& bones)
{
    std::unordered_map<const KaASFBone*, std::vector<const KaASFBone*>>
        children;
    for (const KaASFBone* bone : bones)
        children[bone->parent()].push_back(bone);
    out << ":hierarchy\n"
        << "  begin\n"
        << "    root";
    for (const KaASFBone* child : children[nullptr])
        out << ' ' << child->name();
    out << '\n';
    for (const KaASFBone* bone : bones)
    {
        auto found = children.find(bone);
        if (found == children.end())
            continue;
        out << "    " << bone->name() << ' ';
        for (const KaASFBone* child : found->second)
            out << child->name() << ' ';
        out << '\n';
    }
    out << "  end\n";
}

} // namespace

// The mass factor has two decimals and the length factor the default format.
void KaASFHeader::printOn(std::ostream& out) const
{
    if (asfInternal)
        out << ":asf-internal\n";
    out << ":version " << asFixed(version, kShortDecimals) << '\n';
    if (failed(out, "Unable to write version."))
        return;
    out << ":name " << name << '\n';
    if (failed(out, "Unable to write skeleton name."))
        return;
    out << ":units\n";
    if (failed(out, "Unable to write units."))
        return;
    out << (angleUnit == 1 ? "  angle deg\n" : "  angle rad\n");
    if (failed(out, "Unable to write angle units."))
        return;
    out << "  mass " << asFixed(massFactor, kShortDecimals) << '\n';
    if (failed(out, "Unable to write mass conversion factor."))
        return;
    out << "  length " << lengthFactor << '\n';
    if (failed(out, "Unable to write length conversion factor."))
        return;
    if (documentation.length() == 0)
        return;
    out << ":documentation\n" << documentation << '\n';
    failed(out, "Unable to write documentation section.");
}

void KaASFLimits::printOn(std::ostream& out, int degrees) const
{
    out << '(';
    writeLimit(out, lower, degrees);
    out << ' ';
    writeLimit(out, upper, degrees);
    out << ")\n";
}

// The DOF list follows "dof " here, so its own leading blank makes two.
void KaASFDOFGroup::printOn(std::ostream& out, int degrees) const
{
    out << "  begin\n"
        << "    name " << _name << '\n'
        << "    dof ";
    writeDOFList(out, *this);
    out << '\n';
    if (hasNonGroupDOFs())
        writeOwnLimits(out, *this, degrees);
    out << "  end\n";
}

// Without DOFs "  order" has no line end of its own, so the position follows
// on the same line; the reader takes "position" as the end of the empty list.
void KaASFRoot::printOn(std::ostream& out, int degrees) const
{
    out << ":root\n";
    // A root that was never given an axis order (a file without a :root
    // section) has no word to write; without the line it reads back the
    // same, where an empty one could not be read at all.
    if (isAxisOrder(_axisOrder))
    {
        out << "  axis ";
        writeAxisOrder(out, _axisOrder);
        out << '\n';
    }
    out << "  order";
    if (_dofGroup.numDOFs() > 0)
    {
        writeDOFList(out, _dofGroup);
        out << '\n';
    }
    out << "  position ";
    writePoint(out, _position);
    out << '\n' << "  orientation ";
    writeAngles(out, _orientation, degrees);
    out << '\n';
    failed(out, "Unable to write root.");
}

// The length is written as held, already divided by the length unit, so a
// skeleton whose length unit is not 1 reads back with shorter bones; body
// mass and centre of mass are not written.
void KaASFBone::printOn(std::ostream& out, int degrees) const
{
    out << "  begin\n";
    if (_id > 0)
        out << "    id " << _id << '\n';
    out << "    name " << _name << '\n' << "    direction ";
    writePoint(out, _direction);
    out << '\n'
        << "    length " << asFixed(_length, kLongDecimals) << '\n'
        << "    axis ";
    writeAngles(out, _axis, degrees);
    out << ' ';
    writeAxisOrder(out, _axisOrder);
    out << '\n';
    if (_dofGroup.numDOFs() > 0)
    {
        out << "    dof";
        writeDOFList(out, _dofGroup);
        out << '\n';
        if (_dofGroup.hasNonGroupDOFs())
            writeOwnLimits(out, _dofGroup, degrees);
    }
    out << "  end\n";
}

// A stream that fails while a bone is written stops the bones with "Unable
// to write bone."; a failure in the DOF groups shows at the root, the next
// part that checks. The hierarchy and skin names are not checked here: save
// tests the stream once the whole text is written.
void KaASF::printOn(std::ostream& out) const
{
    const int degrees = _header.angleUnit == 1;
    _header.printOn(out);
    if (errorPending("Unable to write header info."))
        return;
    if (_dofGroups.count() > 0)
    {
        out << ":dofgroups\n";
        for (const KaASFDOFGroup* group : _dofGroups)
            group->printOn(out, degrees);
    }
    _root.printOn(out, degrees);
    if (errorPending("Unable to write root."))
        return;
    if (_bones.count() > 0)
    {
        out << ":bonedata\n";
        for (const KaASFBone* bone : _bones)
        {
            bone->printOn(out, degrees);
            if (failed(out, "Unable to write bone.") ||
                errorPending("Unable to write bone."))
                return;
        }
    }
    writeHierarchy(out, _bones);
    for (const char* skin : _skinFiles)
        out << ":skin " << skin << '\n';
}

void KaASF::save(const char* path) const
{
    KtSaveDocument(path, [this](std::ostream& out) { printOn(out); });
}

// A debugging aid: each bone with its id and its parent's address, name and
// id.
void KaASF::printBoneListOn(std::ostream& out) const
{
    out << "*** bone list ***\n";
    for (const KaASFBone* bone : _bones)
    {
        const KaASFBone* parent = bone->parent();
        out << "  Bone: " << bone->name() << '\n'
            << "    id: " << bone->id() << '\n'
            << "    parent: ptr = " << static_cast<const void*>(parent);
        if (parent)
            out << " name = " << parent->name() << " id = " << parent->id();
        out << '\n';
    }
    out << "*** end ***\n";
}

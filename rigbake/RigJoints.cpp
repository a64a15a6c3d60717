// The joints of a skeleton's rig, worked out from the standard pose's axis
// frames and bone vectors, and the checks that a rig can be made at all.
#include "rigbake/RigJoints.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numeric>
#include <vector>

#include "asf/KaASF.h"
#include "asf/KaAxisOrder.h"
#include "geometry/KtAngles.h"
#include "geometry/KtEuler3d.h"
#include "pose/StandardPose.h"
#include "toolkit/KtError.h"

namespace
{

// The names that motbake's script attaches its channels to.
constexpr const char* kJointSuffix = "_joint";
constexpr const char* kEndSuffix = "_end";

// A joint orient turns by X first, then Y, then Z.
constexpr int kOrientOrder[3] = {kAxisX, kAxisY, kAxisZ};

// Maya's rotate orders by enum value, each as the axes (0 x, 1 y, 2 z) in
// the order in which they turn the joint.
constexpr int kRotateOrders[6][3] = {
    {0, 1, 2}, {1, 2, 0}, {2, 0, 1}, {0, 2, 1}, {1, 0, 2}, {2, 1, 0}};

// Maya keeps a node name of ASCII letters, digits and underscores that does
// not begin with a digit; any other it changes, and motbake's channels
// would then miss the joint. Such a name also holds nothing that MEL reads
// specially inside a string.
bool canNameNode(const char* name)
{
    if (*name >= '0' && *name <= '9')
        return false;
    const char* c = name;
    for (; *c; ++c)
        if (!((*c >= 'a' && *c <= 'z') || (*c >= 'A' && *c <= 'Z') ||
              (*c >= '0' && *c <= '9') || *c == '_'))
            return false;
    return c != name;
}

// Rotation values reach the joint's rotate attributes in DOF order (the
// motion M of the standard pose); the axes a body lacks never turn, so
// their place in the order does not matter.
int rotateOrderOf(const KaASFDOFGroup& dofs)
{
    int axes[3];
    int numAxes = 0;
    bool listed[3] = {false, false, false};
    for (const KaASFDOF* dof : dofs.dofs())
        if (dof->isRotation() && !listed[dof->code() - kDofRX])
        {
            listed[dof->code() - kDofRX] = true;
            axes[numAxes++] = dof->code() - kDofRX;
        }
    for (int axis = 0; axis < 3; ++axis)
        if (!listed[axis])
            axes[numAxes++] = axis;
    for (int order = 0; order < 6; ++order)
        if (std::equal(axes, axes + 3, kRotateOrders[order]))
            return order;
    return 0;
}

// In degrees, indexed by axis.
KtVec3d orientOf(const KtMat3d& rotation)
{
    return (1.0 / kKtRadiansPerDegree) *
           KtDecomposeRotation3d(rotation, kOrientOrder);
}

} // namespace

// Bodies are numbered as in the standard pose: 0 the root, then the bones
// in bone-list order.
class RigMaker
{
public:
    explicit RigMaker(const KaASF& asf)
        : _asf(asf)
        , _pose(asf)
    {
        _bones.reserve(asf.bones().count());
        for (const KaASFBone* bone : asf.bones())
            _bones.push_back(bone);
    }

    // Posts an error naming the first body that cannot have a joint.
    bool check() const;
    void forEach(const std::function<void(const RigJoint&)>& visit) const;

private:
    bool _checkRoot() const;
    std::vector<bool> _takenNames() const;
    bool _checkBone(int body, bool nameTaken) const;
    RigJoint _rootJoint() const;
    RigJoint _boneJoint(int body, int parentJoint) const;
    RigJoint
    _endJoint(int body, int boneJoint, const std::string& boneJointName) const;
    std::string _jointName(int body) const;

    const KaASF& _asf;
    const StandardPose _pose;
    std::vector<const KaASFBone*> _bones; // body - 1
};

bool RigMaker::check() const
{
    if (!_checkRoot())
        return false;
    const std::vector<bool> taken = _takenNames();
    for (int body = StandardPose::kRoot + 1; body < _pose.count(); ++body)
        if (!_checkBone(body, taken[body - 1]))
            return false;
    return true;
}

// By bone: whether root_joint or an earlier bone's joint has the name of the
// bone's joint. Sorted indices, not a set of names, so that the check costs
// a few bytes a bone.
std::vector<bool> RigMaker::_takenNames() const
{
    auto name = [this](int bone) { return _bones[bone]->name().text(); };
    std::vector<int> byName(_bones.size());
    std::iota(byName.begin(), byName.end(), 0);
    std::stable_sort(byName.begin(),
                     byName.end(),
                     [&](int a, int b)
                     { return std::strcmp(name(a), name(b)) < 0; });
    std::vector<bool> taken(_bones.size());
    for (size_t i = 0; i < byName.size(); ++i)
        taken[byName[i]] =
            std::strcmp(name(byName[i]), kKaRootName) == 0 ||
            (i > 0 && std::strcmp(name(byName[i - 1]), name(byName[i])) == 0);
    return taken;
}

bool RigMaker::_checkRoot() const
{
    if (!KtIsFinite(_pose.rootPosition()))
        KtError("The root's position divided by the length unit is not a "
                "finite number.");
    else if (!KtIsFinite(_pose.axisFrame(StandardPose::kRoot)))
        KtError("The root's orientation is not a finite number.");
    else
        return true;
    return false;
}

bool RigMaker::_checkBone(int body, bool nameTaken) const
{
    const char* name = _bones[body - 1]->name();
    if (!canNameNode(name))
        KtError("Bone \"%s\": its name cannot name a Maya joint (letters, "
                "digits and underscores only, not a digit first).",
                name);
    else if (nameTaken)
        KtError("Bone \"%s\": its joint \"%s\" would have the name of "
                "another joint.",
                name,
                _jointName(body).c_str());
    else if (!KtIsFinite(_pose.boneVector(body)))
        KtError("Bone \"%s\": its direction times its length divided by the "
                "length unit is not a finite number.",
                name);
    else if (!KtIsFinite(_pose.axisFrame(body)))
        KtError("Bone \"%s\": its axis is not a finite number.", name);
    else
        return true;
    return false;
}

// Depth first, so that a chain reads from its start to its end, with an
// explicit stack, so that no hierarchy is too deep for it.
void RigMaker::forEach(const std::function<void(const RigJoint&)>& visit) const
{
    std::vector<std::vector<int>> children(_pose.count());
    for (int body = StandardPose::kRoot + 1; body < _pose.count(); ++body)
        children[_pose.parent(body)].push_back(body);
    std::vector<int> jointOfBody(_pose.count(), -1);
    int numJoints = 0;
    std::vector<int> waiting{StandardPose::kRoot};
    while (!waiting.empty())
    {
        const int body = waiting.back();
        waiting.pop_back();
        jointOfBody[body] = numJoints++;
        const RigJoint joint =
            body == StandardPose::kRoot
                ? _rootJoint()
                : _boneJoint(body, jointOfBody[_pose.parent(body)]);
        visit(joint);
        if (body != StandardPose::kRoot && children[body].empty())
        {
            visit(_endJoint(body, jointOfBody[body], joint.name));
            ++numJoints;
        }
        waiting.insert(
            waiting.end(), children[body].rbegin(), children[body].rend());
    }
}

RigJoint RigMaker::_rootJoint() const
{
    RigJoint joint;
    joint.name = _jointName(StandardPose::kRoot);
    joint.translate = _pose.rootPosition();
    joint.jointOrient = orientOf(_pose.axisFrame(StandardPose::kRoot));
    joint.rotateOrder = rotateOrderOf(_asf.root().dofGroup());
    return joint;
}

RigJoint RigMaker::_boneJoint(int body, int parentJoint) const
{
    const KaASFBone& bone = *_bones[body - 1];
    const int parent = _pose.parent(body);
    const KtMat3d toParent = _pose.axisFrame(parent).transposed();
    RigJoint joint;
    joint.name = _jointName(body);
    joint.parent = parentJoint;
    joint.parentName = _jointName(parent);
    joint.translate = toParent * _pose.boneVector(parent);
    joint.jointOrient = orientOf(toParent * _pose.axisFrame(body));
    joint.rotateOrder = rotateOrderOf(bone.dofGroup());
    return joint;
}

RigJoint RigMaker::_endJoint(int body,
                             int boneJoint,
                             const std::string& boneJointName) const
{
    RigJoint joint;
    joint.name = std::string(_bones[body - 1]->name().text()) + kEndSuffix;
    joint.parent = boneJoint;
    joint.parentName = boneJointName;
    joint.translate =
        _pose.axisFrame(body).transposed() * _pose.boneVector(body);
    joint.isEnd = true;
    return joint;
}

std::string RigMaker::_jointName(int body) const
{
    return (body == StandardPose::kRoot
                ? std::string(kKaRootName)
                : std::string(_bones[body - 1]->name().text())) +
           kJointSuffix;
}

RigJoints::RigJoints(const KaASF& asf)
    : _maker(std::make_unique<const RigMaker>(asf))
{
}

RigJoints::~RigJoints() = default;

bool RigJoints::check() const
{
    return _maker->check();
}

void RigJoints::forEach(const std::function<void(const RigJoint&)>& visit) const
{
    _maker->forEach(visit);
}

// The joints of a skeleton's rig: their names, their hierarchy and the rest
// attributes that make motbake's channels pose them as the standard pose
// does.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "geometry/KtMat3d.h"

class KaASF;

// One joint: root_joint, <bone>_joint, or <bone>_end at the end of a leaf
// bone. Lengths are in the skeleton's length unit (the file's values
// divided by it), which the script declares as inches; angles are degrees.
struct RigJoint
{
    std::string name;
    // The parent joint: its place in the order of the joints and its name;
    // -1 and "" for root_joint.
    int parent = -1;
    std::string parentName;
    KtVec3d translate;
    // Indexed by axis; Maya turns by X first, then Y, then Z.
    KtVec3d jointOrient;
    // Maya's rotate order, named by the axes in the order they turn:
    // 0 xyz, 1 yzx, 2 zxy, 3 xzy, 4 yxz, 5 zyx.
    int rotateOrder = 0;
    // An end joint only marks where its bone ends: its orient and rotate
    // order stay Maya's defaults.
    bool isEnd = false;
};

// Every joint of the skeleton, each after its parent, the children of a
// joint in bone-list order. With C the axis frame and v the bone vector of
// the standard pose (pose/StandardPose.h), and p the parent body:
//   root_joint     translate the root's position, orient C_root,
//                  rotate order that of the root's rotation DOFs;
//   <bone>_joint   translate C_p^-1 . v_p, orient C_p^-1 . C,
//                  rotate order that of the bone's rotation DOFs;
//   <bone>_end     translate C^-1 . v.
// The joints are worked out one at a time as they are visited, never held
// all at once: a rig of a million bones costs no more than its skeleton.
class RigJoints
{
public:
    // The skeleton must outlive the joints.
    explicit RigJoints(const KaASF& asf);
    ~RigJoints();

    // False, with an error naming the body posted, when a bone's name
    // cannot name a Maya node, two bodies would get the same joint name, or
    // a body's geometry is not finite.
    bool check() const;
    // Calls visit with every joint in order; check() first.
    void forEach(const std::function<void(const RigJoint&)>& visit) const;

private:
    std::unique_ptr<const class RigMaker> _maker;
};

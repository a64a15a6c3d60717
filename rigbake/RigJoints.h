// The joints of a skeleton's rig: their names, their hierarchy and the rest
// attributes that make motbake's channels pose them as the standard pose
// does.
#pragma once

#include <string>
#include <vector>

#include "geometry/KtMat3d.h"

class KaASF;

// One joint: root_joint, <bone>_joint, or <bone>_end at the end of a leaf
// bone. Lengths are in the skeleton's length unit (the file's values
// divided by it), which the script declares as inches; angles are degrees.
struct RigJoint
{
    std::string name;
    // Index of the parent joint among the joints; -1 for root_joint.
    int parent = -1;
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
// Returns false, with an error naming the body posted and joints left
// empty, when a bone's name cannot name a Maya node, two bodies would get
// the same joint name, or a body's geometry is not finite.
bool makeRigJoints(const KaASF& asf, std::vector<RigJoint>* joints);

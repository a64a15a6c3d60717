// A BVH reader for the tests: a file's joints and frames, and where BVH's own
// rules put every joint in a frame.
#pragma once

#include <string>
#include <vector>

#include "geometry/KtMat3d.h"

struct BvhJoint
{
    std::string name;
    int parent = -1; // index of the parent joint, -1 for the root
    KtVec3d offset;
    std::vector<std::string> channels;
    bool hasEnd = false;
    KtVec3d endOffset;
};

struct BvhFile
{
    std::vector<BvhJoint> joints; // in file order
    int frames = 0;
    double frameTime = 0.0;
    std::vector<std::vector<double>> values; // one row per frame
};

// Reads the text; a test fails when it is not a well-formed BVH file whose
// every frame is a line of one value per channel.
BvhFile readBVH(const std::string& text);

// Forward kinematics, column vectors: a joint's rotation is the product of
// its rotation channels in the listed order ("Zrotation Yrotation Xrotation"
// is Rz . Ry . Rx); its place is its parent's plus the parent's rotation
// times OFFSET plus its position channels. The root's position channels give
// its place outright (OFFSET is its rest place), and an End Site stands at
// its OFFSET from the joint.
struct BvhPose
{
    std::vector<KtVec3d> joints;
    std::vector<KtVec3d> ends; // by joint; zero for joints without an end
};
BvhPose poseBVH(const BvhFile& file, int frame);

// A BVH reader for the tests, and BVH forward kinematics.
#include "support/bvh_reader.h"

#include <sstream>

#include <gtest/gtest.h>

#include "geometry/KtAngles.h"
#include "geometry/KtEuler3d.h"

namespace
{

KtVec3d readVector(std::istream& in)
{
    KtVec3d v;
    in >> v[0] >> v[1] >> v[2];
    return v;
}

// "OFFSET x y z", then "CHANNELS n ..." for a joint.
void readJointBody(std::istream& in, BvhJoint& joint, bool isEnd)
{
    std::string word;
    in >> word;
    EXPECT_EQ("{", word);
    in >> word;
    EXPECT_EQ("OFFSET", word);
    (isEnd ? joint.endOffset : joint.offset) = readVector(in);
    if (isEnd)
        return;
    int count = 0;
    in >> word >> count;
    EXPECT_EQ("CHANNELS", word);
    joint.channels.resize(count);
    for (std::string& channel : joint.channels)
        in >> channel;
}

} // namespace

BvhFile readBVH(const std::string& text)
{
    BvhFile file;
    std::istringstream in(text);
    std::string word;
    in >> word;
    EXPECT_EQ("HIERARCHY", word);
    std::vector<int> open; // joints whose block is open
    int openEnds = 0;
    while (in >> word && word != "MOTION")
    {
        if (word == "ROOT" || word == "JOINT")
        {
            BvhJoint joint;
            in >> joint.name;
            joint.parent = open.empty() ? -1 : open.back();
            readJointBody(in, joint, false);
            open.push_back(static_cast<int>(file.joints.size()));
            file.joints.push_back(joint);
        }
        else if (word == "End" && (in >> word) && word == "Site")
        {
            file.joints[open.back()].hasEnd = true;
            readJointBody(in, file.joints[open.back()], true);
            ++openEnds;
        }
        else if (word == "}" && openEnds > 0)
            --openEnds;
        else if (word == "}")
            open.pop_back();
        else
            ADD_FAILURE() << "unexpected " << word;
    }
    EXPECT_TRUE(open.empty());
    in >> word >> file.frames;
    EXPECT_EQ("Frames:", word);
    std::string time;
    in >> word >> time >> file.frameTime;
    EXPECT_EQ("Frame Time:", word + " " + time);
    size_t channels = 0;
    for (const BvhJoint& joint : file.joints)
        channels += joint.channels.size();
    std::string line;
    std::getline(in, line);
    while (std::getline(in, line))
    {
        std::istringstream values(line);
        file.values.emplace_back();
        for (double value; values >> value;)
            file.values.back().push_back(value);
        EXPECT_TRUE(values.eof()) << line;
        EXPECT_EQ(channels, file.values.back().size()) << line;
    }
    EXPECT_EQ(file.frames, static_cast<int>(file.values.size()));
    return file;
}

BvhPose poseBVH(const BvhFile& file, int frame)
{
    const size_t count = file.joints.size();
    BvhPose pose;
    pose.joints.resize(count);
    pose.ends.resize(count);
    std::vector<KtMat3d> world(count);
    const double* value = file.values[frame].data();
    for (size_t j = 0; j < count; ++j)
    {
        const BvhJoint& joint = file.joints[j];
        KtMat3d rotation;
        KtVec3d position;
        bool positioned = false;
        for (const std::string& channel : joint.channels)
        {
            const int axis = channel[0] - 'X' + 1;
            if (channel.substr(1) == "rotation")
                rotation = rotation *
                           KtAxisRotation3d(axis, *value * kKtRadiansPerDegree);
            else
            {
                position[axis - 1] = *value;
                positioned = true;
            }
            ++value;
        }
        if (joint.parent < 0)
        {
            pose.joints[j] = positioned ? position : joint.offset;
            world[j] = rotation;
        }
        else
        {
            const KtMat3d& parent = world[joint.parent];
            pose.joints[j] =
                pose.joints[joint.parent] + parent * (joint.offset + position);
            world[j] = parent * rotation;
        }
        pose.ends[j] = pose.joints[j] + world[j] * joint.endOffset;
    }
    return pose;
}

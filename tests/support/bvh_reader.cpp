// A BVH reader for the tests, and BVH forward kinematics.
#include "support/bvh_reader.h"

#include <sstream>

#include <gtest/gtest.h>

#include "geometry/KtAngles.h"
#include "geometry/KtEuler3d.h"

namespace
{

void expectWords(std::istream& in, std::initializer_list<const char*> words)
{
    for (const char* expected : words)
    {
        std::string word;
        in >> word;
        EXPECT_EQ(expected, word);
    }
}

KtVec3d readOffset(std::istream& in)
{
    expectWords(in, {"{", "OFFSET"});
    KtVec3d v;
    in >> v[0] >> v[1] >> v[2];
    return v;
}

} // namespace

BvhFile readBVH(const std::string& text)
{
    BvhFile file;
    std::istringstream in(text);
    expectWords(in, {"HIERARCHY"});
    std::vector<int> open; // the joint of each open block, -1 for an end's
    std::string word;
    while (in >> word && word != "MOTION")
        if (word == "ROOT" || word == "JOINT")
        {
            BvhJoint joint;
            in >> joint.name;
            joint.parent = open.empty() ? -1 : open.back();
            joint.offset = readOffset(in);
            size_t count = 0;
            expectWords(in, {"CHANNELS"});
            in >> count;
            joint.channels.resize(count);
            for (std::string& channel : joint.channels)
                in >> channel;
            open.push_back(static_cast<int>(file.joints.size()));
            file.joints.push_back(joint);
        }
        else if (word == "End" && !open.empty() && open.back() >= 0)
        {
            expectWords(in, {"Site"});
            file.joints[open.back()].hasEnd = true;
            file.joints[open.back()].endOffset = readOffset(in);
            open.push_back(-1);
        }
        else if (word == "}" && !open.empty())
            open.pop_back();
        else
            ADD_FAILURE() << "unexpected " << word;
    EXPECT_TRUE(open.empty());
    expectWords(in, {"Frames:"});
    in >> file.frames;
    expectWords(in, {"Frame", "Time:"});
    in >> file.frameTime;
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
    BvhPose pose{std::vector<KtVec3d>(count), std::vector<KtVec3d>(count)};
    std::vector<KtMat3d> world(count);
    const double* value = file.values[frame].data();
    for (size_t j = 0; j < count; ++j)
    {
        const BvhJoint& joint = file.joints[j];
        KtMat3d rotation;
        KtVec3d position = joint.parent < 0 ? joint.offset : KtVec3d();
        for (const std::string& channel : joint.channels)
        {
            const int axis = channel[0] - 'X';
            if (channel.substr(1) == "rotation")
                rotation =
                    rotation *
                    KtAxisRotation3d(axis + 1, *value * kKtRadiansPerDegree);
            else
                position[axis] = *value;
            ++value;
        }
        const int p = joint.parent;
        pose.joints[j] =
            p < 0 ? position
                  : pose.joints[p] + world[p] * (joint.offset + position);
        world[j] = p < 0 ? rotation : world[p] * rotation;
        pose.ends[j] = pose.joints[j] + world[j] * joint.endOffset;
    }
    return pose;
}

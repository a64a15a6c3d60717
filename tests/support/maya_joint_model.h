// A small model of Maya's joints, to test without Maya that a rig script and
// motbake's import script together pose a skeleton: the joints that the rig
// creates, the attributes that the import script's channels drive, and the
// world position of each joint.
#pragma once

#include <cmath>
#include <iterator>
#include <map>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "geometry/KtMat3d.h"

// Maya's matrices act on row vectors: a joint's local matrix is [R][JO][T]
// (its rotation, then its joint orient, then its translation), and its world
// matrix is its local matrix times its parent's world matrix. The model
// keeps the same in column form, every matrix transposed. R turns about the
// axes in the joint's rotate order, first named first (0 xyz, 1 yzx, 2 zxy,
// 3 xzy, 4 yxz, 5 zyx); JO turns by X, then Y, then Z. Values are in the
// units of the scripts: inches and degrees.
class MayaJointModel
{
public:
    // Reads a rig script's createNode and setAttr lines, and motbake's
    // defineVirtualDevice and attachDeviceAttr lines.
    void source(const std::string& script)
    {
        std::istringstream lines(script);
        for (std::string line; std::getline(lines, line);)
        {
            std::string plain;
            for (char c : line)
                if (c != '"' && c != ';')
                    plain += c;
            std::istringstream in(plain);
            std::vector<std::string> w;
            for (std::string word; in >> word;)
                if (word != "-type" && word != "double3")
                    w.push_back(word);
            // A parent not yet created throws, as Maya refuses it.
            if (w.size() >= 4 && w[0] == "createNode")
                _joints[w[3]].parent =
                    w.size() >= 6 ? &_joints.at(w[5]) : nullptr;
            else if (w.size() >= 3 && w[0] == "setAttr")
                for (size_t i = 2; i < w.size(); ++i)
                    set(w[1], static_cast<int>(i - 2), std::stod(w[i]));
            else if (w.size() == 7 && w[0] == "defineVirtualDevice")
                _columns[w[2]] = std::stoi(w[6]);
            else if (w.size() == 6 && w[0] == "attachDeviceAttr")
                _attachments.emplace_back(_columns.at(w[4]), w[5]);
        }
    }

    // One MOV line read as a take: the time, then every channel's value.
    void applyTake(const std::string& movLine)
    {
        std::istringstream in(movLine);
        const std::vector<double> values{std::istream_iterator<double>(in),
                                         std::istream_iterator<double>()};
        for (const auto& [column, attribute] : _attachments)
            set(attribute, 0, values.at(column + 1));
    }

    bool has(const std::string& joint) const { return _joints.count(joint); }

    KtVec3d worldPosition(const std::string& joint) const
    {
        return world(_joints.at(joint)).second;
    }

private:
    struct Joint
    {
        const Joint* parent = nullptr;
        KtVec3d translate, rotate, jointOrient;
        int rotateOrder = 0;
    };

    // "joint.translate" with its index, or "joint.rotateZ" and the like.
    void set(const std::string& attribute, int index, double value)
    {
        const size_t dot = attribute.find('.');
        Joint& joint = _joints.at(attribute.substr(0, dot));
        const std::string name = attribute.substr(dot + 1);
        if (name == "rotateOrder")
            return void(joint.rotateOrder = static_cast<int>(value));
        KtVec3d& v = name.rfind("translate", 0) == 0 ? joint.translate
                     : name.rfind("rotate", 0) == 0  ? joint.rotate
                                                     : joint.jointOrient;
        v[name.back() <= 'Z' ? name.back() - 'X' : index] = value;
    }

    // Turns about the axes in the order given, the first applied first; each
    // is the transpose of Maya's [1 0 0; 0 c s; 0 -s c] and its likes.
    static KtMat3d turns(const KtVec3d& degrees, const int (&axes)[3])
    {
        KtMat3d m;
        for (int axis : axes)
        {
            const double a = degrees[axis] * std::acos(-1.0) / 180.0;
            const int j = (axis + 1) % 3, k = (axis + 2) % 3;
            KtMat3d turn;
            turn[j][j] = turn[k][k] = std::cos(a);
            turn[k][j] = std::sin(a);
            turn[j][k] = -std::sin(a);
            m = turn * m;
        }
        return m;
    }

    static std::pair<KtMat3d, KtVec3d> world(const Joint& joint)
    {
        static const int kOrders[6][3] = {
            {0, 1, 2}, {1, 2, 0}, {2, 0, 1}, {0, 2, 1}, {1, 0, 2}, {2, 1, 0}};
        std::pair<KtMat3d, KtVec3d> parent;
        if (joint.parent)
            parent = world(*joint.parent);
        const auto& [rotation, position] = parent;
        return {rotation * turns(joint.jointOrient, kOrders[0]) *
                    turns(joint.rotate, kOrders[joint.rotateOrder]),
                position + rotation * joint.translate};
    }

    std::map<std::string, Joint> _joints;
    std::map<std::string, int> _columns;
    std::vector<std::pair<int, std::string>> _attachments;
};

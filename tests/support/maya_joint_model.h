// A small model of Maya's joints, to test without Maya that a rig script and
// motbake's import script together pose a skeleton: the joints that the rig
// creates, the attributes that the import script's channels drive, and the
// world position of each joint.
#pragma once

#include <array>
#include <cmath>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "geometry/KtMat3d.h"

// Row vectors, as Maya's own matrices: a joint's local matrix is
// [R][JO][T] (its rotation, then its joint orient, then its translation),
// and its world matrix is its local matrix times its parent's world matrix.
// R turns about the axes in the joint's rotate order, first named first
// (0 xyz, 1 yzx, 2 zxy, 3 xzy, 4 yxz, 5 zyx); JO turns by X, then Y, then
// Z. Values are in the units of the scripts: inches and degrees.
class MayaJointModel
{
public:
    // The createNode and setAttr lines of a rig script.
    void source(const std::string& rigScript)
    {
        std::istringstream lines(rigScript);
        for (std::string line; std::getline(lines, line);)
        {
            std::vector<std::string> words = wordsOf(line);
            if (words.size() >= 4 && words[0] == "createNode")
                _create(words);
            else if (words.size() >= 3 && words[0] == "setAttr")
                _set(words);
        }
    }

    // The channels of motbake's import script: channel name to MOV column
    // (defineVirtualDevice), then channel to joint attribute
    // (attachDeviceAttr).
    void attach(const std::string& importScript)
    {
        std::map<std::string, int> columns;
        std::istringstream lines(importScript);
        for (std::string line; std::getline(lines, line);)
        {
            std::vector<std::string> words = wordsOf(line);
            if (words.size() == 7 && words[0] == "defineVirtualDevice")
                columns[words[2]] = std::stoi(words[6]);
            else if (words.size() == 6 && words[0] == "attachDeviceAttr")
                _attachments.push_back({columns.at(words[4]), words[5]});
        }
    }

    // One MOV line read as a take: every attached attribute set.
    void applyTake(const std::string& movLine)
    {
        std::istringstream in(movLine);
        double time;
        in >> time;
        std::vector<double> values;
        for (double value; in >> value;)
            values.push_back(value);
        for (const Attachment& a : _attachments)
            _setComponent(a.attribute, values.at(a.column));
    }

    bool has(const std::string& joint) const { return _joints.count(joint); }

    KtVec3d worldPosition(const std::string& joint) const
    {
        const Vec p = world(joint).position;
        return KtVec3d(p[0], p[1], p[2]);
    }

private:
    using Vec = std::array<double, 3>;
    struct Joint
    {
        std::string name, parent;
        Vec translate{}, rotate{}, jointOrient{};
        int rotateOrder = 0;
    };
    struct Attachment
    {
        int column;
        std::string attribute;
    };
    using Mat = std::array<Vec, 3>;

    // Words of a line without quotes, semicolons and "-type double3".
    static std::vector<std::string> wordsOf(const std::string& line)
    {
        std::string plain;
        for (char c : line)
            if (c != '"' && c != ';')
                plain += c;
        std::istringstream in(plain);
        std::vector<std::string> words;
        for (std::string word; in >> word;)
            if (word != "-type" && word != "double3")
                words.push_back(word);
        return words;
    }

    // Maya refuses a parent that does not exist yet; so does the model (by
    // throwing).
    void _create(const std::vector<std::string>& words)
    {
        Joint joint;
        if (words.size() >= 6 && words[4] == "-p")
            joint.parent = _joints.at(words[5]).name;
        joint.name = words[3];
        _joints[words[3]] = joint;
    }

    void _set(const std::vector<std::string>& words)
    {
        const size_t dot = words[1].find('.');
        Joint& joint = _joints.at(words[1].substr(0, dot));
        const std::string attribute = words[1].substr(dot + 1);
        if (attribute == "rotateOrder")
            joint.rotateOrder = std::stoi(words[2]);
        else
        {
            Vec& v =
                attribute == "translate" ? joint.translate : joint.jointOrient;
            for (int i = 0; i < 3; ++i)
                v[i] = std::stod(words.at(2 + i));
        }
    }

    // "joint.translateX", "joint.rotateZ", ...
    void _setComponent(const std::string& attribute, double value)
    {
        const size_t dot = attribute.find('.');
        Joint& joint = _joints.at(attribute.substr(0, dot));
        const std::string name = attribute.substr(dot + 1);
        const int axis = name.back() - 'X';
        (name.compare(0, 9, "translate") == 0 ? joint.translate
                                              : joint.rotate)[axis] = value;
    }

    static Mat axisRotation(int axis, double degrees)
    {
        const double a = degrees * std::acos(-1.0) / 180.0;
        const double c = std::cos(a), s = std::sin(a);
        const int j = (axis + 1) % 3, k = (axis + 2) % 3;
        Mat m{};
        m[axis][axis] = 1;
        m[j][j] = c;
        m[j][k] = s;
        m[k][j] = -s;
        m[k][k] = c;
        return m;
    }

    static Mat product(const Mat& a, const Mat& b)
    {
        Mat m{};
        for (int i = 0; i < 3; ++i)
            for (int j = 0; j < 3; ++j)
                for (int k = 0; k < 3; ++k)
                    m[i][j] += a[i][k] * b[k][j];
        return m;
    }

    // Turns about the axes in the order given, first applied first.
    static Mat turns(const Vec& degrees, const int (&axes)[3])
    {
        Mat m = axisRotation(axes[0], degrees[axes[0]]);
        m = product(m, axisRotation(axes[1], degrees[axes[1]]));
        return product(m, axisRotation(axes[2], degrees[axes[2]]));
    }

    struct World
    {
        Mat rotation;
        Vec position;
    };

    World world(const std::string& name) const
    {
        static const int kOrders[6][3] = {
            {0, 1, 2}, {1, 2, 0}, {2, 0, 1}, {0, 2, 1}, {1, 0, 2}, {2, 1, 0}};
        const Joint& joint = _joints.at(name);
        World parent{{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}}, {0, 0, 0}};
        if (!joint.parent.empty())
            parent = world(joint.parent);
        World w;
        w.rotation =
            product(product(turns(joint.rotate, kOrders[joint.rotateOrder]),
                            turns(joint.jointOrient, kOrders[0])),
                    parent.rotation);
        for (int j = 0; j < 3; ++j)
        {
            w.position[j] = parent.position[j];
            for (int k = 0; k < 3; ++k)
                w.position[j] += joint.translate[k] * parent.rotation[k][j];
        }
        return w;
    }

    std::map<std::string, Joint> _joints;
    std::vector<Attachment> _attachments;
};

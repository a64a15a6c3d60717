// The BVH export. The root is the joint "root"; every bone is a joint at its
// start, nested as the skeleton's tree, and a leaf bone ends in an End Site.
// At rest every rotation is zero, so each OFFSET is the parent's bone vector
// as the skeleton gives it, in world axes.
//
// Each joint's rotation channels hold its rotation relative to its parent,
// R_p^-1 . R_j, as Z-Y-X Euler angles in degrees (R = Rz . Ry . Rx, column
// vectors), each frame's triple the one nearest the frame before among the
// triples of the same rotation. A bone that translates (tx, ty or tz) also
// gets three position channels: how far its start has moved from its rest
// place, in its parent's axes, so that BVH's own rule, start = parent's
// start + R_p . (OFFSET + channels), puts it where the standard pose does.
#include "motexport/BvhWriter.h"

#include <algorithm>
#include <ostream>
#include <vector>

#include "asf/KaASFDOF.h"
#include "geometry/KtAngles.h"
#include "geometry/KtEuler3d.h"
#include "motexport/ExportText.h"
#include "motexport/PosedMotion.h"
#include "pose/BodyTable.h"

namespace
{

// "Zrotation Yrotation Xrotation": X applies first.
constexpr int kChannelOrder[3] = {1, 2, 3};
constexpr const char* kPositionChannels = "Xposition Yposition Zposition";
constexpr const char* kRotationChannels = "Zrotation Yrotation Xrotation";
// A product is quicker than a quotient, millions of times over.
constexpr double kDegreesPerRadian = 1.0 / kKtRadiansPerDegree;
// Deeper joints are indented no further, so that a long chain of bones
// cannot blow the file up with indentation alone.
constexpr int kMaxIndent = 32;

bool translates(const BodyTable& bodies, int body)
{
    const int* codes = bodies.codes(body);
    return std::any_of(codes,
                       codes + bodies.numCodes(body),
                       [](int code) { return KaIsTranslationDOF(code); });
}

class BvhWriter
{
public:
    BvhWriter(std::ostream& out, PosedMotion& motion)
        : _motion(motion)
        , _text(out, motion.extent())
        , _previous(motion.numBodies())
    {
        _orderJoints(StandardPose::kRoot);
        for (int body = 0; body < motion.numBodies(); ++body)
            _translates.push_back(body != StandardPose::kRoot &&
                                  translates(motion.bodies(), body));
    }

    bool write()
    {
        _writeHierarchy();
        _writeMotionHeader();
        for (int frame = 0; frame < _motion.numFrames(); ++frame)
            if (!_writeFrame(frame))
                return false;
        return true;
    }

private:
    // Depth first, children in bone-list order: the order in which the
    // hierarchy lists the joints, and so the order of their channels.
    void _orderJoints(int root)
    {
        std::vector<int> stack = {root};
        while (!stack.empty())
        {
            int body = stack.back();
            stack.pop_back();
            _joints.push_back(body);
            const std::vector<int>& children = _motion.children(body);
            stack.insert(stack.end(), children.rbegin(), children.rend());
        }
    }

    void _indent(int depth)
    {
        for (int i = std::min(depth, kMaxIndent); i > 0; --i)
            _text.character('\t');
    }

    void _line(int depth, const char* text)
    {
        _indent(depth);
        _text.text(text);
        _text.character('\n');
    }

    void _offset(int depth, const KtVec3d& offset)
    {
        _indent(depth);
        _text.text("OFFSET");
        _text.lengths(offset, ' ');
        _text.character('\n');
    }

    void _writeHierarchy()
    {
        _text.text("HIERARCHY\n");
        // A joint's block stays open until the next joint that is not below
        // it; the open blocks are the joint's depth.
        std::vector<int> open;
        for (int body : _joints)
        {
            const int parent = _motion.pose().parent(body);
            while (!open.empty() && open.back() != parent)
                _close(open);
            _openJoint(body, static_cast<int>(open.size()));
            open.push_back(body);
        }
        while (!open.empty())
            _close(open);
    }

    void _openJoint(int body, int depth)
    {
        const bool isRoot = body == StandardPose::kRoot;
        _indent(depth);
        _text.text(isRoot ? "ROOT " : "JOINT ");
        _text.text(_motion.name(body));
        _text.character('\n');
        _line(depth, "{");
        // The root's position channels give its position outright; its
        // OFFSET is its place at rest (see the file's comment for joints).
        _offset(depth + 1,
                isRoot ? _motion.rootPosition()
                       : _motion.boneVector(_motion.pose().parent(body)));
        _indent(depth + 1);
        if (isRoot || _translates[body])
        {
            _text.text("CHANNELS 6 ");
            _text.text(kPositionChannels);
            _text.character(' ');
        }
        else
            _text.text("CHANNELS 3 ");
        _text.text(kRotationChannels);
        _text.character('\n');
        if (_motion.isLeaf(body))
        {
            _line(depth + 1, "End Site");
            _line(depth + 1, "{");
            _offset(depth + 2, _motion.boneVector(body));
            _line(depth + 1, "}");
        }
    }

    void _close(std::vector<int>& open)
    {
        int depth = static_cast<int>(open.size()) - 1;
        open.pop_back();
        _line(depth, "}");
    }

    void _writeMotionHeader()
    {
        _text.text("MOTION\nFrames: ");
        _text.integer(_motion.numFrames());
        _text.text("\nFrame Time: ");
        _text.shortest(_motion.frameTime());
        _text.character('\n');
    }

    // The root comes first: its position opens the line.
    bool _writeFrame(int frame)
    {
        _motion.evaluate(frame);
        const StandardPose& pose = _motion.pose();
        const KtVec3d root = _motion.start(StandardPose::kRoot);
        _text.length(root[0]);
        _text.character(' ');
        _text.length(root[1]);
        _text.character(' ');
        _text.length(root[2]);
        for (int body : _joints)
        {
            if (_translates[body])
            {
                // The start's move from its rest place, in the parent's axes.
                const int parent = pose.parent(body);
                _text.lengths(pose.rotation(parent).transposed() *
                                  (_motion.start(body) - _motion.end(parent)),
                              ' ');
            }
            _writeRotation(body, frame);
            if (_text.failed())
            {
                _motion.reportNotFinite(body, frame);
                return false;
            }
        }
        _text.character('\n');
        return true;
    }

    void _writeRotation(int body, int frame)
    {
        KtVec3d angles = KtDecomposeRotation3d(
            _motion.pose().relativeRotation(body), kChannelOrder);
        if (frame > 0)
            angles = KtClosestAngles3d(angles, _previous[body], kChannelOrder);
        _previous[body] = angles;
        for (int axis : {2, 1, 0})
        {
            _text.character(' ');
            _text.angle(angles[axis] * kDegreesPerRadian);
        }
    }

    PosedMotion& _motion;
    ExportText _text;
    std::vector<int> _joints;
    std::vector<bool> _translates;
    // Each joint's angles in the frame before, by axis, in radians.
    std::vector<KtVec3d> _previous;
};

} // namespace

bool writeBVH(std::ostream& out, PosedMotion& motion)
{
    return BvhWriter(out, motion).write();
}

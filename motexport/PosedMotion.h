// PosedMotion: a motion's frames posed on its skeleton one at a time, with
// what every export needs of them: lengths scaled, times, the bone tree.
#pragma once

#include <vector>

#include "geometry/KtMat3d.h"
#include "pose/BodyTable.h"
#include "pose/StandardPose.h"

class KaAMC;
class KaASF;

// Bodies are numbered as BodyTable and StandardPose number them. Every
// length given here is the standard pose's, times the scale.
class PosedMotion
{
public:
    // The documents must outlive the motion. scale and fps are positive.
    PosedMotion(const KaASF& asf, const KaAMC& amc, double scale, double fps);

    int numFrames() const;
    int numBodies() const { return _pose.count(); }
    const char* name(int body) const { return _bodies.name(body); }
    const BodyTable& bodies() const { return _bodies; }
    // Bones that no other bone hangs from.
    bool isLeaf(int body) const { return _isLeaf[body]; }
    const std::vector<int>& children(int body) const { return _children[body]; }

    // The frame's number as written, and its time in seconds from the
    // first frame.
    int frameNumber(int frame) const;
    double time(int frame) const;
    double frameTime() const { return 1.0 / _fps; }

    // Poses the frame: its values bound by body, then evaluated.
    void evaluate(int frame);
    // The pose that the last evaluate() left (unscaled), and its scaled
    // positions.
    const StandardPose& pose() const { return _pose; }
    KtVec3d start(int body) const { return _scale * _pose.start(body); }
    KtVec3d end(int body) const { return _scale * _pose.end(body); }
    // The rest pose's fixed parts, scaled.
    KtVec3d boneVector(int body) const
    {
        return _scale * _pose.boneVector(body);
    }
    KtVec3d rootPosition() const { return _scale * _pose.rootPosition(); }
    // The size of the skeleton at rest, scaled: the length of the root's
    // position plus every bone's.
    double extent() const { return _extent; }

    // Posts the error for a body whose pose in the frame is not a finite
    // number.
    void reportNotFinite(int body, int frame) const;
    // The pose of the first frame (at rest without frames) is finite, so that
    // a skeleton that makes it infinite (a length unit of 0, an axis of inf)
    // is refused before any output is written. Returns false with the error
    // posted.
    bool checkFinite();

private:
    const KaAMC& _amc;
    BodyTable _bodies;
    StandardPose _pose;
    double _scale;
    double _fps;
    double _extent = 0.0;
    std::vector<std::vector<int>> _children;
    std::vector<bool> _isLeaf;
};

// PoseEvaluator: the positions of a skeleton's bodies, frame after frame,
// evaluating each body's coordinate systems at most once per frame.
#pragma once

#include <vector>

#include "geometry/KtCoordSystem.h"
#include "toolkit/KtArray.h"

class BodyTable;
class KaASF;

// Gives exactly the floats of evaluateBodyFrame, with the same operations in
// the same order: a bone's animated system is its placed rest frame times
// its parent's animated system, followed by its own values. Here that
// product is formed once per frame, top-down, and shared by every body
// below; a bone's placed rest frame does not depend on the frame's values at
// all (only on whether the frame moves the root), so it is composed once
// for each of the two cases and kept.
class PoseEvaluator
{
public:
    // The table must be bound to the frame (BodyTable::bind) before each
    // startFrame. scale and degrees as for evaluateBodyFrame.
    PoseEvaluator(const KaASF& asf,
                  const BodyTable& bodies,
                  float scale,
                  int degrees);

    // Forgets the systems of the previous frame.
    void startFrame();

    // The body's position as writeBodyChannels computes it by the body's
    // name: relative to its parent bone's animated system, or in the world
    // for the root and for bones attached to it.
    KtPoint position(int body);

private:
    // A bone's rest frame placed under its parent's rest system.
    struct Placement
    {
        KtCoordSystem placed;
        KtCoordSystem rest;
    };

    static constexpr int kIdentity = -1;

    int _evaluatedByName(const KaASF& asf, const char* name) const;
    const KtCoordSystem& _animated(int body);
    void _animate(int body);
    // The rest system of a body already placed.
    const KtCoordSystem& _rest(int body) const;
    const Placement& _placement(int body);

    const BodyTable& _bodies;
    float _scale;
    int _degrees;

    // Evaluation goes by name: the body that a body's name reaches (the
    // first bone of that name; "root" is the root) and the one that its
    // position is taken relative to (kIdentity for the world).
    KtDArray<int> _target;
    KtDArray<int> _parentTarget;

    KtCoordSystem _rootRest;
    KtCoordSystem _inverseOfIdentity;
    // Whether the current frame moves the root; it selects the placements.
    int _rootMoves = 0;

    KtDArray<KtCoordSystem> _animatedSystems;
    KtDArray<unsigned> _animatedInFrame;
    unsigned _frame = 0;
    KtDArray<Placement> _placements[2];
    KtDArray<char> _placed[2];
    std::vector<int> _animationPath;
    std::vector<int> _placementPath;
};

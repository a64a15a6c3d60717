// ConverterPose: the converter's own pose, the world coordinate systems of a
// skeleton's bodies frame after frame, with the converter's quirks.
#pragma once

#include <deque>
#include <vector>

#include "geometry/KtCoordSystem.h"
#include "toolkit/KtArray.h"

class BodyTable;
class KaASF;
class KaASFRoot;

// Single precision and row vectors, as the MOV files have always been made:
// a bone's animated system is its placed rest frame times its parent's
// animated system, followed by its own values applied through the system's
// "pre" operations. A frame without root values leaves the root at the
// identity; a bone absent from the frame keeps its rest placement under its
// animated parent.
//
// Each body's systems are formed at most once per frame, top-down, and
// shared by every body below. A bone's placed rest frame does not depend on
// the frame's values at all (only on whether the frame moves the root), so
// it is composed once for each of the two cases and kept.
class ConverterPose
{
public:
    // scale: the length scale of translations (1 / the skeleton's length
    // unit); degrees: non-zero when the frame's angles are degrees, else
    // radians. The table must be bound to the frame (BodyTable::bind)
    // before each startFrame.
    ConverterPose(const KaASF& asf,
                  const BodyTable& bodies,
                  float scale,
                  int degrees);

    // Forgets the systems of the previous frame.
    void startFrame();

    // The body's world system as animated by the frame, and at rest.
    const KtCoordSystem& animated(int body);
    const KtCoordSystem& rest(int body);

    // The root's rest system: its position as written (the length unit does
    // not apply) and its orientation.
    static KtCoordSystem rootRest(const KaASFRoot& root);

private:
    // A bone's rest frame placed under its parent's rest system.
    struct Placement
    {
        KtCoordSystem placed;
        KtCoordSystem rest;
    };

    // What a body evaluated in some frame keeps: its system and the frame.
    struct Animated
    {
        KtCoordSystem system;
        unsigned frame = 0;
    };

    void _animate(int body);
    bool _animatedInFrame(int body) const;
    Animated& _animatedEntry(int body);
    const KtCoordSystem& _placedRest(int body) const;
    const Placement& _placement(int body);

    const BodyTable& _bodies;
    float _scale;
    int _degrees;

    KtCoordSystem _rootRest;
    // Whether the current frame moves the root; it selects the placements.
    int _rootMoves = 0;

    // Only the bodies that are evaluated get systems (a skeleton may have
    // many more bones than the motion moves): each body has the position of
    // its entry, -1 until it needs one. The entries never move, so the
    // systems handed out stay valid.
    KtDArray<int> _animatedAt;
    std::deque<Animated> _animated;
    unsigned _frame = 0;
    KtDArray<int> _placementAt[2];
    std::deque<Placement> _placements[2];
    std::vector<int> _animationPath;
    std::vector<int> _placementPath;
};

// Applies one DOF value through the system's "pre" operations, so it acts in
// the system's own local axes. Kinds other than translations and rotations
// are ignored.
void applyDOFValue(
    KtCoordSystem& cs, int dofKind, float value, float scale, int degrees);

// Translations first in DOF order, then rotations in reverse DOF order; the
// rotations take their values counting back from the last value. Values that
// a body does not have (fewer values than DOFs) are skipped.
void applyDOFCodes(KtCoordSystem& cs,
                   const int* codes,
                   int numCodes,
                   const float* values,
                   int numValues,
                   float scale,
                   int degrees);

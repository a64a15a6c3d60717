// Rotations in double precision: about one axis, composed from three angles
// in an axis order, taken apart again, and the choice among the angle
// triples of one rotation that keeps a curve continuous.
#pragma once

#include "geometry/KtMat3d.h"

// Column vectors (see KtMat3d.h), angles in radians. A triple of angles
// (KtVec3d) is indexed by axis, whatever the order: [0] about X, [1] about Y,
// [2] about Z. Axis codes are 1 X, 2 Y, 3 Z, and an order lists three of them
// first applied first:
//     order {1, 2, 3}   R = Rz . Ry . Rx   (a vector turns about X first)
//     order {3, 1, 2}   R = Ry . Rx . Rz
// This is the reverse of KtComposeRotationMatrix (KtEuler.h), whose row
// vectors apply the last code of an order first. A BVH channel list
// "Zrotation Yrotation Xrotation" is order {1, 2, 3}; a Maya rotate order
// reads as written (xyz is {1, 2, 3}, yzx {2, 3, 1}, ...).
//
// Degenerate input                                  | Result
// --------------------------------------------------+-------------------------
// KtAxisRotation3d: code outside 1..3               | the identity
// KtComposeRotation3d: code outside 1..3            | its place turns nothing
// KtDecomposeRotation3d: order not three different  | (0, 0, 0)
//   axes                                            |
// KtClosestAngles3d: order not three different axes | only whole turns move
//                                                   | the angles
KtMat3d KtAxisRotation3d(int axis, double angle);
KtMat3d KtComposeRotation3d(const KtVec3d& angles, const int (&order)[3]);
// m <- R(axis, angle) . m, the rotation applied after m; it changes two rows
// of m only.
void KtTurnAfter3d(KtMat3d& m, int axis, double angle);

// Angles that compose to r in the order: the middle axis's in [-pi/2, pi/2],
// the others in [-pi, pi]. Each angle comes from a two-argument arc tangent
// of terms that stay well scaled, so a middle angle at or near a quarter turn
// gives exact angles (at the lock the first axis's angle is 0 and the last
// takes the turn), never NaN. r must be a rotation.
KtVec3d KtDecomposeRotation3d(const KtMat3d& r, const int (&order)[3]);

// Of the triples that compose to the same rotation as angles in the order,
// angles itself and (first + pi, pi - middle, last + pi) by place in the
// order, each angle also moved by whole turns, the one nearest to previous
// (least sum of squared differences; a tie keeps the first). Curves built
// frame after frame from the decomposition then never jump by a turn.
KtVec3d KtClosestAngles3d(const KtVec3d& angles,
                          const KtVec3d& previous,
                          const int (&order)[3]);

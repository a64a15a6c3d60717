// Euler angles: composing a rotation block from three angles and an axis
// order, taking one apart again, and choosing between the two angle triples
// of one rotation.
#pragma once

#include "geometry/Kt3X3FloatMat.h"
#include "toolkit/KtArray.h"

class KtPoint;

// Angles are radians, in single precision. A triple is indexed by axis, not by
// its place in the order: [0] turns about X, [1] about Y, [2] about Z.
//
// Axis codes, and an order as three of them (position 0 is the first axis):
//     1 = X    2 = Y    3 = Z    0 = not given (where a function allows it)
// Orders with three different axes (X-Y-Z, Z-X-Y, ...) and proper Euler
// orders, whose first and last axes agree (X-Y-X, Z-X-Z, ...), are known.
//
// Degenerate input                                  | Result
// --------------------------------------------------+-------------------------
// KtComposeRotationMatrix                           |
//   code outside 1..3                               | no rotation for its
//                                                   | place (see below)
//   fewer than three angles or codes                | missing angles are 0,
//                                                   | missing codes unknown
// KtGetDecomposedRotationMatrix                     |
//   three axes, |cos middle| <= 1e-6 (gimbal lock)  | first or last angle 0,
//                                                   | the other takes the turn
//   proper Euler, |sin middle| <= 1e-6              | likewise
//   order not completed to a known order            | (0, 0, 0)
//   not a rotation                                  | meaningless angles, never
//                                                   | NaN (elements clamped)
// KtGetClosestAngles                                |
//   order not made of 1, 2, 3 once each             | the candidate, unchanged
//   arrays with fewer than three elements           | out = the candidate
//   candidate or reference infinite or huge         | never hangs; an infinite
//                                                   | one gives NaN
// KtFindA, sine and cosine both 0                   | 0

// The rotation R(order[2]) . R(order[1]) . R(order[0]): the same block that
// an identity KtCoordSystem holds after its pre-rotations about the listed
// axes in list order, so with row vectors the last listed axis turns a point
// first. Cosines and sines are taken in double and stored as float.
//
// A code outside 1..3 builds no rotation for its place: at the first place
// the result starts as the identity, at a later place the result is turned
// again by the rotation built last before it (or the identity). This has
// always been so and is kept; callers pass three valid codes.
Kt3X3FloatMat KtComposeRotationMatrix(const KtArray<float>& angles,
                                      const KtArray<int>& order);
Kt3X3FloatMat KtComposeRotationMatrix(const KtPoint& angles,
                                      const KtArray<int>& order);

// Angles of the rotation m for the order, written by axis into *angles.
// Composing them again with the same order gives m back within float
// precision away from gimbal lock.
//
// An incomplete order is completed first: with order[1] = 0 the codes that
// follow order[0] are (order[0] + 1) mod 3 and the next one likewise (only
// order 3 completes to a known order, Z-X-Y); with order[2] = 0 the pairs
// X-Y and Y-X get Z, Y-Z gets X and Z-X gets Y, while Z-Y and X-Z stay
// incomplete. When the third axis was inferred and its angle exceeds a
// quarter turn, the equivalent triple (first + pi, pi - middle, third + pi)
// is returned instead.
//
// For a proper Euler order (i, j, i) the first angle is written to axis i,
// the middle one to axis j and the last one to the axis o that the order does
// not name. KtComposeRotationMatrix reads axis i for both turns, so it
// rebuilds m when the outer angles agree, as they do for every rotation it
// composed itself.
void KtGetDecomposedRotationMatrix(float (*angles)[3],
                                   const int (&order)[3],
                                   const Kt3X3FloatMat& m);

// Of the two angle triples of one rotation, the candidate as given (A) and
// (first + pi, pi - middle, last + pi) in the order's terms (B), each brought
// to within pi of the reference angle by angle, returns the one nearer to the
// reference (sum of squared differences; a tie keeps A). This keeps animation
// curves continuous from frame to frame. out may be ref or cand.
void KtGetClosestAngles(float (*out)[3],
                        const float (&ref)[3],
                        const float (&cand)[3],
                        const int (&order)[3]);
// The array forms, the first in X-Y-Z order; out gets three elements.
void KtGetClosestAngles(KtArray<float>* out,
                        const KtArray<float>& ref,
                        const KtArray<float>& cand);
void KtGetClosestAngles(KtArray<float>* out,
                        const KtArray<float>& ref,
                        const KtArray<float>& cand,
                        const KtArray<int>& order);

// The angle in [-pi, pi] whose sine and cosine are proportional to sine and
// cosine: the one-angle step of the decomposition.
void KtFindA(float* angle, float sine, float cosine);

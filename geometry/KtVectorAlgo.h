// Free functions on vectors and rotation blocks: cross and dot products,
// normals, perpendiculars, re-orthonormalising a drifted rotation.
#pragma once

class KtPoint;
class Kt3X3FloatMat;

// Degenerate input                        | Result
// ----------------------------------------+---------------------------------
// KtGetCrossProduct, parallel vectors     | (0, 0, 0)
// KtTriangleNormal, points on one line    | (0, 0, 0)
// KtArbitraryPerpendicular, zero vector   | (0, 0, 0)
// KtReorthogonalize, far from a rotation  | meaningless (the series diverges),
//                                         | no message
//
// Outputs may be the same object as an input.

// out = a x b (right-handed).
void KtGetCrossProduct(KtPoint* out, const KtPoint& a, const KtPoint& b);
float KtDotProduct(const KtPoint& a, const KtPoint& b);

// The unit normal of the triangle p0, p1, p2: (p1 - p0) x (p2 - p0),
// normalised, so counter-clockwise corners seen from outside point outward.
KtPoint
KtTriangleNormal(const KtPoint& p0, const KtPoint& p1, const KtPoint& p2);

// A unit vector perpendicular to v: v crossed with the principal axis along
// which v is shortest, normalised.
void KtArbitraryPerpendicular(KtPoint* out, const KtPoint& v);

// Pulls a rotation block that has drifted through repeated float products
// back to orthonormal: m <- m (m^T m)^(-1/2), the inverse square root taken as
// the first ten terms of its binomial series. Works for small drift only.
void KtReorthogonalize(Kt3X3FloatMat* m);

// KtCoordSystem: a rigid (optionally scaled) coordinate frame held as one 4x4
// matrix, built up by translations, rotations and scales.
#pragma once

#include <iosfwd>

#include "geometry/Kt3X3FloatMat.h"
#include "geometry/Kt4X4FloatMat.h"
#include "geometry/KtPoint.h"

// A frame is its matrix M (rotation block in rows 0..2, origin in row 3) and
// maps a local point p to p . M. Angles are radians.
//
// Pre-operations make M <- E . M: the new transform acts first, in the frame's
// own local axes, before everything already in M. A bone frame is built by a
// chain of them on an identity frame, so the last call is the first transform
// a point meets. Post-operations make M <- M . E: the new transform acts last,
// in the parent's axes.
//
// The elementary rotations by a (c = cos a, s = sin a) are right-handed:
//     about X: rows (1 0 0), (0 c s), (0 -s c)    turns Y toward Z
//     about Y: rows (c 0 -s), (0 1 0), (s 0 c)    turns Z toward X
//     about Z: rows (c s 0), (-s c 0), (0 0 1)    turns X toward Y
// Every operation updates all four columns (or rows), so a matrix whose
// column 3 is not (0, 0, 0, 1) stays consistent.
class KtCoordSystem : public Kt4X4FloatMat
{
public:
    // The identity frame.
    KtCoordSystem() = default;
    KtCoordSystem(const Kt4X4FloatMat& m)
        : Kt4X4FloatMat(m)
    {
    }
    using Kt4X4FloatMat::operator=;

    void preTranslateX(float t) { _addScaledRow(3, t, 0); }
    void preTranslateY(float t) { _addScaledRow(3, t, 1); }
    void preTranslateZ(float t) { _addScaledRow(3, t, 2); }
    void preTranslate(float x, float y, float z);
    void preTranslate(const float (&v)[3]) { preTranslate(v[0], v[1], v[2]); }
    void preScale(float x, float y, float z);
    void preScale(const float (&v)[3]) { preScale(v[0], v[1], v[2]); }
    // Single precision throughout: cosf, then sinf, of the angle.
    void preRotateX(float a);
    void preRotateY(float a);
    void preRotateZ(float a);
    // The rotation by a about the axis; a zero axis leaves the frame as it is.
    void preRotateAxis(const float (&axis)[3], float a);

    void postTranslateX(float t) { _addScaledColumn(0, t, 3); }
    void postTranslateY(float t) { _addScaledColumn(1, t, 3); }
    void postTranslateZ(float t) { _addScaledColumn(2, t, 3); }
    void postTranslate(float x, float y, float z);
    void postTranslate(const float (&v)[3]) { postTranslate(v[0], v[1], v[2]); }
    void postScale(float x, float y, float z);
    void postScale(const float (&v)[3]) { postScale(v[0], v[1], v[2]); }
    void postRotateX(float a);
    void postRotateY(float a);
    void postRotateZ(float a);
    void postRotateAxis(const float (&axis)[3], float a);

    // The rotation block, element for element; the rest is untouched.
    void getRotationMatrix(Kt3X3FloatMat* out) const
    {
        _extractRotMatrix(out->elements(), _m);
    }
    void setRotationMatrix(const Kt3X3FloatMat& r)
    {
        _replaceRotMatrix(_m, r.elements());
    }
    // The origin (row 3); setting it leaves the rest untouched.
    void getTranslationVector(KtPoint* out) const
    {
        *out = translationVector();
    }
    KtPoint translationVector() const
    {
        return KtPoint(_m[3][0], _m[3][1], _m[3][2]);
    }
    void setTranslationVector(const KtPoint& p)
    {
        _m[3][0] = p.x;
        _m[3][1] = p.y;
        _m[3][2] = p.z;
    }

    // Makes the rotation turn about the local point p instead of the local
    // origin, keeping the rotation block: a point v then maps to
    // (v - p) . R + p + t, that is M <- T(-p) . M . T(p).
    void shiftRotationPoint(const KtPoint& p);
    // Re-orthonormalises the rotation block (KtReorthogonalize).
    void reorthogonalize();

    // One bracketed line per row: "[\n  [ a b c d]\n ... [ m n o p]\n]".
    void printOn(std::ostream& out) const;

private:
    // row[to] += f . row[from], all four columns.
    void _addScaledRow(int to, float f, int from)
    {
        for (int j = 0; j < 4; ++j)
            _m[to][j] += f * _m[from][j];
    }
    // column[to] += f . column[from], all four rows.
    void _addScaledColumn(int to, float f, int from)
    {
        for (int i = 0; i < 4; ++i)
            _m[i][to] += f * _m[i][from];
    }
    void _rotateRows(int a, int b, float angle);
    void _rotateColumns(int a, int b, float angle);
};

std::ostream& operator<<(std::ostream& out, const KtCoordSystem& frame);

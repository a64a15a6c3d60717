// KtPoint: a single-precision 3-vector (a position or a direction).
#pragma once

#include <iosfwd>

class Kt3X3FloatMat;
class Kt4X4FloatMat;

// Points are row vectors: a matrix acts on a point from the right, p' = p . M,
// throughout the geometry toolkit.
//
// Numbers reach a stream through the standard float and double insertion:
// a float is widened to double and formatted as the C print functions do with
// the stream's width and precision, "%*.*e" ("%*.*E" with uppercase) when
// scientific is set, else "%*.*f" when fixed is set, else "%*.*g" ("%*.*G").
// With the default six digits 0.1f prints "0.1", and "0.100000" when fixed.
// (Fixed and scientific together give the library's hexadecimal form instead
// of "%e"; no caller sets both.)
class KtPoint
{
public:
    KtPoint() = default;
    KtPoint(float x, float y, float z)
        : x(x)
        , y(y)
        , z(z)
    {
    }

    // Coordinate by index: 0 x, 1 y, 2 z.
    float& operator[](int i) { return i == 0 ? x : (i == 1 ? y : z); }
    float operator[](int i) const { return i == 0 ? x : (i == 1 ? y : z); }

    // Replaces the point by p . m; the 4x4 form takes the point as
    // (x, y, z, 1).
    void applyMatrix(const Kt3X3FloatMat& m);
    void applyMatrix(const Kt4X4FloatMat& m);

    // Dictionary order: x decides, then y, then z, so points sort and can key
    // an ordered container.
    bool operator<(const KtPoint& other) const;
    bool operator>(const KtPoint& other) const { return other < *this; }

    float x = 0.0f;
    float y = 0.0f;
    float z = 0.0f;
};

// "(x, y, z)".
std::ostream& operator<<(std::ostream& out, const KtPoint& p);

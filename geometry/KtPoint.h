// KtPoint: a single-precision 3-vector (a position or a direction).
#pragma once

#include <iosfwd>

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

    float x = 0.0f;
    float y = 0.0f;
    float z = 0.0f;
};

std::ostream& operator<<(std::ostream& out, const KtPoint& p);

// ExportText: the text of an export, written to its stream in large blocks,
// with every number in one form.
#pragma once

#include <iosfwd>

#include "geometry/KtMat3d.h"
#include "toolkit/KtFloatWriter.h"

// Numbers are written as a stream writes them by default, printf's "%g": six
// significant digits. A value that is only rounding noise around zero is
// written 0, never -0 or 1e-15: a length below a billionth of the
// skeleton's extent, an angle below a billionth of a degree. A number that
// is not finite is not written at all; failed() tells.
class ExportText
{
public:
    // extent: the skeleton's size in the lengths written (PosedMotion).
    ExportText(std::ostream& out, double extent);

    void length(double value) { _number(value, _lengthNoise); }
    void angle(double degrees) { _number(degrees, kAngleNoise); }
    // Three lengths, each after the separator.
    void lengths(const KtVec3d& v, char separator);
    void integer(long value);
    void character(char c) { _text.character(c); }
    void text(const char* text);
    // Exactly as many digits as bring the value back when read.
    void shortest(double value);
    // As "%.*g".
    void significant(double value, int precision);

    // A number since the last clearFailed() was not finite.
    bool failed() const { return _failed; }
    void clearFailed() { _failed = false; }

private:
    static constexpr double kAngleNoise = 1e-9;

    void _number(double value, double noise);
    // False, and failed() from now on, for a value that is not finite.
    bool _finite(double value);
    void _characters(const char* begin, const char* end);

    KtFloatWriter _text;
    double _lengthNoise;
    bool _failed = false;
};

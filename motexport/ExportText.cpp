// ExportText: numbers in one form, rounding noise written as 0.
#include "motexport/ExportText.h"

#include <charconv>
#include <cmath>

namespace
{

// Doubles carry about sixteen digits and the skeleton's numbers, floats,
// seven: what lies nine orders of magnitude below the skeleton's size is
// what cancelling terms leave of a zero.
constexpr double kRelativeNoise = 1e-9;

// The longest text of a long or of a double in any form.
constexpr int kNumberTextSize = 40;

} // namespace

ExportText::ExportText(std::ostream& out, double extent)
    : _text(out)
    , _lengthNoise(std::isfinite(extent) ? kRelativeNoise * extent : 0.0)
{
}

void ExportText::_number(double value, double noise)
{
    if (!std::isfinite(value))
    {
        _failed = true;
        return;
    }
    // Zero of either sign, too.
    if (std::fabs(value) <= noise)
        value = 0.0;
    _text.number(value);
}

void ExportText::lengths(const KtVec3d& v, char separator)
{
    for (int axis = 0; axis < 3; ++axis)
    {
        character(separator);
        length(v[axis]);
    }
}

void ExportText::text(const char* text)
{
    for (; *text; ++text)
        character(*text);
}

void ExportText::integer(long value)
{
    char digits[kNumberTextSize];
    *std::to_chars(digits, digits + sizeof digits - 1, value).ptr = '\0';
    text(digits);
}

void ExportText::shortest(double value)
{
    if (!std::isfinite(value))
    {
        _failed = true;
        return;
    }
    char digits[kNumberTextSize];
    *std::to_chars(digits, digits + sizeof digits - 1, value).ptr = '\0';
    text(digits);
}

void ExportText::significant(double value, int digits)
{
    if (!std::isfinite(value))
    {
        _failed = true;
        return;
    }
    char text[kNumberTextSize];
    *std::to_chars(text,
                   text + sizeof text - 1,
                   value,
                   std::chars_format::general,
                   digits)
         .ptr = '\0';
    this->text(text);
}

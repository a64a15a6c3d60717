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
    if (!_finite(value))
        return;
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
    _characters(digits,
                std::to_chars(digits, digits + sizeof digits, value).ptr);
}

void ExportText::shortest(double value)
{
    char digits[kNumberTextSize];
    if (_finite(value))
        _characters(digits,
                    std::to_chars(digits, digits + sizeof digits, value).ptr);
}

void ExportText::significant(double value, int precision)
{
    char digits[kNumberTextSize];
    if (_finite(value))
        _characters(digits,
                    std::to_chars(digits,
                                  digits + sizeof digits,
                                  value,
                                  std::chars_format::general,
                                  precision)
                        .ptr);
}

bool ExportText::_finite(double value)
{
    const bool finite = std::isfinite(value);
    _failed = _failed || !finite;
    return finite;
}

void ExportText::_characters(const char* begin, const char* end)
{
    for (; begin != end; ++begin)
        character(*begin);
}

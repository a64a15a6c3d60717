// The number reader of motion value lines: the run that a stream's float
// extraction takes, converted with std::from_chars.
#include "amc/KaScanFloat.h"

#include <charconv>
#include <clocale>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <locale.h>

namespace
{

// A value line holds at most 126 characters; a longer run is refused
// rather than cut.
constexpr long kMaxRun = 126;

bool isBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' ||
           c == '\r';
}

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

// Numbers are written with a '.' whatever locale the process runs in.
locale_t cLocale()
{
    static locale_t locale = newlocale(LC_ALL_MASK, "C", locale_t());
    return locale;
}

// Out of a float's range both ways: a stream takes strtof's verdict, which
// refuses only what overflows and turns what underflows into a signed zero.
// Rare, so the run is copied for strtof here only.
bool scanOutOfRange(const char* start, long length, float* value)
{
    char run[kMaxRun + 1];
    std::memcpy(run, start, static_cast<size_t>(length));
    run[length] = '\0';
    float number = strtof_l(run, nullptr, cLocale());
    if (std::isinf(number))
        return false;
    *value = number;
    return true;
}

} // namespace

bool KaScanFloat(const char*& cursor, float* value)
{
    const char* p = cursor;
    while (isBlank(*p))
        ++p;
    const char* start = p;
    if (*p == '+' || *p == '-')
        ++p;
    bool mantissa = false;
    bool point = false;
    bool exponent = false;
    for (;; ++p)
    {
        if (isDigit(*p))
            mantissa = true;
        else if (*p == '.' && !point && !exponent)
            point = true;
        else if ((*p == 'e' || *p == 'E') && mantissa && !exponent)
        {
            exponent = true;
            if (p[1] == '+' || p[1] == '-')
                ++p;
        }
        else
            break;
    }
    cursor = p;
    if (p - start > kMaxRun)
        return false;

    // from_chars rounds exactly as strtof does, but takes no plus sign. An
    // incomplete run ("-", ".", "1e", "1e+") stops it short of the end.
    const char* digits = *start == '+' ? start + 1 : start;
    float number = 0.0f;
    std::from_chars_result parsed = std::from_chars(digits, p, number);
    if (parsed.ec == std::errc::invalid_argument || parsed.ptr != p)
        return false;
    if (parsed.ec == std::errc::result_out_of_range)
        return scanOutOfRange(start, p - start, value);
    *value = number;
    return true;
}

// The number reader of motion value lines, kept on its own so that a faster
// equivalent can replace it.
#include "amc/KaScanFloat.h"

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

    // The run may still be incomplete ("-", ".", "1e", "1e+"); strtof then
    // stops short of its end.
    long length = p - start;
    if (length > kMaxRun)
        return false;
    char run[kMaxRun + 1];
    std::memcpy(run, start, static_cast<size_t>(length));
    run[length] = '\0';
    char* end = nullptr;
    float number = strtof_l(run, &end, cLocale());
    if (end == run || *end != '\0' || std::isinf(number))
        return false;
    *value = number;
    return true;
}

// The number reader of motion value lines: the run that a stream's float
// extraction takes, converted exactly by a float operation when the digits
// allow it, else by std::from_chars.
#include "amc/KaScanFloat.h"

#include <algorithm>
#include <charconv>
#include <clocale>
#include <cmath>
#include <cstdint>
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

// The run of a number as a stream's float extraction takes it, with its
// decimal digits gathered on the way.
struct Run
{
    const char* end = nullptr;
    bool negative = false;
    // Whether the run is a whole number: a digit before any exponent, and
    // digits in the exponent if it has one.
    bool complete = false;
    // The digits as one integer and the power of ten that scales it to the
    // value; more digits than the integer holds are left to the slow path.
    uint64_t digits = 0;
    bool tooManyDigits = false;
    long scale = 0;
};

// Nineteen decimal digits always fit 64 bits.
constexpr long kMaxDigits = 19;
constexpr long kMaxExponent = 100000;

const char* gatherDigits(const char* p, uint64_t* digits)
{
    for (; isDigit(*p); ++p)
        *digits = *digits * 10 + static_cast<uint64_t>(*p - '0');
    return p;
}

// An optional sign, digits with at most one decimal point, then an exponent
// if a digit came before it.
Run scanRun(const char* p)
{
    Run run;
    run.negative = *p == '-';
    if (*p == '+' || *p == '-')
        ++p;
    const char* start = p;
    p = gatherDigits(p, &run.digits);
    long numDigits = p - start;
    if (*p == '.')
    {
        const char* fraction = ++p;
        p = gatherDigits(p, &run.digits);
        run.scale = fraction - p;
        numDigits += p - fraction;
    }
    run.tooManyDigits = numDigits > kMaxDigits;
    run.complete = numDigits > 0;
    if (numDigits > 0 && (*p == 'e' || *p == 'E'))
    {
        ++p;
        bool negativeExponent = *p == '-';
        if (*p == '+' || *p == '-')
            ++p;
        long exponent = 0;
        run.complete = isDigit(*p);
        for (; isDigit(*p); ++p)
            exponent = std::min(exponent * 10 + (*p - '0'), kMaxExponent);
        run.scale += negativeExponent ? -exponent : exponent;
    }
    run.end = p;
    return run;
}

// Digits that a float holds exactly (up to 2^24), scaled by a power of ten
// that a float holds exactly (up to 10^10): one multiplication or division,
// rounded once, is exactly what any correct conversion gives.
constexpr uint64_t kMaxExactDigits = uint64_t(1) << 24;
constexpr int kMaxExactPower = 10;
constexpr float kExactPowers[kMaxExactPower + 1] = {
    1e0f, 1e1f, 1e2f, 1e3f, 1e4f, 1e5f, 1e6f, 1e7f, 1e8f, 1e9f, 1e10f};

bool convertExactly(const Run& run, float* value)
{
    if (run.tooManyDigits || run.digits > kMaxExactDigits ||
        run.scale < -kMaxExactPower || run.scale > kMaxExactPower)
        return false;
    float number = static_cast<float>(run.digits);
    if (run.scale < 0)
        number /= kExactPowers[-run.scale];
    else
        number *= kExactPowers[run.scale];
    *value = run.negative ? -number : number;
    return true;
}

} // namespace

bool KaScanFloat(const char*& cursor, float* value)
{
    const char* start = cursor;
    while (isBlank(*start))
        ++start;
    Run run = scanRun(start);
    cursor = run.end;
    if (!run.complete || run.end - start > kMaxRun)
        return false;
    if (convertExactly(run, value))
        return true;

    // Otherwise from_chars, which rounds exactly as strtof does but takes no
    // plus sign.
    const char* digits = *start == '+' ? start + 1 : start;
    float number = 0.0f;
    std::from_chars_result parsed = std::from_chars(digits, run.end, number);
    if (parsed.ec == std::errc::invalid_argument || parsed.ptr != run.end)
        return false;
    if (parsed.ec == std::errc::result_out_of_range)
        return scanOutOfRange(start, run.end - start, value);
    *value = number;
    return true;
}

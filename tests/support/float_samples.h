// Floats on which six-digit decimal formatting most easily goes wrong: exact
// ties and the neighbours of powers of ten. Shared by the formatter's test
// and its exhaustive check in the benchmark.
#pragma once

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

// printf's "%g" of the float as a double: the reference text.
inline int referenceFloatText(char (&text)[64], float value)
{
    return std::snprintf(text, sizeof text, "%g", static_cast<double>(value));
}

inline float floatFromBits(uint32_t bits)
{
    float value = 0.0f;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

// Calls visit(float) for every positive float that lies exactly halfway
// between two six-digit decimals: a seven-digit D ending in 5 times 10^p.
// For p >= 0 the float must hold D * 5^p below 2^24; for p < 0, 5^-p must
// divide D, leaving D / 5^-p over 2^-p. Beyond these ranges no float is a
// tie (about 2.3 million in all).
template <class Visit>
void forEachFloatTie(Visit visit)
{
    constexpr long kTwoTo24 = 1L << 24;
    for (int p = -10; p <= 1; ++p)
        for (long d = 1000005; d <= 9999995; d += 10)
        {
            if (p >= 0)
            {
                long scaled = p == 0 ? d : d * 5;
                if (scaled < kTwoTo24)
                    visit(static_cast<float>(p == 0 ? d : d * 10));
                continue;
            }
            long fivePower = 1;
            for (int i = 0; i < -p; ++i)
                fivePower *= 5;
            if (d % fivePower == 0)
                visit(std::ldexp(static_cast<float>(d / fivePower), p));
        }
}

// Calls visit(float) for the float nearest every power of ten that floats
// reach, 1e-45 to 1e38, and the spread floats on each side of it.
template <class Visit>
void forEachFloatNearPowerOfTen(int spread, Visit visit)
{
    for (int p = -45; p <= 38; ++p)
    {
        char text[16];
        std::snprintf(text, sizeof text, "1e%d", p);
        float nearest = std::strtof(text, nullptr);
        uint32_t bits = 0;
        std::memcpy(&bits, &nearest, sizeof bits);
        for (int k = -spread; k <= spread; ++k)
            if (static_cast<int64_t>(bits) + k > 0)
                visit(floatFromBits(bits + static_cast<uint32_t>(k)));
    }
}

// printf's "%g" of a double: the reference text.
inline int referenceDoubleText(char (&text)[64], double value)
{
    return std::snprintf(text, sizeof text, "%g", value);
}

// Calls visit(double) for doubles on which six-digit formatting most easily
// goes wrong: every exact tie D * 10^p (D of seven digits ending in 5, with
// D * 5^p below 2^53 for p >= 0, or 5^-p dividing D for p < 0), and the
// doubles next to every power of ten from 1e-30 to 1e30, spread on each side.
// Visiting every 97th seven-digit D keeps the count modest.
template <class Visit>
void forEachDoubleTieAndPowerOfTen(int spread, Visit visit)
{
    constexpr double kTwoTo53 = 9007199254740992.0;
    for (int p = -10; p <= 9; ++p)
        for (long d = 1000005; d <= 9999995; d += 970)
        {
            double fivePower = std::pow(5.0, std::abs(p));
            if (p >= 0 && d * fivePower < kTwoTo53)
                visit(d * std::pow(10.0, p));
            else if (p < 0 && std::fmod(d, fivePower) == 0)
                visit(std::ldexp(d / fivePower, p));
        }
    for (int p = -30; p <= 30; ++p)
    {
        char text[16];
        std::snprintf(text, sizeof text, "1e%d", p);
        double nearest = std::strtod(text, nullptr);
        for (int k = 0; k < spread; ++k)
        {
            visit(nearest);
            visit(std::nextafter(nearest, 0.0));
            nearest = std::nextafter(nearest, 1e300);
        }
    }
}

// The frame rates that Maya plays back, with the time unit by which its
// scripts name each one.
#pragma once

struct MayaFrameRate
{
    int fps;
    const char* timeUnit;
};

// 25 is accepted although the manual page does not list it; both are
// intended.
constexpr MayaFrameRate kMayaFrameRates[] = {{15, "game"},
                                             {24, "film"},
                                             {25, "pal"},
                                             {30, "ntsc"},
                                             {48, "show"},
                                             {50, "palf"},
                                             {60, "ntscf"}};

// The time unit of a rate; null for any other rate.
inline const char* mayaTimeUnit(int fps)
{
    for (const MayaFrameRate& rate : kMayaFrameRates)
        if (rate.fps == fps)
            return rate.timeUnit;
    return nullptr;
}

// Axis orders of a skeleton: the words "XYZ", "zyx", ... and their codes.
#pragma once

#include "toolkit/KtArray.h"

// Axis codes. An axis order is three of them, in the order in which the
// rotations are composed.
enum KaAxisCode : int
{
    kAxisX = 1,
    kAxisY = 2,
    kAxisZ = 3
};

// Reads an order from the first three letters of a word, ignoring case;
// repeated letters are kept as written. On failure records "Unable to read
// axis orientation order." (no word) or "Invalid axis specification.",
// leaves the order empty and returns false.
bool KaAxisOrderFromWord(const char* word, KtArray<int>* order);

// "x", "y" or "z"; the empty string for any other code.
const char* KaAxisName(int code);

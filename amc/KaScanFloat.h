// KaScanFloat: reads one number of a motion's value line.
#pragma once

// Reads the number that starts at cursor (blanks first skipped) exactly as a
// C++ stream's float extraction does: the longest run of an optional sign,
// digits with at most one decimal point, and an exponent after a digit;
// "inf", "nan" and hexadecimal are not numbers. The cursor moves past the
// run. Returns false, leaving *value unchanged, when the run is not a whole
// number or does not fit a float (1e39); tiny values become 0 or denormal.
bool KaScanFloat(const char*& cursor, float* value);

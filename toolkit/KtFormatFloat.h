// KtFormatFloat: the text that a stream's default insertion gives a float or
// a double, written without going through printf.
#pragma once

#include <iosfwd>

// Room for the longest text, "-1.17549e-38" or "-0.000123457", and more.
constexpr int kKtFloatTextSize = 16;

// Writes exactly what printf's "%g" writes for the float converted to
// double: six significant digits, correctly rounded (ties to even), in
// fixed form for exponents -4 to 5 and exponent form otherwise, without
// trailing zeros; "inf", "nan" and zero keep their sign ("-0", "-nan").
// Returns the end of the text, which has at most kKtFloatTextSize - 1
// characters and no terminator; out must have room for kKtFloatTextSize
// characters, all of which may be written to.
char* KtFormatFloat(char* out, float value);

// The same for a double: exactly printf's "%g" of it, under the same rules
// and within the same room (kKtFloatTextSize). Doubles from about 8e-25 to
// 1.2e24 in magnitude are formatted here; zero, the rest and non-finite
// values by printf itself.
char* KtFormatDouble(char* out, double value);

// True when inserting a float or a double into the stream gives
// KtFormatFloat's or KtFormatDouble's text:
// the stream's default format, precision 6, width 0, and a locale whose
// decimal point is '.' without digit grouping.
bool KtStreamFormatsFloatsByDefault(const std::ostream& out);

// KtFormatFloat: the text that a stream's default insertion gives a float,
// written without going through printf.
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

// True when inserting a float into the stream gives KtFormatFloat's text:
// the stream's default format, precision 6, width 0, and a locale whose
// decimal point is '.' without digit grouping.
bool KtStreamFormatsFloatsByDefault(const std::ostream& out);

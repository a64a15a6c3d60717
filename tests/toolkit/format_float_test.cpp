// KtFormatFloat: printf's "%g" text for every kind of float, and when a
// stream's insertion gives the same text.
#include <cfloat>
#include <cmath>
#include <cstring>
#include <limits>
#include <locale>
#include <random>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "support/float_samples.h"
#include "toolkit/KtFormatFloat.h"

namespace
{

std::string formatted(float value)
{
    char text[kKtFloatTextSize];
    return std::string(text, KtFormatFloat(text, value));
}

struct CommaDecimal : std::numpunct<char>
{
    char do_decimal_point() const override { return ','; }
};

} // namespace

TEST(KtFormatFloat, WritesPrintfsSixDigitForms)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float inf = std::numeric_limits<float>::infinity();
    // clang-format off
    const struct { float value; const char* text; } cases[] = {
        {0.0f, "0"}, {-0.0f, "-0"}, {1.0f, "1"}, {0.1f, "0.1"}, {-2.5f, "-2.5"},
        {1.0f / 30.0f, "0.0333333"}, {100000.0f, "100000"}, {999999.0f, "999999"},
        {1e6f, "1e+06"}, {999999.5f, "1e+06"}, // the carry moves it to exponent form
        {1234565.0f, "1.23456e+06"}, // exact ties go to the even digit
        {1234575.0f, "1.23458e+06"}, {1.015625f, "1.01562"},
        {0.0001f, "0.0001"}, {0.00001f, "1e-05"}, {0.000123456f, "0.000123456"},
        {FLT_MAX, "3.40282e+38"}, {FLT_MIN, "1.17549e-38"}, {-FLT_MIN, "-1.17549e-38"},
        {FLT_TRUE_MIN, "1.4013e-45"}, {inf, "inf"}, {-inf, "-inf"}, {nan, "nan"}, {-nan, "-nan"}};
    // clang-format on
    for (const auto& c : cases)
        EXPECT_EQ(c.text, formatted(c.value)) << std::hexfloat << c.value;
    // Doubles take the same layout, compared with printf below; a zero, which
    // the spread never meets, is written as the float's, sign included.
    char text[kKtFloatTextSize];
    EXPECT_EQ("-0", std::string(text, KtFormatDouble(text, -0.0)));
}

TEST(KtStreamFormatsFloatsByDefault, OnlyTheDefaultStateQualifies)
{
    using Change = void (*)(std::ostream&);
    // clang-format off
    const struct { const char* state; Change change; bool qualifies; } cases[] = {
        {"default", [](std::ostream&) {}, true}, {"precision 7", [](std::ostream& s) { s.precision(7); }, false},
        {"fixed", [](std::ostream& s) { s << std::fixed; }, false}, {"scientific", [](std::ostream& s) { s << std::scientific; }, false},
        {"showpos", [](std::ostream& s) { s << std::showpos; }, false}, {"showpoint", [](std::ostream& s) { s << std::showpoint; }, false},
        {"uppercase", [](std::ostream& s) { s << std::uppercase; }, false}, {"width 9", [](std::ostream& s) { s.width(9); }, false},
        {"boolalpha and hex", [](std::ostream& s) { s << std::boolalpha << std::hex; }, true},
        {"decimal comma", [](std::ostream& s) { s.imbue(std::locale(s.getloc(), new CommaDecimal)); }, false}};
    // clang-format on
    for (const auto& c : cases)
    {
        std::ostringstream out;
        c.change(out);
        EXPECT_EQ(c.qualifies, KtStreamFormatsFloatsByDefault(out)) << c.state;
    }
}

// Every tie and all 2^32 floats are compared with printf in the benchmark
// (make bench); here, so that every test run guards the MOV file's digits, a
// spread of floats and doubles of every kind and magnitude.
TEST(KtFormatFloat, MatchesPrintfOnASpreadOfFloatsAndDoubles)
{
    long checked = 0;
    int mismatches = 0;
    auto compare = [&](auto value)
    {
        for (auto signed_ : {value, -value})
        {
            char expected[64], text[kKtFloatTextSize];
            const bool isFloat = sizeof signed_ == sizeof(float);
            int length = isFloat ? referenceFloatText(expected, signed_)
                                 : referenceDoubleText(expected, signed_);
            char* end = isFloat ? KtFormatFloat(text, signed_)
                                : KtFormatDouble(text, signed_);
            ++checked;
            if (std::string(text, end) != std::string(expected, length) &&
                ++mismatches <= 5)
                ADD_FAILURE()
                    << std::hexfloat << signed_ << ": "
                    << std::string(text, end) << " instead of " << expected;
        }
    };
    forEachFloatNearPowerOfTen(16, compare);
    constexpr uint32_t kStride = 2053; // odd, so every low bit pattern occurs
    for (uint32_t bits = 0; bits < 0x80000000u - kStride; bits += kStride)
        compare(floatFromBits(bits));
    for (uint32_t bits = 1; bits < 0x800000u; bits += 97) // subnormals
        compare(floatFromBits(bits));
    forEachDoubleTieAndPowerOfTen(64, compare);
    std::mt19937_64 random(1);
    for (int i = 0; i < 200000; ++i)
    {
        uint64_t bits = random();
        double value = 0.0;
        std::memcpy(&value, &bits, sizeof value);
        compare(value);
        compare(std::ldexp(static_cast<double>(random() >> 11), -53) *
                std::pow(10.0, static_cast<int>(random() % 13) - 6));
    }
    EXPECT_GT(checked, 2800000);
    EXPECT_EQ(0, mismatches);
}

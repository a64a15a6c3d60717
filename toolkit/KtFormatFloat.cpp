// KtFormatFloat: six significant digits of a float, rounded exactly with
// integer arithmetic, laid out as printf's "%g" lays them out.
#include "toolkit/KtFormatFloat.h"

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <locale>
#include <ostream>

namespace
{

using Wide = unsigned __int128;

constexpr int kDigits = 6;
constexpr uint32_t kOneMillion = 1000000;
constexpr uint32_t kLeastSixDigits = 100000;
// "%g" switches to exponent form below 1e-4 and from 1e6 (the precision) on.
constexpr int kLeastFixedExponent = -4;

// A float is m * 2^e with m below 2^24 and e from -149 to 104. Scaling it to
// six digits multiplies by 10^s with s from -34 to 50.
constexpr int kMaxFivePower = 50;
constexpr int kMaxTenPower = 38;
// Doubles are formatted here from 2^-80 (about 8e-25) to below 2^80 (about
// 1.2e24), where scaling them stays within 128 bits: m below 2^53 times 5^s
// for s up to 30, or divided by 10^19 * 2^32 at most.
constexpr int kDoubleBias = 1023;
constexpr int kMaxDoubleBinaryExponent = 80;

template <int N>
struct Powers
{
    Wide value[N + 1];
};

template <int N>
constexpr Powers<N> powers(unsigned base)
{
    Powers<N> table{};
    table.value[0] = 1;
    for (int i = 1; i <= N; ++i)
        table.value[i] = table.value[i - 1] * base;
    return table;
}

constexpr Powers<kMaxFivePower> kFive = powers<kMaxFivePower>(5);
constexpr Powers<kMaxTenPower> kTen = powers<kMaxTenPower>(10);

// floor(b * log10(2)) for the binary exponents of floats; the constant is
// log10(2) * 2^32, close enough that no exponent in range lands on the
// wrong side of an integer.
int floorLog10OfPowerOfTwo(int b)
{
    constexpr int64_t kLog10Of2 = 1292913986;
    if (b >= 0)
        return static_cast<int>((b * kLog10Of2) >> 32);
    return -static_cast<int>((-b * kLog10Of2 + (int64_t(1) << 32) - 1) >> 32);
}

int bitLength(uint32_t m)
{
    return 32 - __builtin_clz(m);
}

// m * 2^e * 10^s split exactly into its integer part and what the rest of
// it is worth for rounding.
enum class Rest
{
    kZero,
    kBelowHalf,
    kHalf,
    kAboveHalf
};

struct Scaled
{
    uint64_t whole;
    Rest rest;
};

template <class T>
Rest classify(T rest, T half)
{
    if (rest == 0)
        return Rest::kZero;
    return rest < half ? Rest::kBelowHalf
                       : (rest == half ? Rest::kHalf : Rest::kAboveHalf);
}

// m * 2^e * 10^s in 128 bits: exact for the mantissas of floats and of
// doubles, as long as m * 5^s, m * 2^e and 10^-s * 2^-e all stay below 2^128
// (the callers keep e and s within that).
Scaled scaleWide(uint64_t m, int e, int s)
{
    if (s >= 0)
    {
        // 10^s = 5^s * 2^s: the product by 5^s is exact, the power of two
        // a shift.
        int shift = e + s;
        Wide product = m * kFive.value[s];
        if (shift >= 0)
            return {static_cast<uint64_t>(product << shift), Rest::kZero};
        Wide whole = product >> -shift;
        return {static_cast<uint64_t>(whole),
                classify(product - (whole << -shift), Wide(1) << (-shift - 1))};
    }
    Wide numerator = Wide(m) << (e > 0 ? e : 0);
    Wide denominator = kTen.value[-s] << (e < 0 ? -e : 0);
    Wide whole = numerator / denominator;
    Wide rest = numerator - whole * denominator;
    // rest / denominator against one half, without halving.
    return {static_cast<uint64_t>(whole), classify(2 * rest, denominator)};
}

// The usual magnitudes of floats (1e-3 to 1e5) need 64 bits only: m * 5^s
// stays below 2^64 for s up to 17.
constexpr int kMaxNarrowFivePower = 17;

Scaled scale(uint32_t m, int e, int s)
{
    int shift = e + s;
    if (s < 0 || s > kMaxNarrowFivePower || shift <= -64)
        return scaleWide(m, e, s);
    uint64_t product = m * static_cast<uint64_t>(kFive.value[s]);
    if (shift >= 0)
        return {product << shift, Rest::kZero};
    uint64_t whole = product >> -shift;
    return {whole,
            classify(product - (whole << -shift), uint64_t(1) << (-shift - 1))};
}

// The usual magnitudes of doubles (1e-4 to 1e6) scale by 5^s of 64 bits
// and keep their integer part and their rest within the two 64-bit halves
// of the product: a shift of 1 to 63 bits splits it.
constexpr int kMaxNarrowDoubleFivePower = 27;

Scaled scale(uint64_t m, int e, int s)
{
    int drop = -(e + s);
    if (s < 0 || s > kMaxNarrowDoubleFivePower || drop < 1 || drop > 63)
        return scaleWide(m, e, s);
    Wide product = m * static_cast<Wide>(static_cast<uint64_t>(kFive.value[s]));
    auto high = static_cast<uint64_t>(product >> 64);
    auto low = static_cast<uint64_t>(product);
    uint64_t whole = (high << (64 - drop)) | (low >> drop);
    uint64_t rest = low & ((uint64_t(1) << drop) - 1);
    return {whole, classify(rest, uint64_t(1) << (drop - 1))};
}

// The same value at one decimal digit less: the dropped digit and the rest
// below it decide the new rest.
Scaled dropDigit(Scaled scaled)
{
    int digit = static_cast<int>(scaled.whole % 10);
    Rest rest = Rest::kAboveHalf;
    if (digit == 0 && scaled.rest == Rest::kZero)
        rest = Rest::kZero;
    else if (digit < 5)
        rest = Rest::kBelowHalf;
    else if (digit == 5 && scaled.rest == Rest::kZero)
        rest = Rest::kHalf;
    return {scaled.whole / 10, rest};
}

// "00" to "99".
struct DigitPairs
{
    char text[200];
};

constexpr DigitPairs digitPairs()
{
    DigitPairs pairs{};
    for (int i = 0; i < 100; ++i)
    {
        pairs.text[2 * i] = static_cast<char>('0' + i / 10);
        pairs.text[2 * i + 1] = static_cast<char>('0' + i % 10);
    }
    return pairs;
}

constexpr DigitPairs kDigitPairs = digitPairs();

void writePair(char* out, uint32_t pair)
{
    std::memcpy(out, &kDigitPairs.text[2 * pair], 2);
}

// The digits are gathered in a machine word, first digit in its lowest byte,
// and stored whole: written to memory pair by pair and read back as a word,
// they would stall the processor on every number.
constexpr int kWordBytes = 8;
constexpr uint64_t kZeroDigits = 0x303030303030ULL; // six '0'
constexpr int kByteBits = 8;

uint64_t pairBits(uint32_t pair)
{
    uint16_t bits = 0;
    std::memcpy(&bits, &kDigitPairs.text[2 * pair], 2);
    return bits;
}

// The first character at out, whatever the machine's byte order; the text
// that follows overwrites what the word adds past its characters.
void storeWord(char* out, uint64_t word)
{
    if (__BYTE_ORDER__ == __ORDER_BIG_ENDIAN__)
        word = __builtin_bswap64(word);
    std::memcpy(out, &word, kWordBytes);
}

char* writeExponent(char* out, int exponent)
{
    *out++ = 'e';
    *out++ = exponent < 0 ? '-' : '+';
    // Float exponents stay below 100, and printf writes at least two digits.
    writePair(out, static_cast<uint32_t>(exponent < 0 ? -exponent : exponent));
    return out + 2;
}

// The six digits of n (100000 to 999999) laid out for the decimal exponent
// of their first digit, without trailing zeros.
char* layOut(char* out, uint32_t n, int exponent)
{
    const uint64_t digits = pairBits(n / 10000) |
                            pairBits(n / 100 % 100) << 16 |
                            pairBits(n % 100) << 32;
    // Trailing '0' characters are the high zero bytes of digits ^ "000000";
    // the first digit is not 0.
    const int count =
        kDigits -
        __builtin_clzll((digits ^ kZeroDigits) << (kByteBits * 2)) / kByteBits;

    if (exponent < kLeastFixedExponent || exponent >= kDigits)
    {
        // "d.ddddd"; a single digit goes without its point.
        storeWord(out,
                  (digits & 0xff) | uint64_t('.') << kByteBits |
                      (digits >> kByteBits) << (kByteBits * 2));
        out += count > 1 ? count + 1 : 1;
        return writeExponent(out, exponent);
    }
    if (exponent < 0)
    {
        std::memcpy(out, "0.000", 5);
        out += 1 - exponent; // "0." and the zeros after the point
        storeWord(out, digits);
        return out + count;
    }
    const int integerDigits = exponent + 1;
    if (count <= integerDigits)
    {
        storeWord(out, digits);
        return out + integerDigits;
    }
    // The point after the integer digits.
    const int split = kByteBits * integerDigits;
    const uint64_t integerPart = digits & ((uint64_t(1) << split) - 1);
    storeWord(out,
              integerPart | uint64_t('.') << split |
                  (digits - integerPart) << kByteBits);
    return out + count + 1;
}

// Six digits from the scaled value, whose first digit stands at 10^exponent
// or, when the estimate of the exponent was one short, at 10^(exponent + 1).
char* roundAndLayOut(char* out, Scaled scaled, int exponent)
{
    if (scaled.whole >= kOneMillion)
    {
        scaled = dropDigit(scaled);
        ++exponent;
    }
    auto n = static_cast<uint32_t>(scaled.whole);
    if (scaled.rest == Rest::kAboveHalf ||
        (scaled.rest == Rest::kHalf && (n & 1)))
        ++n;
    if (n == kOneMillion) // 999999.5 and up round to the next power of ten
    {
        n = kLeastSixDigits;
        ++exponent;
    }
    return layOut(out, n, exponent);
}

} // namespace

char* KtFormatFloat(char* out, float value)
{
    uint32_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    uint32_t fraction = bits & 0x7fffff;
    int biased = static_cast<int>((bits >> 23) & 0xff);
    if (bits >> 31)
        *out++ = '-';
    if (biased == 0xff)
    {
        std::memcpy(out, fraction ? "nan" : "inf", 3);
        return out + 3;
    }
    if (biased == 0 && fraction == 0)
    {
        *out++ = '0';
        return out;
    }

    uint32_t m = biased ? fraction | 0x800000 : fraction;
    int e = biased ? biased - 150 : -149;
    int exponent = floorLog10OfPowerOfTwo(e + bitLength(m) - 1);
    return roundAndLayOut(out, scale(m, e, kDigits - 1 - exponent), exponent);
}

char* KtFormatDouble(char* out, double value)
{
    uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    // Zero of either sign reads as the float's.
    if ((bits << 1) == 0)
        return KtFormatFloat(out, static_cast<float>(value));
    int biased = static_cast<int>((bits >> 52) & 0x7ff);
    if (biased < kDoubleBias - kMaxDoubleBinaryExponent ||
        biased >= kDoubleBias + kMaxDoubleBinaryExponent)
    {
        // Subnormals, the extremes and non-finite values: rare enough for
        // printf, which gives the same text.
        int length = std::snprintf(out, kKtFloatTextSize, "%g", value);
        return out + length;
    }
    if (bits >> 63)
        *out++ = '-';
    uint64_t m = (bits & 0xfffffffffffffULL) | (uint64_t(1) << 52);
    int e = biased - kDoubleBias - 52;
    int exponent = floorLog10OfPowerOfTwo(e + 52);
    return roundAndLayOut(out, scale(m, e, kDigits - 1 - exponent), exponent);
}

bool KtStreamFormatsFloatsByDefault(const std::ostream& out)
{
    constexpr std::ios_base::fmtflags kAltering =
        std::ios_base::floatfield | std::ios_base::showpos |
        std::ios_base::showpoint | std::ios_base::uppercase;
    if ((out.flags() & kAltering) || out.precision() != kDigits ||
        out.width() != 0)
        return false;
    const auto& punctuation = std::use_facet<std::numpunct<char>>(out.getloc());
    return punctuation.decimal_point() == '.' && punctuation.grouping().empty();
}

// verify_format: compares KtFormatFloat with printf's "%g" on every float
// (--all), or on a large sample: every tie, the neighbours of every power of
// ten, all subnormals and a strided sweep of all bit patterns. KtFormatDouble
// is compared on a sample of doubles either way.
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <random>
#include <thread>
#include <vector>

#include "support/float_samples.h"
#include "toolkit/KtFormatFloat.h"

namespace
{

constexpr int kShownMismatches = 10;

class Tally
{
public:
    void check(float value)
    {
        char expected[64];
        int length = referenceFloatText(expected, value);
        char text[kKtFloatTextSize];
        char* end = KtFormatFloat(text, value);
        _checked.fetch_add(1, std::memory_order_relaxed);
        if (end - text == length &&
            std::memcmp(text, expected, static_cast<size_t>(length)) == 0)
            return;
        if (_mismatches.fetch_add(1) < kShownMismatches)
        {
            std::lock_guard<std::mutex> lock(_print);
            std::printf("  %a: \"%.*s\" instead of \"%s\"\n",
                        static_cast<double>(value),
                        static_cast<int>(end - text),
                        text,
                        expected);
        }
    }
    uint64_t checked() const { return _checked; }
    uint64_t mismatches() const { return _mismatches; }

private:
    std::atomic<uint64_t> _checked{0};
    std::atomic<uint64_t> _mismatches{0};
    std::mutex _print;
};

// Bit patterns first to last (inclusive) by stride, shared among threads.
void sweep(
    Tally& tally, uint64_t first, uint64_t last, uint64_t stride, int threads)
{
    std::vector<std::thread> workers;
    for (int t = 0; t < threads; ++t)
        workers.emplace_back(
            [&, t]
            {
                for (uint64_t bits = first + stride * t; bits <= last;
                     bits += stride * threads)
                    tally.check(floatFromBits(static_cast<uint32_t>(bits)));
            });
    for (std::thread& worker : workers)
        worker.join();
}

// Ties and powers of ten, then random doubles: ten million of the usual
// magnitudes (1e-6 to 1e6) and as many bit patterns of any magnitude.
// Returns the number of mismatches, printing the first few.
uint64_t checkDoubles(uint64_t* checked)
{
    uint64_t mismatches = 0;
    auto check = [&](double value)
    {
        char expected[64];
        int length = referenceDoubleText(expected, value);
        char text[kKtFloatTextSize];
        char* end = KtFormatDouble(text, value);
        ++*checked;
        if (end - text == length &&
            std::memcmp(text, expected, static_cast<size_t>(length)) == 0)
            return;
        if (++mismatches <= kShownMismatches)
            std::printf("  %a: \"%.*s\" instead of \"%s\"\n",
                        value,
                        static_cast<int>(end - text),
                        text,
                        expected);
    };
    forEachDoubleTieAndPowerOfTen(4096,
                                  [&](double value)
                                  {
                                      check(value);
                                      check(-value);
                                  });
    std::mt19937_64 random(1);
    constexpr int kRandomCount = 10000000;
    for (int i = 0; i < kRandomCount; ++i)
    {
        uint64_t bits = random();
        double value = 0.0;
        std::memcpy(&value, &bits, sizeof value);
        check(value);
        check(std::ldexp(static_cast<double>(random() >> 11), -53) *
              std::pow(10.0, static_cast<int>(random() % 13) - 6));
    }
    return mismatches;
}

} // namespace

int main(int argc, char** argv)
{
    bool all = false;
    int threads = 1;
    for (int i = 1; i < argc; ++i)
        if (std::strcmp(argv[i], "--all") == 0)
            all = true;
        else if (std::strcmp(argv[i], "--threads") == 0 && i + 1 < argc)
            threads = std::max(1, std::atoi(argv[++i]));
        else
        {
            std::fputs("usage: verify_format [--all] [--threads N]\n", stderr);
            return 2;
        }

    auto start = std::chrono::steady_clock::now();
    Tally tally;
    if (all)
        sweep(tally, 0, 0xffffffffu, 1, threads);
    else
    {
        auto bothSigns = [&](float value)
        {
            tally.check(value);
            tally.check(-value);
        };
        forEachFloatTie(bothSigns);
        forEachFloatNearPowerOfTen(64, bothSigns);
        sweep(tally, 1, 0x7fffff, 1, threads); // positive subnormals
        sweep(tally, 0x80000001u, 0x807fffffu, 1, threads); // negative ones
        sweep(tally, 0, 0xffffffffu, 257, threads);
    }
    double seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start)
            .count();
    std::printf("verify_format: %s: %llu floats checked against printf "
                "\"%%g\", %llu mismatches (%.0f s)\n",
                all ? "every float"
                    : "ties, powers of ten, subnormals, "
                      "every 257th bit pattern",
                static_cast<unsigned long long>(tally.checked()),
                static_cast<unsigned long long>(tally.mismatches()),
                seconds);
    uint64_t doublesChecked = 0;
    uint64_t doubleMismatches = checkDoubles(&doublesChecked);
    std::printf("verify_format: %llu doubles checked against printf \"%%g\", "
                "%llu mismatches\n",
                static_cast<unsigned long long>(doublesChecked),
                static_cast<unsigned long long>(doubleMismatches));
    return tally.mismatches() == 0 && doubleMismatches == 0 ? 0 : 1;
}

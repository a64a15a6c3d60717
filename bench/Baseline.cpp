// bench_baseline: the unavoidable part of a conversion, as a yardstick. It
// reads a motion, parses every number with std::from_chars and writes one
// line per frame with std::to_chars (general format, six significant
// digits); no document, no evaluation.
#include <charconv>
#include <cstdio>
#include <cstring>
#include <vector>

namespace
{

constexpr size_t kChunk = 1 << 20;
constexpr int kSignificantDigits = 6;

bool isBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

class Converter
{
public:
    explicit Converter(FILE* out)
        : _out(out)
    {
        _line.reserve(4096);
    }

    // One line of the motion, without its newline.
    void line(const char* begin, const char* end)
    {
        while (begin < end && isBlank(*begin))
            ++begin;
        if (begin == end || *begin == '#' || *begin == ':')
            return;
        if (*begin >= '0' && *begin <= '9')
        {
            _endFrame();
            _inFrame = true;
            return;
        }
        while (begin < end && !isBlank(*begin)) // the bone name
            ++begin;
        for (;;)
        {
            while (begin < end && isBlank(*begin))
                ++begin;
            float value = 0.0f;
            auto parsed = std::from_chars(begin, end, value);
            if (parsed.ec != std::errc())
                break;
            begin = parsed.ptr;
            char text[32];
            char* textEnd = std::to_chars(text,
                                          text + sizeof text,
                                          value,
                                          std::chars_format::general,
                                          kSignificantDigits)
                                .ptr;
            _line.insert(_line.end(), text, textEnd);
            _line.push_back(' ');
        }
    }

    void finish() { _endFrame(); }

private:
    void _endFrame()
    {
        if (!_inFrame)
            return;
        _line.push_back('\n');
        std::fwrite(_line.data(), 1, _line.size(), _out);
        _line.clear();
    }

    FILE* _out;
    std::vector<char> _line;
    bool _inFrame = false;
};

} // namespace

int main(int argc, char** argv)
{
    if (argc != 3)
    {
        std::fputs("usage: bench_baseline <amc_file> <out_file>\n", stderr);
        return 2;
    }
    FILE* in = std::fopen(argv[1], "rb");
    FILE* out = std::fopen(argv[2], "wb");
    if (!in || !out)
    {
        std::perror("bench_baseline");
        return 1;
    }
    static char outBuffer[kChunk];
    std::setvbuf(out, outBuffer, _IOFBF, sizeof outBuffer);

    Converter converter(out);
    std::vector<char> buffer(kChunk);
    size_t held = 0;
    for (;;)
    {
        size_t got = std::fread(buffer.data() + held, 1, kChunk - held, in);
        held += got;
        const char* start = buffer.data();
        const char* end = start + held;
        for (;;)
        {
            const char* newline =
                static_cast<const char*>(std::memchr(start, '\n', end - start));
            if (!newline)
                break;
            converter.line(start, newline);
            start = newline + 1;
        }
        if (got == 0) // the last line may lack its newline
        {
            converter.line(start, end);
            break;
        }
        held = static_cast<size_t>(end - start);
        std::memmove(buffer.data(), start, held);
        if (held == kChunk)
        {
            std::fputs("bench_baseline: line too long\n", stderr);
            return 1;
        }
    }
    converter.finish();
    bool failed = std::ferror(in) || std::fclose(out) != 0;
    std::fclose(in);
    return failed ? 1 : 0;
}

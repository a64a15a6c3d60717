// bench_generate: writes a realistic capture for the benchmark, a human
// skeleton and a long motion whose values drift smoothly like real data
// (the same seed always gives the same files), or a hostile one: a file made
// of one kind of tiny thing, for the memory table.
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace
{

constexpr double kPi = 3.14159265358979323846;
constexpr double kLengthFactor = 0.45;
constexpr int kSignificantDigits = 6;

// splitmix64: small, fast and the same on every platform, unlike the
// standard library's distributions.
class Random
{
public:
    explicit Random(uint64_t seed)
        : _state(seed)
    {
    }
    double uniform() { return (_next() >> 11) * (1.0 / 9007199254740992.0); }
    double between(double low, double high)
    {
        return low + (high - low) * uniform();
    }

private:
    uint64_t _next()
    {
        uint64_t z = (_state += 0x9e3779b97f4a7c15ULL);
        z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9ULL;
        z = (z ^ (z >> 27)) * 0x94d049bb133111ebULL;
        return z ^ (z >> 31);
    }

    uint64_t _state;
};

struct HumanBone
{
    const char* name;
    const char* parent; // "root" for bones attached to the root
    double direction[3];
    double length;
    double axis[3];
    const char* dofs; // rotations only; "" for none
    bool translatesInVariant;
};

// Thirty bones of a human figure, Y up, facing +Z. Eight bones at depths one
// to six translate in the translating variant.
const HumanBone kBones[] = {
    {"lhipjoint", "root", {0.84, -0.52, 0.14}, 1.3, {0, 0, 28}, "", false},
    {"lfemur",
     "lhipjoint",
     {0.33, -0.94, 0},
     3.7,
     {0, 0, 20},
     "rx ry rz",
     true},
    {"ltibia", "lfemur", {0.33, -0.94, 0}, 3.8, {0, 0, 20}, "rx", false},
    {"lfoot", "ltibia", {0.09, -0.24, 0.97}, 1.15, {-90, 7, 20}, "rx rz", true},
    {"ltoes", "lfoot", {0.05, -0.02, 1}, 0.55, {-90, 7, 20}, "rx", false},
    {"rhipjoint", "root", {-0.84, -0.52, 0.14}, 1.3, {0, 0, -28}, "", false},
    {"rfemur",
     "rhipjoint",
     {-0.33, -0.94, 0},
     3.7,
     {0, 0, -20},
     "rx ry rz",
     false},
    {"rtibia", "rfemur", {-0.33, -0.94, 0}, 3.8, {0, 0, -20}, "rx", true},
    {"rfoot",
     "rtibia",
     {-0.09, -0.24, 0.97},
     1.15,
     {-90, -7, -20},
     "rx rz",
     false},
    {"rtoes", "rfoot", {-0.05, -0.02, 1}, 0.55, {-90, -7, -20}, "rx", false},
    {"lowerback", "root", {0, 1, -0.02}, 1.05, {0, 0, 0}, "rx ry rz", true},
    {"upperback", "lowerback", {0, 1, 0.02}, 1.1, {0, 0, 0}, "rx ry rz", false},
    {"thorax", "upperback", {0, 1, 0.03}, 1.05, {0, 0, 0}, "rx ry rz", true},
    {"lowerneck", "thorax", {0, 1, 0.08}, 0.8, {0, 0, 0}, "rx ry rz", false},
    {"upperneck",
     "lowerneck",
     {0, 1, -0.05},
     0.8,
     {0, 0, 0},
     "rx ry rz",
     false},
    {"head", "upperneck", {0, 1, 0.04}, 0.85, {0, 0, 0}, "rx ry rz", true},
    {"lclavicle",
     "thorax",
     {0.95, 0.3, -0.05},
     1.7,
     {0, 0, -18},
     "ry rz",
     false},
    {"lhumerus", "lclavicle", {1, 0, 0}, 2.6, {0, 0, -90}, "rx ry rz", true},
    {"lradius", "lhumerus", {1, 0, 0}, 1.8, {0, 0, -90}, "rx", false},
    {"lwrist", "lradius", {1, 0, 0}, 0.9, {0, 0, -90}, "ry", false},
    {"lhand", "lwrist", {1, 0, 0}, 0.35, {0, 0, -90}, "rx rz", true},
    {"lfingers", "lhand", {1, 0, 0}, 0.3, {0, 0, -90}, "rx", false},
    {"lthumb", "lhand", {0.7, 0, 0.7}, 0.4, {-90, 0, -45}, "rx rz", false},
    {"rclavicle",
     "thorax",
     {-0.95, 0.3, -0.05},
     1.7,
     {0, 0, 18},
     "ry rz",
     false},
    {"rhumerus", "rclavicle", {-1, 0, 0}, 2.6, {0, 0, 90}, "rx ry rz", false},
    {"rradius", "rhumerus", {-1, 0, 0}, 1.8, {0, 0, 90}, "rx", false},
    {"rwrist", "rradius", {-1, 0, 0}, 0.9, {0, 0, 90}, "ry", false},
    {"rhand", "rwrist", {-1, 0, 0}, 0.35, {0, 0, 90}, "rx rz", false},
    {"rfingers", "rhand", {-1, 0, 0}, 0.3, {0, 0, 90}, "rx", false},
    {"rthumb", "rhand", {-0.7, 0, 0.7}, 0.4, {-90, 0, 45}, "rx rz", false},
};

int countWords(const char* text)
{
    int count = 0;
    for (const char* p = text; *p; ++p)
        if (*p != ' ' && (p == text || p[-1] == ' '))
            ++count;
    return count;
}

std::string dofLine(const HumanBone& bone, bool translating)
{
    std::string dofs =
        translating && bone.translatesInVariant ? "tx ty tz" : "";
    if (*bone.dofs)
        dofs += (dofs.empty() ? "" : " ") + std::string(bone.dofs);
    return dofs;
}

bool writeSkeleton(const char* path, bool translating)
{
    FILE* out = std::fopen(path, "w");
    if (!out)
        return false;
    std::fprintf(out,
                 "# A human skeleton written by motbake's benchmark.\n"
                 ":version 1.10\n:name bench_human\n"
                 ":units\n  mass 1.0\n  length %g\n  angle deg\n"
                 ":documentation\n  Benchmark skeleton, Y up, facing +Z.\n"
                 ":root\n   order TX TY TZ RX RY RZ\n   axis XYZ\n"
                 "   position 0 0 0\n   orientation 0 0 0\n:bonedata\n",
                 kLengthFactor);
    int id = 1;
    for (const HumanBone& bone : kBones)
    {
        std::fprintf(out,
                     "  begin\n     id %d\n     name %s\n"
                     "     direction %g %g %g\n     length %g\n"
                     "     axis %g %g %g XYZ\n",
                     id++,
                     bone.name,
                     bone.direction[0],
                     bone.direction[1],
                     bone.direction[2],
                     bone.length,
                     bone.axis[0],
                     bone.axis[1],
                     bone.axis[2]);
        std::string dofs = dofLine(bone, translating);
        if (!dofs.empty())
        {
            std::fprintf(out, "     dof %s\n", dofs.c_str());
            int count = countWords(dofs.c_str());
            for (int i = 0; i < count; ++i)
                std::fprintf(out,
                             "     %s (-%d %d)\n",
                             i == 0 ? "limits" : "      ",
                             160 - 10 * i,
                             170 - 20 * i);
        }
        std::fprintf(out, "  end\n");
    }
    std::fprintf(out, ":hierarchy\n  begin\n");
    std::vector<const char*> parents = {"root"};
    for (const HumanBone& bone : kBones)
        parents.push_back(bone.name);
    for (const char* parent : parents)
    {
        std::string line;
        for (const HumanBone& bone : kBones)
            if (std::strcmp(bone.parent, parent) == 0)
                line += std::string(" ") + bone.name;
        if (!line.empty())
            std::fprintf(out, "    %s%s\n", parent, line.c_str());
    }
    std::fprintf(out, "  end\n");
    return std::fclose(out) == 0;
}

// One channel: a few slow waves around a base value plus a damped random
// walk, so that neighbouring frames differ a little, as in a real capture.
class Channel
{
public:
    Channel(Random& random, double base, double amplitude)
        : _base(base)
        , _amplitude(amplitude)
    {
        for (Wave& wave : _waves)
        {
            wave.frequency = 2.0 * kPi / random.between(40.0, 400.0);
            wave.phase = random.between(0.0, 2.0 * kPi);
            wave.weight = random.between(0.2, 1.0);
        }
    }

    double next(Random& random, long frame)
    {
        _drift = 0.995 * _drift + random.between(-0.02, 0.02) * _amplitude;
        double value = _base + _drift;
        for (const Wave& wave : _waves)
            value += _amplitude * wave.weight *
                     std::sin(wave.frequency * static_cast<double>(frame) +
                              wave.phase);
        return value;
    }

private:
    struct Wave
    {
        double frequency = 0;
        double phase = 0;
        double weight = 0;
    };

    double _base;
    double _amplitude;
    double _drift = 0.0;
    Wave _waves[3];
};

struct BodyChannels
{
    const char* name;
    std::vector<Channel> channels;
};

std::vector<BodyChannels> makeBodies(Random& random, bool translating)
{
    std::vector<BodyChannels> bodies;
    BodyChannels root{"root", {}};
    root.channels.emplace_back(random, 0.0, 40.0); // tx: walks about
    root.channels.emplace_back(random, 16.5, 0.6); // ty: pelvis height
    root.channels.emplace_back(random, 0.0, 40.0); // tz
    root.channels.emplace_back(random, -5.0, 8.0); // rx
    root.channels.emplace_back(random, 0.0, 90.0); // ry: turns round
    root.channels.emplace_back(random, 0.0, 6.0);  // rz
    bodies.push_back(std::move(root));
    for (const HumanBone& bone : kBones)
    {
        int rotations = countWords(bone.dofs);
        if (rotations == 0)
            continue; // a bone without DOFs has no line
        BodyChannels body{bone.name, {}};
        if (translating && bone.translatesInVariant)
            for (int i = 0; i < 3; ++i)
                body.channels.emplace_back(random, 0.0, 0.4);
        for (int i = 0; i < rotations; ++i)
            body.channels.emplace_back(
                random, random.between(-20.0, 20.0), random.between(2.0, 35.0));
        bodies.push_back(std::move(body));
    }
    return bodies;
}

bool writeMotion(const char* path,
                 bool translating,
                 long frames,
                 Random& random)
{
    FILE* out = std::fopen(path, "w");
    if (!out)
        return false;
    static char buffer[1 << 20];
    std::setvbuf(out, buffer, _IOFBF, sizeof buffer);
    std::fputs("# A motion written by motbake's benchmark.\n"
               ":FULLY-SPECIFIED\n:DEGREES\n",
               out);
    std::vector<BodyChannels> bodies = makeBodies(random, translating);
    char line[512];
    for (long frame = 1; frame <= frames; ++frame)
    {
        std::fprintf(out, "%ld\n", frame);
        for (BodyChannels& body : bodies)
        {
            char* end = line;
            end += std::snprintf(line, sizeof line, "%s", body.name);
            for (Channel& channel : body.channels)
            {
                *end++ = ' ';
                end = std::to_chars(end,
                                    line + sizeof line - 2,
                                    channel.next(random, frame),
                                    std::chars_format::general,
                                    kSignificantDigits)
                          .ptr;
            }
            *end++ = '\n';
            std::fwrite(line, 1, static_cast<size_t>(end - line), out);
        }
    }
    return std::fclose(out) == 0;
}

// ---- Hostile shapes: many tiny things, each as short as the format allows,
// for the memory table. One of the two files is the shape; the other is a
// small partner that converts with it.

// Short distinct names: a, b, ..., z, aa, ab, ...
std::string shortName(long n)
{
    std::string name;
    for (++n; n > 0; n = (n - 1) / 26)
        name.insert(name.begin(), static_cast<char>('a' + (n - 1) % 26));
    return name;
}

const char* const kMinimalBone = " direction 0 0 0 length 0 axis 0 0 0 xyz";

// Appends pieces from piece(n) until the text holds at least bytes bytes.
template <class Piece>
void fill(std::string& text, long bytes, Piece piece)
{
    for (long n = 0; static_cast<long>(text.size()) < bytes; ++n)
        text += piece(n);
}

std::string hostileSkeleton(const std::string& shape, long bytes)
{
    std::string text = ":version 1.10\n";
    auto bone = [](long n, const char* more)
    { return "begin name " + shortName(n) + kMinimalBone + more + " end\n"; };
    if (shape == "skin")
        fill(text += ":skin\n", bytes, [](long) { return "<"; });
    else if (shape == "bones")
        fill(text += ":bonedata\n", bytes, [&](long n) { return bone(n, ""); });
    else if (shape == "dofs")
        fill(text += ":bonedata\n",
             bytes,
             [&](long n) { return bone(n, " dof rx ry rz tx ty tz l"); });
    else if (shape == "limits")
        fill(text += ":bonedata\n",
             bytes,
             [&](long n)
             {
                 return bone(n,
                             " dof rx ry rz tx ty tz l limits (0 1) (0 1) "
                             "(0 1) (0 1) (0 1) (0 1) (0 1)");
             });
    else if (shape == "hierarchy")
    {
        // A thousand bones, then lines that name them again and again.
        std::string children;
        text += ":bonedata\n";
        for (long n = 0; n < 1000; ++n)
        {
            text += bone(n, "");
            children += " " + shortName(n);
        }
        fill(text += ":hierarchy\nbegin\n",
             bytes,
             [&](long) { return "root" + children + "\n"; });
        text += "end\n";
    }
    else if (shape == "groups")
        fill(text = ":asf-internal\n" + text + ":dofgroups\n",
             bytes,
             [](long n) { return "begin name " + shortName(n) + " end\n"; });
    else
        return "";
    return text;
}

std::string hostileMotion(const std::string& shape, long bytes)
{
    std::string text = ":FULLY-SPECIFIED\n:DEGREES\n";
    if (shape == "names")
        fill(text += "1\n", bytes, [](long) { return "a\n"; });
    else if (shape == "lines")
        fill(text,
             bytes,
             [](long n) { return std::string(n % 1000 ? "" : "1\n") + "a\n"; });
    else if (shape == "frames")
        fill(text, bytes, [](long) { return "1\n"; });
    else if (shape == "values")
        fill(text,
             bytes,
             [](long)
             {
                 std::string line = "1\na";
                 for (int i = 0; i < 61; ++i)
                     line += " 1";
                 return line + "\n";
             });
    else
        return "";
    return text;
}

bool writeText(const char* path, const std::string& text)
{
    FILE* out = std::fopen(path, "w");
    if (!out)
        return false;
    bool written = std::fwrite(text.data(), 1, text.size(), out) == text.size();
    return std::fclose(out) == 0 && written;
}

int writeHostile(const std::string& shape,
                 long bytes,
                 const char* asf,
                 const char* amc)
{
    std::string skeleton = hostileSkeleton(shape, bytes);
    std::string motion = hostileMotion(shape, bytes);
    if (skeleton.empty() == motion.empty())
        return 2;
    bool written = skeleton.empty()
                       ? writeSkeleton(asf, false) && writeText(amc, motion)
                       : writeText(asf, skeleton) &&
                             writeText(amc, ":FULLY-SPECIFIED\n:DEGREES\n1\n");
    if (!written)
    {
        std::perror("bench_generate");
        return 1;
    }
    return 0;
}

int usage()
{
    std::fputs("usage: bench_generate standard|translating <frames> <seed> "
               "<asf_file> <amc_file>\n"
               "       bench_generate hostile <shape> <bytes> <asf_file> "
               "<amc_file>\n",
               stderr);
    return 2;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 6)
        return usage();
    if (std::strcmp(argv[1], "hostile") == 0)
    {
        long bytes = std::atol(argv[3]);
        int status =
            bytes > 0 ? writeHostile(argv[2], bytes, argv[4], argv[5]) : 2;
        return status == 2 ? usage() : status;
    }
    bool translating = std::strcmp(argv[1], "translating") == 0;
    if (!translating && std::strcmp(argv[1], "standard") != 0)
        return usage();
    long frames = std::atol(argv[2]);
    uint64_t seed = std::strtoull(argv[3], nullptr, 10);
    if (frames < 1)
        return usage();
    Random random(seed);
    if (!writeSkeleton(argv[4], translating) ||
        !writeMotion(argv[5], translating, frames, random))
    {
        std::perror("bench_generate");
        return 1;
    }
    return 0;
}

// bench_run: generates the benchmark captures, times the converter and the
// exporter's BVH and CSV against the baseline on them (alternating runs,
// medians) and prints the table, measures the exporter's page of a long
// public capture's length, then shows how time and memory grow with the
// number of frames, and the converter's peak memory on hostile shapes.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace
{

constexpr double kMB = 1e6;

// The page: a take as long as a long public capture, the most that its
// page may weigh, and how soon it must be playing.
constexpr long kPageFrames = 3300;
constexpr double kPageTargetMB = 3.0;
constexpr double kReadyTargetMs = 1000.0;
constexpr int kPageLoads = 3;

struct Options
{
    std::string work = "bench-data";
    int runs = 5;
    long frames = 100000;
    unsigned long seed = 1;
    std::vector<long> growth = {10000, 100000, 1000000};
    double memoryMB = 8.0; // size of each hostile shape; 0: no memory table
};

struct Sample
{
    double seconds = 0.0;    // wall time
    double cpuSeconds = 0.0; // user and system time of the program itself
    double peakMB = 0.0;     // maximum resident set size
    bool refused = false;    // status 1, where the caller allows it
};

struct Capture
{
    std::string variant;
    long frames = 0;
    std::string asf;
    std::string amc;
    double sizeMB = 0.0;
};

[[noreturn]] void fail(const std::string& what)
{
    std::fprintf(stderr, "bench_run: %s\n", what.c_str());
    std::exit(1);
}

double fileMB(const std::string& path)
{
    struct stat info;
    if (stat(path.c_str(), &info) != 0)
        return -1.0;
    return static_cast<double>(info.st_size) / kMB;
}

std::string loadAverage()
{
    char text[64] = "?";
    if (FILE* in = std::fopen("/proc/loadavg", "r"))
    {
        if (!std::fgets(text, sizeof text, in))
            std::strcpy(text, "?");
        std::fclose(in);
    }
    std::string load(text);
    // The first three fields: 1, 5 and 15 minute averages.
    size_t end = 0;
    for (int fields = 0; fields < 3 && end != std::string::npos; ++fields)
        end = load.find(' ', end + 1);
    return load.substr(0, end);
}

// Runs a program with its standard output to outPath and its errors
// discarded; the time is wall time from start to exit, the memory the
// child's own peak. A refusal (status 1) is a result when mayRefuse.
Sample run(const std::vector<std::string>& command,
           const std::string& outPath = "/dev/null",
           bool mayRefuse = false)
{
    std::vector<char*> argv;
    for (const std::string& arg : command)
        argv.push_back(const_cast<char*>(arg.c_str()));
    argv.push_back(nullptr);

    auto start = std::chrono::steady_clock::now();
    pid_t child = fork();
    if (child < 0)
        fail("cannot fork");
    if (child == 0)
    {
        int out = open(outPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        int null = open("/dev/null", O_WRONLY);
        dup2(out, STDOUT_FILENO);
        dup2(null, STDERR_FILENO);
        execv(argv[0], argv.data());
        _exit(127);
    }
    int status = 0;
    struct rusage usage;
    if (wait4(child, &status, 0, &usage) != child)
        fail("cannot wait for " + command[0]);
    auto stop = std::chrono::steady_clock::now();
    Sample sample;
    sample.refused = mayRefuse && WIFEXITED(status) && WEXITSTATUS(status) == 1;
    if (!WIFEXITED(status) || (WEXITSTATUS(status) != 0 && !sample.refused))
        fail(command[0] + " failed on " + command[command.size() - 2]);
    sample.seconds = std::chrono::duration<double>(stop - start).count();
    sample.cpuSeconds =
        static_cast<double>(usage.ru_utime.tv_sec) +
        static_cast<double>(usage.ru_stime.tv_sec) +
        (usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) * 1e-6;
    sample.peakMB = static_cast<double>(usage.ru_maxrss) * 1024.0 / kMB;
    return sample;
}

// Captures are kept between runs of the benchmark: the name holds every
// parameter, and the generator writes under a temporary name first.
Capture capture(const Options& options, const std::string& variant, long frames)
{
    Capture c;
    c.variant = variant;
    c.frames = frames;
    std::string stem = options.work + "/" + variant + "-" +
                       std::to_string(frames) + "-seed" +
                       std::to_string(options.seed);
    c.asf = stem + ".asf";
    c.amc = stem + ".amc";
    if (fileMB(c.amc) <= 0.0 || fileMB(c.asf) <= 0.0)
    {
        std::printf("generating %s ...\n", c.amc.c_str());
        std::fflush(stdout);
        std::string asfTemp = c.asf + ".part";
        std::string amcTemp = c.amc + ".part";
        run({GENERATE_BIN,
             variant,
             std::to_string(frames),
             std::to_string(options.seed),
             asfTemp,
             amcTemp});
        if (std::rename(asfTemp.c_str(), c.asf.c_str()) != 0 ||
            std::rename(amcTemp.c_str(), c.amc.c_str()) != 0)
            fail("cannot rename the generated files");
    }
    c.sizeMB = fileMB(c.amc);
    return c;
}

Sample convert(const Options& options, const Capture& c)
{
    std::string out = options.work + "/out-" + c.variant;
    return run(
        {MOTBAKE_BIN, "-f", c.asf, c.amc, "30", out + ".mel", out + ".mov"});
}

// The exporter writes one format per run, so that each is timed alone.
Sample
exportTo(const Options& options, const Capture& c, const std::string& extension)
{
    return run({MOTEXPORT_BIN,
                "-f",
                c.asf,
                c.amc,
                "30",
                options.work + "/out-" + c.variant + extension});
}

// The numbers of a text output from the line after the one that starts with
// marker (from the start when marker is empty): runs of characters between
// blanks, commas and line ends.
long numbersIn(const std::string& path, const std::string& marker)
{
    std::ifstream in(path);
    if (!in)
        fail("cannot read " + path);
    bool counting = marker.empty();
    long count = 0;
    for (std::string line; std::getline(in, line);)
    {
        if (!counting)
        {
            counting = line.compare(0, marker.size(), marker) == 0;
            continue;
        }
        bool inNumber = false;
        for (char c : line)
        {
            const bool separator = c == ' ' || c == ',' || c == '\r';
            count += !separator && !inNumber;
            inNumber = !separator;
        }
    }
    return count;
}

Sample baseline(const Options& options, const Capture& c)
{
    return run({BASELINE_BIN,
                c.amc,
                options.work + "/out-" + c.variant + ".baseline"});
}

// The median time and the median peak, each taken on its own.
Sample median(std::vector<Sample> samples)
{
    auto middle = [&](auto field)
    {
        std::vector<double> values;
        for (const Sample& s : samples)
            values.push_back(s.*field);
        std::sort(values.begin(), values.end());
        size_t n = values.size();
        return n % 2 ? values[n / 2] : (values[n / 2 - 1] + values[n / 2]) / 2;
    };
    Sample m;
    m.seconds = middle(&Sample::seconds);
    m.cpuSeconds = middle(&Sample::cpuSeconds);
    m.peakMB = middle(&Sample::peakMB);
    return m;
}

void printRow(const char* program, const Capture& c, const Sample& s)
{
    std::printf("  %-12s %-9s %9.1f %10.3f %9.3f %9.1f %9.1f %8.2f\n",
                c.variant.c_str(),
                program,
                c.sizeMB,
                s.seconds,
                s.cpuSeconds,
                c.sizeMB / s.seconds,
                s.peakMB,
                s.peakMB / c.sizeMB);
}

// The exports against the baseline, per number printed: the exporter
// prints other numbers than the baseline, which prints the motion's own.
void compareExports(const Options& options,
                    const Capture& c,
                    const Sample& base,
                    const Sample& bvh,
                    const Sample& csv)
{
    const std::string out = options.work + "/out-" + c.variant;
    const double baseNumbers =
        static_cast<double>(numbersIn(out + ".baseline", ""));
    const struct
    {
        const char* format;
        Sample sample;
        long numbers;
        double timeTarget; // per number printed; 0: none
    } exports[] = {{"bvh", bvh, numbersIn(out + ".bvh", "Frame Time:"), 1.0},
                   {"csv", csv, numbersIn(out + ".csv", "frame,"), 0.0}};
    constexpr double kPeakTarget = 1.5;
    for (const auto& e : exports)
    {
        const double perNumber =
            (e.sample.seconds / static_cast<double>(e.numbers)) /
            (base.seconds / baseNumbers);
        std::printf("  %-12s motexport %s/baseline time %.2f, %.2f per number "
                    "printed (%ld against %.0f)",
                    c.variant.c_str(),
                    e.format,
                    e.sample.seconds / base.seconds,
                    perNumber,
                    e.numbers,
                    baseNumbers);
        if (e.timeTarget > 0)
            std::printf(" (target %.1f)", e.timeTarget);
        std::printf(", peak/in %.2f (target %.1f)\n",
                    e.sample.peakMB / c.sizeMB,
                    kPeakTarget);
    }
}

void compare(const Options& options)
{
    std::vector<Capture> captures = {
        capture(options, "standard", options.frames),
        capture(options, "translating", options.frames)};
    std::vector<std::vector<Sample>> converter(captures.size());
    std::vector<std::vector<Sample>> base(captures.size());
    // The exporter on the standard capture.
    std::vector<Sample> bvh;
    std::vector<Sample> csv;
    std::string loadBefore = loadAverage();
    // Alternating, so that a change in the machine's load touches all.
    for (int r = 0; r < options.runs; ++r)
        for (size_t i = 0; i < captures.size(); ++i)
        {
            converter[i].push_back(convert(options, captures[i]));
            base[i].push_back(baseline(options, captures[i]));
            if (i > 0)
                continue;
            bvh.push_back(exportTo(options, captures[i], ".bvh"));
            csv.push_back(exportTo(options, captures[i], ".csv"));
        }

    std::printf("\n%ld frames, seed %lu, %d alternating runs each; "
                "load average %s before, %s after\n\n",
                options.frames,
                options.seed,
                options.runs,
                loadBefore.c_str(),
                loadAverage().c_str());
    std::printf("  %-12s %-9s %9s %10s %9s %9s %9s %8s\n",
                "motion",
                "program",
                "input MB",
                "median s",
                "cpu s",
                "MB/s",
                "peak MB",
                "peak/in");
    const double timeTargets[] = {1.0, 1.3};
    std::vector<double> ratios;
    std::vector<double> cpuRatios;
    for (size_t i = 0; i < captures.size(); ++i)
    {
        Sample c = median(converter[i]);
        Sample b = median(base[i]);
        printRow("motbake", captures[i], c);
        printRow("baseline", captures[i], b);
        ratios.push_back(c.seconds / b.seconds);
        cpuRatios.push_back(c.cpuSeconds / b.cpuSeconds);
    }
    printRow("bvh", captures[0], median(bvh));
    printRow("csv", captures[0], median(csv));
    std::printf("\n");
    for (size_t i = 0; i < captures.size(); ++i)
        std::printf("  %-12s motbake/baseline time %.2f (target %.1f), "
                    "cpu %.2f\n",
                    captures[i].variant.c_str(),
                    ratios[i],
                    timeTargets[i],
                    cpuRatios[i]);
    compareExports(
        options, captures[0], median(base[0]), median(bvh), median(csv));
}

// The page's own report of when it drew its first frame, in milliseconds
// from the start of its navigation; negative when it has none.
double readyMs(const std::string& documentPath)
{
    std::ifstream in(documentPath);
    for (std::string line; std::getline(in, line);)
        if (line.compare(0, 9, "ready-ms ") == 0)
            return std::atof(line.c_str() + 9);
    return -1.0;
}

// The page of a take as long as a long public capture: its size, the
// export's time, and how soon headless chromium has it drawn and playing.
void page(const Options& options)
{
    const Capture c = capture(options, "standard", kPageFrames);
    const std::string html = options.work + "/out-page.html";
    const Sample exported =
        run({MOTEXPORT_BIN, "-f", c.asf, c.amc, "30", html});
    std::printf("\npage, motexport -f to .html, %ld frames\n\n", kPageFrames);
    std::printf("  size %.2f MB (target at most %.1f), export %.3f s\n",
                fileMB(html),
                kPageTargetMB,
                exported.seconds);
    if (access("/usr/bin/chromium", X_OK) != 0)
    {
        std::printf("  chromium is not installed (make test installs it): "
                    "no load time\n");
        return;
    }
    char* absolute = realpath(html.c_str(), nullptr);
    const std::string address = std::string("file://") + absolute;
    std::free(absolute);
    const std::string document = options.work + "/out-page.dom";
    std::vector<double> ready;
    std::vector<Sample> loads;
    for (int i = 0; i < kPageLoads; ++i)
    {
        loads.push_back(
            run({HEADLESS_CHROMIUM, "--dump-dom", address}, document));
        ready.push_back(readyMs(document));
    }
    std::sort(ready.begin(), ready.end());
    if (ready.front() < 0)
    {
        std::printf("  the page reported no first frame: see %s\n",
                    document.c_str());
        return;
    }
    std::printf("  first frame drawn %.0f ms after the page's navigation "
                "started (target %.0f), median of %d; chromium's whole run "
                "%.2f s\n",
                ready[kPageLoads / 2],
                kReadyTargetMs,
                kPageLoads,
                median(loads).seconds);
}

void growth(const Options& options)
{
    std::printf(
        "\ngrowth, motbake -f on the standard motion (one run each)\n\n");
    std::printf("  %10s %9s %10s %9s %9s %10s\n",
                "frames",
                "input MB",
                "seconds",
                "cpu s",
                "peak MB",
                "us/frame");
    for (long frames : options.growth)
    {
        Capture c = capture(options, "standard", frames);
        Sample s = convert(options, c);
        std::printf("  %10ld %9.1f %10.3f %9.3f %9.1f %10.2f\n",
                    frames,
                    c.sizeMB,
                    s.seconds,
                    s.cpuSeconds,
                    s.peakMB,
                    s.seconds * 1e6 / static_cast<double>(frames));
        std::fflush(stdout);
    }
}

// Files made of one kind of tiny thing, each as short as the format allows;
// the converter's peak memory is held to 8 times the shape's size.
constexpr double kMemoryTarget = 8.0;
const char* const kSkeletonShapes[] = {
    "skin", "bones", "dofs", "limits", "hierarchy", "groups"};
const char* const kMotionShapes[] = {"names", "lines", "frames", "values"};

void memory(const Options& options)
{
    std::printf("\nmemory, each program -f on hostile shapes of %.0f MB "
                "(target: peak at most %.0fx the input; peak/in is "
                "motbake's, then rigbake's, then motexport's to BVH)\n\n",
                options.memoryMB,
                kMemoryTarget);
    std::printf("  %-10s %-9s %9s %9s %8s %8s %9s\n",
                "shape",
                "file",
                "input MB",
                "peak MB",
                "peak/in",
                "rigbake",
                "motexport");
    auto row = [&](const char* shape, bool skeleton)
    {
        long bytes = static_cast<long>(options.memoryMB * kMB);
        std::string stem =
            options.work + "/hostile-" + shape + "-" + std::to_string(bytes);
        Capture c;
        c.variant = shape;
        c.asf = stem + ".asf";
        c.amc = stem + ".amc";
        if (fileMB(c.asf) <= 0.0 || fileMB(c.amc) <= 0.0)
            run({GENERATE_BIN,
                 "hostile",
                 shape,
                 std::to_string(bytes),
                 c.asf,
                 c.amc});
        double inputMB = fileMB(skeleton ? c.asf : c.amc);
        Sample s = convert(options, c);
        Sample rig = run(
            {RIGBAKE_BIN, "-f", c.asf, stem + "-rig.mel"}, "/dev/null", true);
        Sample bvh =
            run({MOTEXPORT_BIN, "-f", c.asf, c.amc, "30", stem + ".bvh"},
                "/dev/null",
                true);
        std::printf("  %-10s %-9s %9.1f %9.1f %8.2f %8.2f %9.2f%s\n",
                    shape,
                    skeleton ? "skeleton" : "motion",
                    inputMB,
                    s.peakMB,
                    s.peakMB / inputMB,
                    rig.peakMB / inputMB,
                    bvh.peakMB / inputMB,
                    rig.refused   ? " (rigbake refuses it)"
                    : bvh.refused ? " (motexport refuses it)"
                                  : "");
        std::fflush(stdout);
    };
    for (const char* shape : kSkeletonShapes)
        row(shape, true);
    for (const char* shape : kMotionShapes)
        row(shape, false);
}

std::vector<long> frameList(const char* text)
{
    std::vector<long> list;
    for (const char* p = text; *p;)
    {
        char* end = nullptr;
        long n = std::strtol(p, &end, 10);
        if (end == p || n < 1)
            fail(std::string("bad frame list: ") + text);
        list.push_back(n);
        p = *end == ',' ? end + 1 : end;
    }
    return list;
}

Options parse(int argc, char** argv)
{
    Options options;
    for (int i = 1; i < argc; ++i)
    {
        std::string arg = argv[i];
        bool hasValue = i + 1 < argc;
        if (arg == "--work" && hasValue)
            options.work = argv[++i];
        else if (arg == "--runs" && hasValue)
            options.runs = std::max(1, std::atoi(argv[++i]));
        else if (arg == "--frames" && hasValue)
            options.frames = std::max(1L, std::atol(argv[++i]));
        else if (arg == "--seed" && hasValue)
            options.seed = std::strtoul(argv[++i], nullptr, 10);
        else if (arg == "--growth" && hasValue)
            options.growth = frameList(argv[++i]);
        else if (arg == "--no-growth")
            options.growth.clear();
        else if (arg == "--memory" && hasValue)
            options.memoryMB = std::max(0.0, std::atof(argv[++i]));
        else
            fail("usage: bench_run [--work DIR] [--runs N] [--frames N] "
                 "[--seed N] [--growth N,N,...] [--no-growth] "
                 "[--memory MB]");
    }
    return options;
}

} // namespace

int main(int argc, char** argv)
{
    Options options = parse(argc, argv);
    mkdir(options.work.c_str(), 0777);
    compare(options);
    page(options);
    growth(options);
    if (options.memoryMB > 0.0)
        memory(options);
    return 0;
}

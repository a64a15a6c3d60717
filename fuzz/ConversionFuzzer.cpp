// Fuzz target: a whole conversion held in memory. The input is a skeleton,
// a motion and the filter text, separated by kDocumentSeparator. Besides
// surviving, a successful run must keep its promise: as many channels in
// the script as columns after the time in each MOV line of a frame that
// holds the first frame's bodies.
#include <cstdlib>
#include <sstream>

#include "amc/KaAMC.h"
#include "app/Conversion.h"
#include "asf/KaASF.h"
#include "fuzz/FuzzInput.h"
#include "pose/BodyTable.h"
#include "toolkit/KtError.h"

namespace
{

int countLines(const std::string& text, const std::string& start)
{
    int count = 0;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
        count += line.compare(0, start.size(), start) == 0;
    return count;
}

// Every value of a line is followed by one blank.
int countColumnsAfterTime(const std::string& line)
{
    int blanks = 0;
    for (char c : line)
        blanks += c == ' ';
    return blanks - 1;
}

// Which bodies a frame holds.
std::vector<bool> presence(BodyTable& bodies, const KaAMCField& frame)
{
    bodies.bind(frame);
    std::vector<bool> present(bodies.count());
    for (int body = 0; body < bodies.count(); ++body)
        present[body] = bodies.values(body) != nullptr;
    return present;
}

void checkChannels(const KaASF& skeleton,
                   const KaAMC& motion,
                   const ConvertedTexts& texts)
{
    const int channels =
        countLines(texts.mel, "  defineVirtualDevice -channel ");
    if (channels != countLines(texts.mel, "  attachDeviceAttr "))
        std::abort();
    BodyTable bodies(skeleton, &motion.boneNames());
    std::istringstream lines(texts.mov);
    std::string line;
    for (int f = 0; f < motion.numFields(); ++f)
    {
        if (!std::getline(lines, line))
            std::abort();
        if (presence(bodies, motion.field(f)) !=
            presence(bodies, motion.field(0)))
            continue;
        if (countColumnsAfterTime(line) != channels)
            std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size > kMaxFuzzInput)
        return 0;
    theExceptObj.clear();
    std::vector<std::string> parts = splitDocuments(fuzzText(data, size), 3);
    KaASF skeleton;
    KaAMC motion;
    // The run stops at a read error; warnings let it go on.
    if (readDocuments(parts[0], parts[1], &skeleton, &motion))
    {
        ConversionSettings settings;
        settings.fps = 30;
        settings.filterText = parts[2].c_str();
        ConvertedTexts texts = convertInMemory(skeleton, motion, settings);
        if (texts.status == 0)
            checkChannels(skeleton, motion, texts);
    }
    theExceptObj.clear();
    return 0;
}

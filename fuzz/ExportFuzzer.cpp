// Fuzz target: motexport's whole run held in memory. The input is a
// skeleton, a motion and the output kinds (the names of the outputs, such
// as "a.bvh b.csv c.html"), separated by kDocumentSeparator. A run that
// succeeds must write only finite numbers.
#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

#include "amc/KaAMC.h"
#include "asf/KaASF.h"
#include "fuzz/FuzzInput.h"
#include "motexport/ExportFormat.h"
#include "motexport/ExportRun.h"
#include "toolkit/KtError.h"

namespace
{

// Names with a known extension; at most one of each kind, so that an input
// cannot ask for a thousand pages.
std::vector<std::string> outputNames(const std::string& text)
{
    std::vector<std::string> names;
    std::istringstream words(text);
    for (std::string word; words >> word && names.size() < 3;)
        if (exportFormatOf(word.c_str()))
            names.push_back(word);
    if (names.empty())
        names.push_back("take.bvh");
    return names;
}

// The numbers of a BVH file follow its MOTION line, a CSV file's its header
// row; names before them may hold any letters. The page's numbers are
// binary.
void checkFinite(const std::string& text)
{
    std::string::size_type numbers = text.npos;
    if (text.compare(0, 9, "HIERARCHY") == 0)
        numbers = text.find("\nMOTION\n");
    else if (text.compare(0, 10, "frame,time") == 0)
        numbers = text.find('\n');
    if (numbers == text.npos)
        return;
    for (const char* word : {"nan", "inf"})
        if (text.find(word, numbers) != text.npos)
            std::abort();
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
        const std::vector<std::string> names = outputNames(parts[2]);
        ExportArguments run;
        run.asfFile = "skeleton.asf";
        run.amcFile = "motion.amc";
        run.fps = 120.0;
        for (const std::string& name : names)
            run.outputs.push_back(name.c_str());
        ExportedTexts texts = exportInMemory(skeleton, motion, run);
        if (texts.status == 0)
            for (const std::string& text : texts.outputs)
                checkFinite(text);
    }
    theExceptObj.clear();
    return 0;
}

// Fuzz target: a whole conversion held in memory. The input is a skeleton,
// a motion and the filter text, separated by kDocumentSeparator; both
// outputs go to memory streams.
#include <sstream>

#include "amc/KaAMC.h"
#include "app/MelWriter.h"
#include "app/MovWriter.h"
#include "app/RunSequence.h"
#include "asf/KaASF.h"
#include "fuzz/FuzzInput.h"
#include "toolkit/KtError.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size > kMaxFuzzInput)
        return 0;
    theExceptObj.clear();
    std::vector<std::string> parts = splitDocuments(fuzzText(data, size), 3);
    std::istringstream skeletonText(parts[0]);
    std::istringstream motionText(parts[1]);
    KaASF skeleton;
    KaAMC motion;
    skeleton.scanFrom(skeletonText);
    if (!theExceptObj.errorOccurred())
        motion.scanFrom(motionText);
    // The run stops at a read error; warnings let it go on.
    if (!theExceptObj.errorOccurred())
    {
        checkDOFCounts(skeleton, motion);
        theExceptObj.clear();
        theFilterText = parts[2].c_str();
        std::ostringstream mel;
        writeMELScript(mel, skeleton, motion, 30);
        theExceptObj.clear();
        std::ostringstream mov;
        writeMOVData(mov, skeleton, motion, 30);
    }
    theExceptObj.clear();
    return 0;
}

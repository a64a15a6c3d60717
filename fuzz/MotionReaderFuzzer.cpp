// Fuzz target: the motion reader on any bytes; whatever it accepts is
// copied, searched by name and written back.
#include <sstream>

#include "amc/KaAMC.h"
#include "fuzz/FuzzInput.h"
#include "toolkit/KtError.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size > kMaxFuzzInput)
        return 0;
    theExceptObj.clear();
    std::istringstream in(fuzzText(data, size));
    KaAMC motion;
    motion.scanFrom(in);
    theExceptObj.clear();
    // Also after a failure: a failed read must leave a usable document.
    KaAMC copy(motion);
    for (int i = 0; i < copy.numFields(); ++i)
        for (const char* name : copy.boneNames())
            copy.field(i).findBone(name);
    std::ostringstream out;
    copy.printOn(out);
    theExceptObj.clear();
    std::istringstream back(out.str());
    KaAMC reread;
    reread.scanFrom(back);
    theExceptObj.clear();
    return 0;
}

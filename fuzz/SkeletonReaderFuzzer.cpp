// Fuzz target: the skeleton reader (and under it the tokenizer) on any
// bytes; whatever it accepts is copied, written and read back.
#include <sstream>

#include "asf/KaASF.h"
#include "fuzz/FuzzInput.h"
#include "toolkit/KtError.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size > kMaxFuzzInput)
        return 0;
    theExceptObj.clear();
    std::istringstream in(fuzzText(data, size));
    KaASF skeleton;
    skeleton.scanFrom(in);
    if (!theExceptObj.errorOccurred())
    {
        // The writer and the copy see every shape the reader lets through;
        // what the writer makes must not upset the reader either.
        KaASF copy(skeleton);
        std::ostringstream out;
        copy.printOn(out);
        copy.printBoneListOn(out);
        std::istringstream back(out.str());
        KaASF reread;
        reread.scanFrom(back);
    }
    theExceptObj.clear();
    std::istringstream header(fuzzText(data, size));
    KaASF::streamContainsASF(header, nullptr, nullptr);
    theExceptObj.clear();
    return 0;
}

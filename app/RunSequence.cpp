// The run: read both inputs, cross-check them, write the two outputs.
#include "app/RunSequence.h"

#include <iostream>

int runConversion(const RunArguments&)
{
    std::cerr << "ERROR: This build of motbake cannot convert yet.\n";
    return 1;
}

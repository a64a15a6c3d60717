// motexport: exports an ASF skeleton and an AMC motion to BVH and CSV.
#include "motexport/CommandLine.h"

int main(int argc, char** argv)
{
    return motexportMain(argc, argv);
}

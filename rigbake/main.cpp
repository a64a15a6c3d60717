// rigbake: writes the MEL script that builds an ASF skeleton's joints in Maya.
#include "rigbake/CommandLine.h"

int main(int argc, char** argv)
{
    return rigbakeMain(argc, argv);
}

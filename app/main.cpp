// motbake: converts an ASF skeleton and an AMC motion into Maya's MOV and MEL.
#include "app/CommandLine.h"

int main(int argc, char** argv)
{
    return motbakeMain(argc, argv);
}

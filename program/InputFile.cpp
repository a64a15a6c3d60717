// Reading one input file the way every program of the toolset announces it.
#include "program/InputFile.h"

#include <iostream>

#include "toolkit/KtError.h"
#include "toolkit/KtFile.h"

bool readInputFile(const char* path, const std::function<void()>& read)
{
    KtPathCheckReadAccess(path);
    if (KtCheckException())
        return false;
    std::cout << "Reading file: " << path << " ..." << std::flush;
    read();
    if (KtCheckException())
        return false;
    std::cout << "done.\n" << std::flush;
    return true;
}

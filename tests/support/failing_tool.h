// FailingTool: a command of the given name, found first through PATH, that
// reads all its input and then fails, for as long as the object lives.
#pragma once

#include <cstdlib>
#include <string>
#include <sys/stat.h>

#include "support/test_helpers.h"

class FailingTool
{
public:
    explicit FailingTool(const std::string& name)
    {
        const char* path = std::getenv("PATH");
        _savedPath = path ? path : "";
        const std::string tool = _bin.file(name);
        writeFile(tool, "#!/bin/sh\ncat >/dev/null\nexit 1\n");
        chmod(tool.c_str(), 0755);
        setenv("PATH", (_bin.path() + ":" + _savedPath).c_str(), 1);
    }
    ~FailingTool() { setenv("PATH", _savedPath.c_str(), 1); }
    FailingTool(const FailingTool&) = delete;
    FailingTool& operator=(const FailingTool&) = delete;

private:
    TempDir _bin;
    std::string _savedPath;
};

// Reading one input file the way every program of the toolset announces it.
#pragma once

#include <functional>

// Checks that the file can be read, writes "Reading file: <path> ...", runs
// read and writes "done.". Whatever is pending afterwards is printed.
// Returns false when the run must stop: the file cannot be read or read()
// left an error.
bool readInputFile(const char* path, const std::function<void()>& read);

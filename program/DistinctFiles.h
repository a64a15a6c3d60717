// The check that no output of a run would overwrite an input or another
// output of the same run.
#pragma once

#include <vector>

// Compares files, not spellings: links, "./" and other paths to one file
// count as the same file. An output that does not exist yet is identified
// by its folder and its name. Posts an error for the first output that is an
// input or an earlier output, and returns false; true when all differ.
bool checkDistinctFiles(const std::vector<const char*>& inputs,
                        const std::vector<const char*>& outputs);

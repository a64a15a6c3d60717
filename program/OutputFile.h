// Writing one output file the way every program of the toolset does: the
// overwrite question, the write check, the progress lines and a write that
// is confirmed complete.
#pragma once

#include <functional>
#include <iosfwd>

// Writes the whole content of a file.
using ContentWriter = std::function<void(std::ostream&)>;

// Asks on standard output/input before an existing file is replaced. End of
// input counts as "no".
bool askOverwrite(const char* path);

// Write check, "Writing \"<path>\"...", the file opened (created or
// truncated), the content, "done.". Failures are posted: the check's
// reasons, "Unable to open \"<path>\".", or an error of the content or an
// incomplete write under "Unable to save \"<path>\".". What was written of
// a failed file stays in it.
void writeOutputFile(const char* path, const ContentWriter& writeContent);

// The same, except that the content goes to a temporary file beside the
// target, which replaces the target only when it is complete: a failed
// write leaves the target as it was and nothing else behind.
void writeOutputFileWhole(const char* path, const ContentWriter& writeContent);

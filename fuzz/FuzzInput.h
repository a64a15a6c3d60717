// What the fuzz targets share: the size cap and the split of one input into
// the documents of a conversion.
#pragma once

#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

#include "amc/KaAMC.h"
#include "asf/KaASF.h"
#include "toolkit/KtError.h"

// Real skeletons are a few kilobytes; larger inputs only slow the search.
// The replay feeds saved inputs through the same cap.
constexpr size_t kMaxFuzzInput = 128 * 1024;

// Between the skeleton, the motion and the filter text of one input.
constexpr const char* kDocumentSeparator = "\n%%\n";

inline std::string fuzzText(const uint8_t* data, size_t size)
{
    return std::string(reinterpret_cast<const char*>(data), size);
}

// The parts of text between separators, at most count of them: the last
// part keeps any further separators. Missing parts are empty.
inline std::vector<std::string> splitDocuments(const std::string& text,
                                               size_t count)
{
    std::vector<std::string> parts;
    const std::string separator = kDocumentSeparator;
    size_t start = 0;
    while (parts.size() + 1 < count)
    {
        size_t end = text.find(separator, start);
        if (end == std::string::npos)
            break;
        parts.push_back(text.substr(start, end - start));
        start = end + separator.size();
    }
    parts.push_back(text.substr(start));
    parts.resize(count);
    return parts;
}

// Reads the skeleton and then, unless it failed, the motion, as a program
// reads its inputs. Returns true when both read; warnings are dropped.
inline bool readDocuments(const std::string& skeletonText,
                          const std::string& motionText,
                          KaASF* skeleton,
                          KaAMC* motion)
{
    std::istringstream skeletonIn(skeletonText);
    skeleton->scanFrom(skeletonIn);
    if (theExceptObj.errorOccurred())
        return false;
    std::istringstream motionIn(motionText);
    motion->scanFrom(motionIn);
    bool read = !theExceptObj.errorOccurred();
    theExceptObj.clear();
    return read;
}

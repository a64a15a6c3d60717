// The formats of motexport: one entry per extension.
#include "motexport/ExportFormat.h"

#include <cstring>
#include <iterator>

#include "motexport/BvhWriter.h"
#include "motexport/CsvWriter.h"
#include "toolkit/KtStr.h"

namespace
{

constexpr ExportFormat kFormats[] = {{".bvh", writeBVH}, {".csv", writeCSV}};

} // namespace

const ExportFormat* exportFormatOf(const char* path)
{
    const size_t length = std::strlen(path);
    for (const ExportFormat& format : kFormats)
    {
        const size_t extension = std::strlen(format.extension);
        if (length >= extension &&
            KtStr(path + length - extension).iCmp(format.extension) == 0)
            return &format;
    }
    return nullptr;
}

std::string knownExtensions()
{
    std::string list;
    const size_t count = std::size(kFormats);
    for (size_t i = 0; i < count; ++i)
    {
        if (i > 0)
            list += i + 1 == count ? " or " : ", ";
        list += kFormats[i].extension;
    }
    return list;
}

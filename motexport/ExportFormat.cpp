// The formats of motexport: one entry per extension.
#include "motexport/ExportFormat.h"

#include <cstring>
#include <iterator>

#include "motexport/BvhWriter.h"
#include "motexport/CsvWriter.h"
#include "motexport/HtmlWriter.h"
#include "toolkit/KtStr.h"

namespace
{

// BVH and CSV show nothing of the run but the motion.
constexpr ExportFormat kFormats[] = {
    {".bvh",
     [](std::ostream& out, PosedMotion& motion, const ExportSource&)
     { return writeBVH(out, motion); }},
    {".csv",
     [](std::ostream& out, PosedMotion& motion, const ExportSource&)
     { return writeCSV(out, motion); }},
    {".html", writeHTML}};

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

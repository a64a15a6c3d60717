// The AMC writer: the text of a motion, a field and a bone, and saving it.
#include <cstdlib>
#include <ostream>

#include "amc/KaAMC.h"
#include "toolkit/KtCompStream.h"
#include "toolkit/KtError.h"

// Values use the stream's default format, six significant digits; no flag
// is set here.
void KaAMCBone::printOn(std::ostream& out) const
{
    const char* name = this->name();
    if (!name)
    {
        KtError("Unable to write a bone without a name.");
        return;
    }
    out << name << ' ';
    if (out.fail())
    {
        KtError("Unable to write name.");
        return;
    }
    for (int i = 0; i < _count; ++i)
    {
        out << value(i) << ' ';
        if (out.fail())
        {
            KtError("Unable to write value.");
            return;
        }
    }
}

void KaAMCField::printOn(std::ostream& out) const
{
    out << frameNumber() << '\n';
    for (int i = 0; i < numBones(); ++i)
    {
        bone(i).printOn(out);
        if (theExceptObj.errorOccurred())
        {
            KtError("Unable to write bone information.");
            return;
        }
        out << '\n';
    }
}

// The bone count of each field is compared with the first field's only
// after the field is written, so the offending field is in the output.
void KaAMC::printOn(std::ostream& out) const
{
    if (_mode != FULLY_SPECIFIED)
        std::abort();
    out << ":FULLY-SPECIFIED\n";
    if (out.fail())
    {
        KtError("Unable to write mode.");
        return;
    }
    out << (_units ? ":DEGREES\n" : ":RADIANS\n");
    if (out.fail())
    {
        KtError("Unable to write degrees/radians.");
        return;
    }
    for (int i = 0; i < numFields(); ++i)
    {
        const KaAMCField field = this->field(i);
        field.printOn(out);
        if (theExceptObj.errorOccurred())
        {
            KtError("Unable to write field.");
            return;
        }
        if (field.numBones() != this->field(0).numBones())
        {
            KtError("The number of bones in field %d differs from the number "
                    "of bones in previous fields.",
                    field.frameNumber());
            return;
        }
    }
}

void KaAMC::save(const char* path) const
{
    KtSaveDocument(path, [this](std::ostream& out) { printOn(out); });
}

// KtFloatWriter: the block of text and its two ways of writing a number.
#include "toolkit/KtFloatWriter.h"

#include <ostream>

KtFloatWriter::KtFloatWriter(std::ostream& out)
    : _out(out)
    , _fast(KtStreamFormatsFloatsByDefault(out))
{
}

void KtFloatWriter::_slowNumber(float value)
{
    flush();
    _out << value;
}

void KtFloatWriter::_slowNumber(double value)
{
    flush();
    _out << value;
}

void KtFloatWriter::flush()
{
    _out.write(_block, _end - _block);
    _end = _block;
}

// KtFloatWriter: the block of text and its two ways of writing a number.
#include "toolkit/KtFloatWriter.h"

#include <ostream>

KtFloatWriter::KtFloatWriter(std::ostream& out)
    : _out(out)
    , _fast(KtStreamFormatsFloatsByDefault(out))
{
}

template <class Number>
void KtFloatWriter::_number(Number value, char* (*format)(char*, Number))
{
    _makeRoom();
    if (_fast)
    {
        _end = format(_end, value);
        return;
    }
    flush();
    _out << value;
}

void KtFloatWriter::number(float value)
{
    _number(value, KtFormatFloat);
}

void KtFloatWriter::number(double value)
{
    _number(value, KtFormatDouble);
}

void KtFloatWriter::flush()
{
    _out.write(_block, _end - _block);
    _end = _block;
}

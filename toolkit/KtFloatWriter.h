// KtFloatWriter: floats, doubles and separators written to a stream in large
// blocks, each number exactly as the stream's own insertion would write it.
#pragma once

#include <iosfwd>

#include "toolkit/KtFormatFloat.h"

// Numbers take KtFormatFloat's (KtFormatDouble's) text when the stream would
// write the same (its default format); otherwise the stream's own insertion
// writes them, so the text never depends on which path was taken. Whatever
// is collected reaches the stream at the latest on flush() or destruction.
class KtFloatWriter
{
public:
    explicit KtFloatWriter(std::ostream& out);
    ~KtFloatWriter() { flush(); }
    KtFloatWriter(const KtFloatWriter&) = delete;
    KtFloatWriter& operator=(const KtFloatWriter&) = delete;

    void number(float value)
    {
        _makeRoom();
        if (_fast)
            _end = KtFormatFloat(_end, value);
        else
            _slowNumber(value);
    }
    void number(double value)
    {
        _makeRoom();
        if (_fast)
            _end = KtFormatDouble(_end, value);
        else
            _slowNumber(value);
    }
    void character(char c)
    {
        _makeRoom();
        *_end++ = c;
    }
    void flush();

private:
    // Text is handed to the stream in blocks of about this size.
    static constexpr int kBlockSize = 1 << 16;

    void _slowNumber(float value);
    void _slowNumber(double value);
    void _makeRoom()
    {
        if (_end - _block >= kBlockSize)
            flush();
    }

    std::ostream& _out;
    bool _fast;
    // Room for the longest number and its separator past the block size.
    char _block[kBlockSize + kKtFloatTextSize];
    char* _end = _block;
};

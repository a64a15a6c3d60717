// KaScanText: the motion reader's character-level reads (blanks, one
// character, an integer, a name, a value line), each behaving exactly as the
// formatted stream read it stands for, over a source of the characters.
#pragma once

#include <algorithm>
#include <cstring>
#include <istream>
#include <utility>

#include "toolkit/KtArray.h"

namespace KaScanText
{

// Bone names fit a buffer of 119 characters, and the rest of a bone's line
// one of 128 (126 characters, a newline and the terminator); longer ones
// are refused.
constexpr int kMaxNameLength = 118;
constexpr int kMaxLineLength = 126;

using Traits = std::char_traits<char>;

// The characters of a motion, one at a time, for its reader. The reader
// keeps the stream's state as formatted input would: eof at the end of the
// characters, fail on a failed read.
//
// StreamSource takes them straight from the stream's buffer, so the stream
// stands exactly after what was read: single fields and bones, and motions
// read only up to a number of fields.
class StreamSource
{
public:
    explicit StreamSource(std::istream& in)
        : _in(in)
        , _buffer(in.rdbuf())
    {
    }
    std::istream& stream() { return _in; }
    int peek() { return _buffer->sgetc(); }
    // Only after peek gave a character.
    void bump() { _buffer->sbumpc(); }
    // The rest of the line is always copied out of the stream.
    char* takeLine(int) { return nullptr; }

private:
    std::istream& _in;
    std::streambuf* _buffer;
};

// BlockSource takes the stream's characters in large blocks, sparing the
// stream buffer a call for every character. What it has taken is gone from
// the stream, so it serves reads that go on to the stream's end.
class BlockSource
{
public:
    explicit BlockSource(std::istream& in)
        : _in(in)
        , _buffer(in.rdbuf())
        , _block(kBlockSize)
    {
    }
    std::istream& stream() { return _in; }
    int peek()
    {
        if (_next == _end && !_refill())
            return Traits::eof();
        return Traits::to_int_type(*_next);
    }
    void bump() { ++_next; }
    // When the block holds the rest of the line, with at most maxLength
    // characters before its newline, takes it, newline included, and gives
    // it in place with the newline replaced by a terminator; else null.
    char* takeLine(int maxLength)
    {
        auto* line = static_cast<char*>(std::memchr(
            _next, '\n', std::min<long>(_end - _next, maxLength + 1)));
        if (!line)
            return nullptr;
        *line = '\0';
        std::swap(line, _next);
        ++_next;
        return line;
    }

private:
    // The characters of a whole motion are taken from its stream in blocks.
    static constexpr int kBlockSize = 1 << 16;

    bool _refill()
    {
        std::streamsize got = _buffer->sgetn(_block.data(), kBlockSize);
        _next = _block.data();
        _end = _next + std::max<std::streamsize>(got, 0);
        return _next != _end;
    }

    std::istream& _in;
    std::streambuf* _buffer;
    KtArray<char> _block;
    char* _next = nullptr;
    char* _end = nullptr;
};

bool isDigit(int c);

// in >> std::ws.
template <class Source>
void skipWhitespace(Source& source);

// in.peek().
template <class Source>
int peekCharacter(Source& source);

// in >> number, as the stream reads an int: blanks skipped, an optional
// sign, decimal digits. Without digits the read fails and gives 0; a number
// beyond an int fails and gives the nearer limit. Blanks up to the end of
// the characters fail and leave number as it was.
template <class Source>
void readInteger(Source& source, int* number);

// Reads a word as `in >> word` does, but never more than kMaxNameLength
// characters. Returns false when the word is longer (name then holds its
// start); a word ended by the end of the file sets eof, an empty one fail,
// as formatted input does.
template <class Source>
bool readName(Source& source, char (&name)[kMaxNameLength + 1]);

enum class LineRead
{
    kRead,
    kTooLong,
    kFailed
};

// Reads the rest of the line as getline into a 128-character buffer does:
// the newline is taken but not stored; nothing left to read fails; a line
// of more than kMaxLineLength characters is refused. *text is the line read:
// line, or the same characters where the source holds them.
template <class Source>
LineRead readValueLine(Source& source,
                       char (&line)[kMaxLineLength + 1],
                       const char** text);

} // namespace KaScanText

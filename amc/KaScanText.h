// KaScanText: the motion reader's character-level reads (blanks, one
// character, an integer, a name, a value line), each behaving exactly as the
// formatted stream read it stands for, over a source of the characters.
#pragma once

#include <climits>
#include <istream>

// A source gives the characters one at a time: stream() is the stream whose
// state the reads keep as formatted input would (eof at the end of the
// characters, fail on a failed read), peek() the next character or eof,
// bump() steps past it, and takeLine(maxLength) may hand over the rest of
// the line in place (see readValueLine). The reader's two sources live in
// KaAMCReader.cpp. The reads are templates defined here, not compiled apart,
// so that they inline into the reader's loop over the bone lines: compiled
// apart they cost a whole conversion about 7% more instructions.
namespace KaScanText
{

// Bone names fit a buffer of 119 characters, and the rest of a bone's line
// one of 128 (126 characters, a newline and the terminator); longer ones
// are refused.
constexpr int kMaxNameLength = 118;
constexpr int kMaxLineLength = 126;

using Traits = std::char_traits<char>;

// The blanks of formatted stream input.
inline bool isBlank(int c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' ||
           c == '\r';
}

inline bool isDigit(int c)
{
    return c >= '0' && c <= '9';
}

inline bool isEnd(int c)
{
    return Traits::eq_int_type(c, Traits::eof());
}

// A formatted read on a stream that is not good fails at once.
inline bool startRead(std::istream& in)
{
    if (in.good())
        return true;
    in.setstate(std::ios_base::failbit);
    return false;
}

// in >> std::ws.
template <class Source>
void skipWhitespace(Source& source)
{
    if (!startRead(source.stream()))
        return;
    for (int c = source.peek(); !isEnd(c); c = source.peek())
    {
        if (!isBlank(c))
            return;
        source.bump();
    }
    source.stream().setstate(std::ios_base::eofbit);
}

// in.peek().
template <class Source>
int peekCharacter(Source& source)
{
    if (!startRead(source.stream()))
        return Traits::eof();
    int c = source.peek();
    if (isEnd(c))
        source.stream().setstate(std::ios_base::eofbit);
    return c;
}

// in >> number, as the stream reads an int: blanks skipped, an optional
// sign, decimal digits. Without digits the read fails and gives 0; a number
// beyond an int fails and gives the nearer limit. Blanks up to the end of
// the characters fail and leave number as it was.
template <class Source>
void readInteger(Source& source, int* number)
{
    std::istream& in = source.stream();
    if (!startRead(in))
        return;
    int c = source.peek();
    for (; isBlank(c); c = source.peek())
        source.bump();
    if (isEnd(c))
    {
        in.setstate(std::ios_base::eofbit | std::ios_base::failbit);
        return;
    }
    bool negative = c == '-';
    if (c == '-' || c == '+')
    {
        source.bump();
        c = source.peek();
    }
    bool digits = false;
    bool overflow = false;
    long magnitude = 0; // negative numbers are gathered below zero
    for (; isDigit(c); c = source.peek())
    {
        digits = true;
        int digit = c - '0';
        if (negative ? magnitude < (LONG_MIN + digit) / 10
                     : magnitude > (LONG_MAX - digit) / 10)
            overflow = true;
        else
            magnitude = magnitude * 10 + (negative ? -digit : digit);
        source.bump();
    }
    std::ios_base::iostate state =
        isEnd(c) ? std::ios_base::eofbit : std::ios_base::goodbit;
    if (!digits || overflow || magnitude < INT_MIN || magnitude > INT_MAX)
        state |= std::ios_base::failbit;
    if (!digits)
        *number = 0;
    else if (overflow || magnitude < INT_MIN || magnitude > INT_MAX)
        *number = negative ? INT_MIN : INT_MAX;
    else
        *number = static_cast<int>(magnitude);
    in.setstate(state);
}

// Reads a word as `in >> word` does, but never more than kMaxNameLength
// characters. Returns false when the word is longer (name then holds its
// start); a word ended by the end of the file sets eof, an empty one fail,
// as formatted input does.
template <class Source>
bool readName(Source& source, char (&name)[kMaxNameLength + 1])
{
    int length = 0;
    name[0] = '\0';
    if (!startRead(source.stream()))
        return true;
    for (;;)
    {
        int c = source.peek();
        if (isEnd(c))
        {
            source.stream().setstate(std::ios_base::eofbit);
            break;
        }
        if (isBlank(c))
            break;
        if (length == kMaxNameLength)
        {
            name[length] = '\0';
            return false;
        }
        name[length++] = Traits::to_char_type(c);
        source.bump();
    }
    name[length] = '\0';
    if (length == 0)
        source.stream().setstate(std::ios_base::failbit);
    return true;
}

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
                       const char** text)
{
    line[0] = '\0';
    *text = line;
    if (!startRead(source.stream()))
        return LineRead::kFailed;
    if (const char* inPlace = source.takeLine(kMaxLineLength))
    {
        *text = inPlace;
        return LineRead::kRead;
    }
    int length = 0;
    bool extracted = false;
    for (;;)
    {
        int c = source.peek();
        if (isEnd(c))
        {
            source.stream().setstate(std::ios_base::eofbit);
            break;
        }
        source.bump();
        extracted = true;
        if (c == '\n')
            break;
        // The carriage return of a Windows line end is not part of the
        // line, so such a file reads exactly like its LF twin.
        if (c == '\r' && Traits::eq_int_type(source.peek(), '\n'))
            continue;
        if (length == kMaxLineLength)
        {
            line[length] = '\0';
            return LineRead::kTooLong;
        }
        line[length++] = Traits::to_char_type(c);
    }
    line[length] = '\0';
    if (!extracted)
    {
        source.stream().setstate(std::ios_base::failbit);
        return LineRead::kFailed;
    }
    return LineRead::kRead;
}

} // namespace KaScanText

// The motion reader's character-level reads, written once for both sources
// of characters and compiled for each.
#include "amc/KaScanText.h"

#include <climits>

namespace KaScanText
{

namespace
{

// The blanks of formatted stream input.
bool isBlank(int c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' ||
           c == '\r';
}

bool isEnd(int c)
{
    return Traits::eq_int_type(c, Traits::eof());
}

// A formatted read on a stream that is not good fails at once.
bool startRead(std::istream& in)
{
    if (in.good())
        return true;
    in.setstate(std::ios_base::failbit);
    return false;
}

} // namespace

bool isDigit(int c)
{
    return c >= '0' && c <= '9';
}

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

// The reader reads through both sources.
template void skipWhitespace(StreamSource&);
template void skipWhitespace(BlockSource&);
template int peekCharacter(StreamSource&);
template int peekCharacter(BlockSource&);
template void readInteger(StreamSource&, int*);
template void readInteger(BlockSource&, int*);
template bool readName(StreamSource&, char (&)[kMaxNameLength + 1]);
template bool readName(BlockSource&, char (&)[kMaxNameLength + 1]);
template LineRead
readValueLine(StreamSource&, char (&)[kMaxLineLength + 1], const char**);
template LineRead
readValueLine(BlockSource&, char (&)[kMaxLineLength + 1], const char**);

} // namespace KaScanText

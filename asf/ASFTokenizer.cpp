// ASFTokenizer: the lexical rules of skeleton files.
#include "asf/ASFTokenizer.h"

#include <cctype>
#include <cstring>

namespace
{

// A comment is discarded through its newline, but at most this many
// characters of it at once; what follows in a longer comment line is read
// as text.
constexpr std::streamsize kCommentSkip = 256;

bool isSeparator(int c)
{
    return c == ' ' || c == '\t' || c == '\r' || c == '(' || c == ')' ||
           c == ',';
}

// Characters that end a word (and are not part of it). A NUL byte (binary
// data) does too: inside a word it would silently cut the word's text short.
bool endsWord(int c)
{
    return std::isspace(c) || c == '(' || c == ')' || c == ',' || c == '#' ||
           c == '<' || c == '>' || c == '\0';
}

void setToken(char* buf, int size, const char* text)
{
    if (size < 1)
        return;
    std::strncpy(buf, text, size - 1);
    buf[size - 1] = '\0';
}

} // namespace

ASFTokenizer::ASFTokenizer(std::istream& in)
    : std::istream(in.rdbuf())
{
}

// Returns whether a line end was crossed.
bool ASFTokenizer::_skipWhiteSpace()
{
    bool crossed = false;
    for (;;)
    {
        int c = peek();
        if (c == traits_type::eof())
            return crossed;
        if (isSeparator(c))
        {
            get();
            continue;
        }
        if (c == '\n')
        {
            get();
            ++_lineNumber;
            crossed = true;
            continue;
        }
        if (c == '#')
        {
            get();
            _skipComment();
            ++_lineNumber;
            crossed = true;
            continue;
        }
        return crossed;
    }
}

// As ignore(kCommentSkip, '\n'), except that the carriage return of a
// Windows line end is not counted, so that a comment as long as the limit
// ends at the same place as in its LF twin.
void ASFTokenizer::_skipComment()
{
    for (std::streamsize taken = 0; taken < kCommentSkip; ++taken)
    {
        int c = peek();
        if (c == traits_type::eof())
            return;
        get();
        if (c == '\n')
            return;
        if (c == '\r' && peek() == '\n')
            --taken;
    }
}

void ASFTokenizer::_readIdentifier(char* buf, int size)
{
    setToken(buf, size, "");
    if (size < 2)
        return;
    int c = get();
    if (c == traits_type::eof())
        return;
    if (c == '<' || c == '>')
    {
        buf[0] = static_cast<char>(c);
        buf[1] = '\0';
        return;
    }
    // A character that can start no word (a form feed, say) is consumed as
    // an empty token, so reading always moves on.
    if (endsWord(c))
        return;
    int length = 0;
    buf[length++] = static_cast<char>(c);
    while (length < size - 1)
    {
        c = peek();
        if (c == traits_type::eof() || endsWord(c))
            break;
        buf[length++] = static_cast<char>(get());
    }
    buf[length] = '\0';
}

char* ASFTokenizer::getNextToken(char* buf, int size)
{
    if (_skipWhiteSpace())
    {
        int wasAtLineStart = _atLineStart;
        _atLineStart = 1;
        if (!wasAtLineStart)
        {
            setToken(buf, size, kEndOfLine);
            return buf;
        }
    }
    // The first section keyword of a stream needs no break before it; every
    // later one gets exactly one, and the ':' stays unread until then.
    if (_atLineStart && peek() == ':')
    {
        if (_sectionKeywordPending)
        {
            _sectionKeywordPending = 0;
            setToken(buf, size, kEndOfSection);
            return buf;
        }
        _sectionKeywordPending = 1;
    }
    _readIdentifier(buf, size);
    _atLineStart = 0;
    return buf;
}

char* ASFTokenizer::getNextNonEOLToken(char* buf, int size)
{
    do
        getNextToken(buf, size);
    while (std::strcmp(buf, kEndOfLine) == 0);
    return buf;
}

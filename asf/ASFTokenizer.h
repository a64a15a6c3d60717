// ASFTokenizer: splits the text of a skeleton file into words, line ends and
// section breaks, and counts lines for the readers' messages.
#pragma once

#include <istream>

// Reads through the buffer of the stream it is built on, so what it consumes
// is consumed from that stream too.
//
// Tokens:
//   a word          at most size - 1 characters; a longer word is split and
//                   its rest starts the next token
//   "<", ">"        one character each, also inside a word
//   "\n"            one or more line ends (blank and comment lines
//                   included) crossed since the previous word
//   "\x01"          a section keyword (a line whose first word starts with
//                   ':') follows; given before every such line but the
//                   first of the stream
// Blanks, tabs, carriage returns, '(', ')' and ',' only separate tokens, so
// "(lo, hi)" reads as two words. '#' starts a comment where a token could
// start and ends a word inside one. Other characters that cannot be part of
// a word (a form feed, a NUL byte) end one and are read as an empty token.
//
// At the end of the input a token may be empty; callers test the stream
// state (eof(), good()) after each call.
class ASFTokenizer : public std::istream
{
public:
    static constexpr char kEndOfLine[] = "\n";
    static constexpr char kEndOfSection[] = "\x01";

    explicit ASFTokenizer(std::istream& in);

    // size is the capacity of buf including the terminator (at least 2).
    char* getNextToken(char* buf, int size);
    char* getNextNonEOLToken(char* buf, int size);

    // 1 on the first line; counts every newline and every comment line.
    int lineNumber() const { return _lineNumber; }

private:
    bool _skipWhiteSpace();
    void _skipComment();
    void _readIdentifier(char* buf, int size);

    int _lineNumber = 1;
    int _atLineStart = 1;
    int _sectionKeywordPending = 0;
};

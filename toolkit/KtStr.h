// KtStr: the text type of the whole system, a handle on a shared,
// reference-counted buffer that is copied on first change.
#pragma once

#include <cstdarg>
#include <iosfwd>

class Kt_CoreStr;

// A null core is the empty string. A handle may denote a suffix of a shared
// buffer (its offset), so assigning a pointer into its own tail is free.
// Every modifying operation first makes the handle the sole owner of its
// buffer (_preMod); copies therefore never see each other's changes.
//
// Number parsing (intValue, longValue, ...) succeeds only when the whole text
// is consumed; the converted value is stored even when the verdict is false.
class KtStr
{
public:
    KtStr();
    KtStr(const char* text);
    KtStr(const KtStr& other);
    ~KtStr();

    KtStr& operator=(const KtStr& other);
    KtStr& operator=(const char* text);

    const char* text() const;
    operator const char*() const { return text(); }
    int length() const;
    char operator[](int pos) const { return text()[pos]; }

    KtStr operator+(const char* text) const;
    KtStr operator+(const KtStr& other) const;
    KtStr& operator+=(const char* text);

    // Substrings, as new strings; counts are clamped to the text.
    KtStr left(int n) const;
    KtStr right(int n) const;
    KtStr notLeft(int n) const;
    KtStr notRight(int n) const;
    KtStr mid(int pos, int n) const;

    void insert(int pos, const char* text);
    void remove(int pos, int n);
    void replaceAll(const char* from, const char* to);
    void padRight(int n, char c);
    void trimLeft();
    void trimRight();

    // True when found; *pos (if given) receives the first (findLast: last)
    // position of the occurrence.
    bool contains(const char* s, int* pos = nullptr) const;
    bool contains(char c, int* pos = nullptr) const;
    bool findLast(char c, int* pos = nullptr) const;
    // The number of characters before pos, clamped to [0, length()].
    int lengthTo(int pos) const;

    // Case-blind comparison: 1 when this string sorts after s, -1 before,
    // 0 equal. iCmp compares over the longer of the two lengths.
    int iCmp(const char* s) const;
    int iNCmp(const char* s, int n) const;

    // Sets the text from a printf format; the result is never truncated.
    void setF(const char* format, ...) __attribute__((format(printf, 2, 3)));
    void setV(const char* format, va_list args);

    // Replaces the text by the next line of the stream (without its newline);
    // lines of any length are accepted. Returns false, leaving the text
    // empty, when the stream held no further character; a last line without
    // a newline is returned like any other (the stream then reports eof).
    bool scanLine(std::istream& in);

    // Takes the first token delimited by any character of delims and removes
    // it, with the one delimiter that ended it, from this string.
    KtStr extractFirstToken(const char* delims);
    KtStr firstToken(const char* delims) const;

    bool longValue(long* out) const;
    bool intValue(int* out) const;
    bool unsignedLongValue(unsigned long* out) const;
    bool floatValue(float* out) const;
    bool doubleValue(double* out) const;
    bool booleanValue(int* out) const;

    bool operator==(const KtStr& other) const;
    bool operator!=(const KtStr& other) const;
    bool operator<(const KtStr& other) const;
    bool operator<=(const KtStr& other) const;
    bool operator>(const KtStr& other) const;
    bool operator>=(const KtStr& other) const;
    bool operator==(const char* s) const;
    bool operator!=(const char* s) const;
    bool operator<(const char* s) const;
    bool operator<=(const char* s) const;
    bool operator>(const char* s) const;
    bool operator>=(const char* s) const;

    std::ostream& printOn(std::ostream& out) const;

private:
    void _linkTo(const char* text);
    void _unlink();
    void _preMod();
    void _setLength(int n);
    char* _writableText();
    int _compare(const char* s) const;

    Kt_CoreStr* _core;
    int _offset;
};

KtStr operator+(const char* text, const KtStr& str);
std::ostream& operator<<(std::ostream& out, const KtStr& str);

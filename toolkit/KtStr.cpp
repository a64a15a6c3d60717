// KtStr and its shared buffer Kt_CoreStr.
#include "toolkit/KtStr.h"

#include <cctype>
#include <cerrno>
#include <climits>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <istream>
#include <new>
#include <ostream>
#include <string>

// The buffer behind one or more KtStr handles: the record and its
// characters share one heap block, so a short string costs one small
// allocation. size is the capacity in bytes, terminator included.
class Kt_CoreStr
{
public:
    static Kt_CoreStr* create(const char* source, int n)
    {
        Kt_CoreStr* core = _allocate(n + 1);
        std::memcpy(core->text, source, n);
        core->text[n] = '\0';
        return core;
    }
    static void destroy(Kt_CoreStr* core)
    {
        core->~Kt_CoreStr();
        ::operator delete(core);
    }
    // A buffer of n bytes holding as much of the core's text as fits; the
    // old core is destroyed. Only its sole owner may resize it.
    static Kt_CoreStr* resized(Kt_CoreStr* core, int n)
    {
        if (n == core->size || n < 1)
            return core;
        int keep = core->length();
        if (keep > n - 1)
            keep = n - 1;
        Kt_CoreStr* grown = _allocate(n);
        std::memcpy(grown->text, core->text, keep);
        grown->text[keep] = '\0';
        destroy(core);
        return grown;
    }
    Kt_CoreStr(const Kt_CoreStr&) = delete;
    Kt_CoreStr& operator=(const Kt_CoreStr&) = delete;

    int length() const { return static_cast<int>(std::strlen(text)); }

    char* text;
    int size;
    int refCount = 1;

private:
    explicit Kt_CoreStr(int n)
        : text(reinterpret_cast<char*>(this + 1))
        , size(n)
    {
    }
    ~Kt_CoreStr() = default;

    static Kt_CoreStr* _allocate(int n)
    {
        void* block = ::operator new(sizeof(Kt_CoreStr) + n);
        return new (block) Kt_CoreStr(n);
    }
};

namespace
{

bool isDelimiter(char c, const char* delims)
{
    return c != '\0' && std::strchr(delims, c) != nullptr;
}

} // namespace

KtStr::KtStr()
    : _core(nullptr)
    , _offset(0)
{
}

KtStr::KtStr(const char* text)
    : KtStr()
{
    _linkTo(text);
}

KtStr::KtStr(const KtStr& other)
    : _core(other._core)
    , _offset(other._offset)
{
    if (_core)
        ++_core->refCount;
}

KtStr::~KtStr()
{
    _unlink();
}

KtStr& KtStr::operator=(const KtStr& other)
{
    if (other._core)
        ++other._core->refCount;
    _unlink();
    _core = other._core;
    _offset = other._offset;
    return *this;
}

KtStr& KtStr::operator=(const char* text)
{
    _linkTo(text);
    return *this;
}

void KtStr::_linkTo(const char* text)
{
    if (_core && text >= _core->text && text <= _core->text + _core->length())
    {
        // A tail of our own buffer: only the offset moves.
        _offset = static_cast<int>(text - _core->text);
        return;
    }
    Kt_CoreStr* fresh =
        text ? Kt_CoreStr::create(text, static_cast<int>(std::strlen(text)))
             : nullptr;
    _unlink();
    _core = fresh;
}

void KtStr::_unlink()
{
    if (_core && --_core->refCount == 0)
        Kt_CoreStr::destroy(_core);
    _core = nullptr;
    _offset = 0;
}

void KtStr::_preMod()
{
    if (!_core)
    {
        _core = Kt_CoreStr::create("", 0);
        return;
    }
    if (_core->refCount >= 2)
    {
        --_core->refCount;
        _core = Kt_CoreStr::create(_core->text + _offset,
                                   _core->length() - _offset);
        _offset = 0;
    }
    else if (_offset != 0)
    {
        std::memmove(
            _core->text, _core->text + _offset, _core->length() - _offset + 1);
        _offset = 0;
    }
}

char* KtStr::_writableText()
{
    _preMod();
    return _core->text;
}

// Makes the text n characters long in a buffer of our own; grows the capacity
// geometrically so that repeated appends stay linear.
void KtStr::_setLength(int n)
{
    _preMod();
    if (n + 1 > _core->size)
    {
        int capacity = _core->size * 2;
        _core = Kt_CoreStr::resized(_core, capacity > n + 1 ? capacity : n + 1);
    }
    _core->text[n] = '\0';
}

const char* KtStr::text() const
{
    return _core ? _core->text + _offset : "";
}

int KtStr::length() const
{
    return _core ? _core->length() - _offset : 0;
}

KtStr KtStr::operator+(const char* text) const
{
    KtStr result(*this);
    result += text;
    return result;
}

KtStr KtStr::operator+(const KtStr& other) const
{
    return *this + other.text();
}

KtStr operator+(const char* text, const KtStr& str)
{
    KtStr result(text);
    result += str.text();
    return result;
}

KtStr& KtStr::operator+=(const char* text)
{
    if (!text || !*text)
        return *this;
    // The appended text may live in our own buffer; copy it before resizing.
    std::string appended(text);
    int oldLength = length();
    _setLength(oldLength + static_cast<int>(appended.size()));
    std::memcpy(_core->text + oldLength, appended.data(), appended.size());
    return *this;
}

KtStr KtStr::left(int n) const
{
    return mid(0, n);
}

KtStr KtStr::right(int n) const
{
    int len = length();
    if (n > len)
        n = len;
    return mid(len - n, n);
}

KtStr KtStr::notLeft(int n) const
{
    return mid(n, length());
}

KtStr KtStr::notRight(int n) const
{
    return mid(0, length() - n);
}

KtStr KtStr::mid(int pos, int n) const
{
    int len = length();
    if (pos < 0)
        pos = 0;
    if (pos > len)
        pos = len;
    if (n > len - pos)
        n = len - pos;
    if (n <= 0)
        return KtStr();
    return KtStr(std::string(text() + pos, n).c_str());
}

void KtStr::insert(int pos, const char* text)
{
    if (!text || !*text)
        return;
    std::string inserted(text);
    int len = length();
    if (pos < 0)
        pos = 0;
    if (pos > len)
        pos = len;
    int n = static_cast<int>(inserted.size());
    _setLength(len + n);
    char* t = _core->text;
    std::memmove(t + pos + n, t + pos, len - pos);
    std::memcpy(t + pos, inserted.data(), n);
}

void KtStr::remove(int pos, int n)
{
    int len = length();
    if (pos < 0 || pos >= len || n < 1)
        return;
    if (n > len - pos)
        n = len - pos;
    char* t = _writableText();
    std::memmove(t + pos, t + pos + n, len - pos - n + 1);
}

void KtStr::replaceAll(const char* from, const char* to)
{
    if (!from || !*from || !contains(from))
        return;
    std::string result;
    const char* t = text();
    size_t fromLength = std::strlen(from);
    while (const char* hit = std::strstr(t, from))
    {
        result.append(t, hit - t);
        result.append(to ? to : "");
        t = hit + fromLength;
    }
    result.append(t);
    _unlink();
    _linkTo(result.c_str());
}

void KtStr::padRight(int n, char c)
{
    if (n < 1)
        return;
    int len = length();
    _setLength(len + n);
    std::memset(_core->text + len, c, n);
}

void KtStr::trimLeft()
{
    const char* t = text();
    int skip = 0;
    while (t[skip] && std::isspace(static_cast<unsigned char>(t[skip])))
        ++skip;
    remove(0, skip);
}

void KtStr::trimRight()
{
    int len = length();
    const char* t = text();
    int keep = len;
    while (keep > 0 && std::isspace(static_cast<unsigned char>(t[keep - 1])))
        --keep;
    if (keep < len)
        _setLength(keep);
}

bool KtStr::contains(const char* s, int* pos) const
{
    if (!s)
        return false;
    const char* hit = std::strstr(text(), s);
    if (hit && pos)
        *pos = static_cast<int>(hit - text());
    return hit != nullptr;
}

bool KtStr::contains(char c, int* pos) const
{
    const char* hit = c ? std::strchr(text(), c) : nullptr;
    if (hit && pos)
        *pos = static_cast<int>(hit - text());
    return hit != nullptr;
}

bool KtStr::findLast(char c, int* pos) const
{
    const char* hit = c ? std::strrchr(text(), c) : nullptr;
    if (hit && pos)
        *pos = static_cast<int>(hit - text());
    return hit != nullptr;
}

int KtStr::lengthTo(int pos) const
{
    int len = length();
    if (pos < 0)
        return 0;
    return pos < len ? pos : len;
}

int KtStr::iCmp(const char* s) const
{
    if (!s)
        s = "";
    int otherLength = static_cast<int>(std::strlen(s));
    int len = length();
    return iNCmp(s, len > otherLength ? len : otherLength);
}

int KtStr::iNCmp(const char* s, int n) const
{
    if (n < 1)
        return 0;
    if (!s)
        s = "";
    const char* t = text();
    for (int i = 0; i < n; ++i)
    {
        if (s[i] == '\0')
            return t[i] == '\0' ? 0 : 1;
        if (t[i] == '\0')
            return -1;
        int a = std::toupper(static_cast<unsigned char>(t[i]));
        int b = std::toupper(static_cast<unsigned char>(s[i]));
        if (a != b)
            return a > b ? 1 : -1;
    }
    return 0;
}

void KtStr::setF(const char* format, ...)
{
    va_list args;
    va_start(args, format);
    setV(format, args);
    va_end(args);
}

void KtStr::setV(const char* format, va_list args)
{
    va_list copy;
    va_copy(copy, args);
    int n = std::vsnprintf(nullptr, 0, format, copy);
    va_end(copy);
    std::string buffer(n > 0 ? n : 0, '\0');
    if (n > 0)
        std::vsnprintf(&buffer[0], n + 1, format, args);
    _unlink();
    _linkTo(buffer.c_str());
}

bool KtStr::scanLine(std::istream& in)
{
    std::string line;
    if (!std::getline(in, line))
    {
        _unlink();
        return false;
    }
    _unlink();
    _linkTo(line.c_str());
    return true;
}

KtStr KtStr::firstToken(const char* delims) const
{
    KtStr copy(*this);
    return copy.extractFirstToken(delims);
}

KtStr KtStr::extractFirstToken(const char* delims)
{
    const char* t = text();
    int start = 0;
    while (isDelimiter(t[start], delims))
        ++start;
    if (t[start] == '\0')
        return KtStr();
    int end = start;
    while (t[end] != '\0' && !isDelimiter(t[end], delims))
        ++end;
    KtStr token = mid(start, end - start);
    if (t[end] == '\0')
        _unlink();
    else
        _linkTo(t + end + 1);
    return token;
}

// The error indicator is deliberately not cleared before converting: an
// out-of-range condition left by an earlier library call fails the parse too.
bool KtStr::longValue(long* out) const
{
    char* end = nullptr;
    long value = std::strtol(text(), &end, 10);
    *out = value;
    return *end == '\0' && errno != ERANGE;
}

// A value that an int cannot hold does not parse: narrowed, 4294967326
// would read as 30.
bool KtStr::intValue(int* out) const
{
    long value = 0;
    bool ok = longValue(&value);
    *out = static_cast<int>(value);
    return ok && value >= INT_MIN && value <= INT_MAX;
}

bool KtStr::unsignedLongValue(unsigned long* out) const
{
    char* end = nullptr;
    unsigned long value = std::strtoul(text(), &end, 10);
    *out = value;
    return *end == '\0' && errno != ERANGE;
}

bool KtStr::floatValue(float* out) const
{
    char* end = nullptr;
    float value = std::strtof(text(), &end);
    *out = value;
    return *end == '\0' && errno != ERANGE;
}

bool KtStr::doubleValue(double* out) const
{
    char* end = nullptr;
    double value = std::strtod(text(), &end);
    *out = value;
    return *end == '\0' && errno != ERANGE;
}

bool KtStr::booleanValue(int* out) const
{
    if (intValue(out))
        return *out == 0 || *out == 1;
    for (const char* yes : {"TRUE", "ON", "YES"})
        if (iCmp(yes) == 0)
        {
            *out = 1;
            return true;
        }
    for (const char* no : {"FALSE", "OFF", "NO"})
        if (iCmp(no) == 0)
        {
            *out = 0;
            return true;
        }
    return false;
}

int KtStr::_compare(const char* s) const
{
    return std::strcmp(text(), s ? s : "");
}

bool KtStr::operator==(const KtStr& other) const
{
    return _compare(other.text()) == 0;
}
bool KtStr::operator!=(const KtStr& other) const
{
    return _compare(other.text()) != 0;
}
bool KtStr::operator<(const KtStr& other) const
{
    return _compare(other.text()) < 0;
}
bool KtStr::operator<=(const KtStr& other) const
{
    return _compare(other.text()) <= 0;
}
bool KtStr::operator>(const KtStr& other) const
{
    return _compare(other.text()) > 0;
}
bool KtStr::operator>=(const KtStr& other) const
{
    return _compare(other.text()) >= 0;
}
bool KtStr::operator==(const char* s) const
{
    return _compare(s) == 0;
}
bool KtStr::operator!=(const char* s) const
{
    return _compare(s) != 0;
}
bool KtStr::operator<(const char* s) const
{
    return _compare(s) < 0;
}
bool KtStr::operator<=(const char* s) const
{
    return _compare(s) <= 0;
}
bool KtStr::operator>(const char* s) const
{
    return _compare(s) > 0;
}
bool KtStr::operator>=(const char* s) const
{
    return _compare(s) >= 0;
}

std::ostream& KtStr::printOn(std::ostream& out) const
{
    return out << text();
}

std::ostream& operator<<(std::ostream& out, const KtStr& str)
{
    return str.printOn(out);
}

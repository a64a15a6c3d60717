// PageText: text from the inputs made safe for a web page, and binary data
// as base64 for it.
#include "motexport/PageText.h"

#include <cstring>
#include <ostream>

namespace
{

constexpr char32_t kReplacement = 0xFFFD;
constexpr char kHexDigits[] = "0123456789abcdef";
constexpr char kBase64Digits[] =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

// The code point that starts at text, and the text after it. A byte that
// does not start a well-formed sequence (a stray continuation, an overlong
// form, a surrogate, beyond U+10FFFF, cut short) is U+FFFD by itself.
char32_t nextCodePoint(const unsigned char*& text)
{
    const unsigned char lead = *text++;
    if (lead < 0x80)
        return lead;
    const int length = lead >= 0xF0   ? 4
                       : lead >= 0xE0 ? 3
                       : lead >= 0xC0 ? 2
                                      : 0;
    if (length == 0 || lead > 0xF4)
        return kReplacement;
    char32_t code = lead & (0x7F >> length);
    for (int i = 1; i < length; ++i)
    {
        if ((text[i - 1] & 0xC0) != 0x80)
            return kReplacement;
        code = (code << 6) | (text[i - 1] & 0x3F);
    }
    constexpr char32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
    if (code < kLeast[length] || code > 0x10FFFF ||
        (code >= 0xD800 && code <= 0xDFFF))
        return kReplacement;
    text += length - 1;
    return code;
}

void appendUtf8(std::string& out, char32_t code)
{
    if (code < 0x80)
        out += static_cast<char>(code);
    else if (code < 0x800)
    {
        out += static_cast<char>(0xC0 | (code >> 6));
        out += static_cast<char>(0x80 | (code & 0x3F));
    }
    else if (code < 0x10000)
    {
        out += static_cast<char>(0xE0 | (code >> 12));
        out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (code & 0x3F));
    }
    else
    {
        out += static_cast<char>(0xF0 | (code >> 18));
        out += static_cast<char>(0x80 | ((code >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (code & 0x3F));
    }
}

// Calls use(code) for each code point of the text.
template <typename Use>
void forEachCodePoint(const char* text, Use use)
{
    for (auto p = reinterpret_cast<const unsigned char*>(text); *p;)
        use(nextCodePoint(p));
}

// The character reference that stands for a character in markup, or null
// for one that stands for itself.
const char* htmlReference(char32_t code)
{
    switch (code)
    {
    case '&':
        return "&amp;";
    case '<':
        return "&lt;";
    case '>':
        return "&gt;";
    case '"':
        return "&quot;";
    case '\'':
        return "&#39;";
    default:
        return nullptr;
    }
}

// JSON's own escapes, and \uXXXX for what could end or hide a script
// element or end a line in older script.
void appendJson(std::string& out, char32_t code)
{
    if (code == '"' || code == '\\')
    {
        out += '\\';
        out += static_cast<char>(code);
    }
    else if (code < 0x20 || code == '<' || code == '>' || code == '&' ||
             code == 0x2028 || code == 0x2029)
    {
        out += "\\u";
        for (int shift = 12; shift >= 0; shift -= 4)
            out += kHexDigits[(code >> shift) & 0xF];
    }
    else
        appendUtf8(out, code);
}

} // namespace

std::string htmlText(const char* text)
{
    std::string out;
    forEachCodePoint(text,
                     [&](char32_t code)
                     {
                         if (const char* reference = htmlReference(code))
                             out += reference;
                         else
                             appendUtf8(out, code);
                     });
    return out;
}

std::string jsonString(const char* text)
{
    std::string out = "\"";
    forEachCodePoint(text, [&](char32_t code) { appendJson(out, code); });
    return out + '"';
}

void Base64Writer::byte(uint8_t value)
{
    _pending = (_pending << 8) | value;
    if (++_numPending < 3)
        return;
    for (int shift = 18; shift >= 0; shift -= 6)
        _out.put(kBase64Digits[(_pending >> shift) & 0x3F]);
    _pending = 0;
    _numPending = 0;
}

void Base64Writer::uint16(uint16_t value)
{
    byte(value & 0xFF);
    byte(value >> 8);
}

void Base64Writer::int32(int32_t value)
{
    const uint32_t bits = static_cast<uint32_t>(value);
    for (int shift = 0; shift < 32; shift += 8)
        byte((bits >> shift) & 0xFF);
}

void Base64Writer::float32(float value)
{
    int32_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    int32(bits);
}

void Base64Writer::finish()
{
    if (_numPending == 0)
        return;
    // The missing bytes as zeros, and a '=' for each.
    const int missing = 3 - _numPending;
    const uint32_t group = _pending << (8 * missing);
    for (int shift = 18, digits = 4 - missing; digits > 0; shift -= 6, --digits)
        _out.put(kBase64Digits[(group >> shift) & 0x3F]);
    for (int i = 0; i < missing; ++i)
        _out.put('=');
    _pending = 0;
    _numPending = 0;
}

// PageText: text from the inputs made safe for a web page, and binary data
// as base64 for it.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>

// Names come from files and command lines in any encoding: bytes that are
// not valid UTF-8 become U+FFFD, one per byte, so that the page is always
// valid UTF-8.

// For the content of an element (title, text): & < > " ' as character
// references, so that nothing in it can open or close markup.
std::string htmlText(const char* text);

// A JSON string, quotes included, for a <script> element: besides JSON's own
// escapes, < > & and U+2028/U+2029 as \uXXXX, so that neither "</script>"
// nor "<!--" can appear in it.
std::string jsonString(const char* text);

// Base64 (RFC 4648, with padding) written as the bytes come.
class Base64Writer
{
public:
    explicit Base64Writer(std::ostream& out)
        : _out(out)
    {
    }

    void byte(uint8_t value);
    void uint16(uint16_t value); // little-endian, as the page reads them
    void int32(int32_t value);
    void float32(float value);
    // Writes what is pending, padded; call once, at the end.
    void finish();

private:
    std::ostream& _out;
    uint32_t _pending = 0;
    int _numPending = 0;
};

// Text from the inputs as a page holds it: nothing in a name can open or
// close markup or a script, every byte that is not UTF-8 becomes U+FFFD; and
// the page's data in base64.
#include <cstdint>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "motexport/PageText.h"

TEST(MotexportPageText, EscapesNamesForMarkupAndForAScript)
{
    const std::string kReplacement = "\xEF\xBF\xBD";
    // clang-format off
    const struct { std::string name, html, json; } cases[] = {
        {"walk.amc", "walk.amc", "\"walk.amc\""},
        {"a<b>&c", "a&lt;b&gt;&amp;c", "\"a\\u003cb\\u003e\\u0026c\""},
        {"</script><!--", "&lt;/script&gt;&lt;!--", "\"\\u003c/script\\u003e\\u003c!--\""},
        {"\"q\" 'a'", "&quot;q&quot; &#39;a&#39;", "\"\\\"q\\\" 'a'\""},
        {"back\\slash\ttab\x01", "back\\slash\ttab\x01", "\"back\\\\slash\\u0009tab\\u0001\""},
        // UTF-8 stays; U+2028 and U+2029 end a line in older script.
        {"caf\xC3\xA9 \xF0\x9F\x8E\xAC", "caf\xC3\xA9 \xF0\x9F\x8E\xAC", "\"caf\xC3\xA9 \xF0\x9F\x8E\xAC\""},
        {"\xE2\x80\xA8\xE2\x80\xA9", "\xE2\x80\xA8\xE2\x80\xA9", "\"\\u2028\\u2029\""},
        // Latin-1, a stray continuation, an overlong '<', a surrogate, a
        // sequence cut short by the end and by another character.
        {"caf\xE9", "caf" + kReplacement, "\"caf" + kReplacement + "\""},
        {"\x80<", kReplacement + "&lt;", "\"" + kReplacement + "\\u003c\""},
        {"\xC0\xBC", kReplacement + kReplacement, "\"" + kReplacement + kReplacement + "\""},
        {"\xED\xA0\x80", kReplacement + kReplacement + kReplacement,
         "\"" + kReplacement + kReplacement + kReplacement + "\""},
        {"\xE2\x82", kReplacement + kReplacement, "\"" + kReplacement + kReplacement + "\""},
        {"\xE2<", kReplacement + "&lt;", "\"" + kReplacement + "\\u003c\""}};
    // clang-format on
    for (const auto& c : cases)
    {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(c.html, htmlText(c.name.c_str()));
        EXPECT_EQ(c.json, jsonString(c.name.c_str()));
    }
}

// RFC 4648's examples, then numbers little-endian as the page reads them.
TEST(MotexportPageText, WritesBase64)
{
    // clang-format off
    const struct { std::string bytes, base64; } cases[] = {
        {"", ""}, {"f", "Zg=="}, {"fo", "Zm8="}, {"foo", "Zm9v"}, {"foobar", "Zm9vYmFy"}};
    // clang-format on
    for (const auto& c : cases)
    {
        std::ostringstream out;
        Base64Writer writer(out);
        for (char byte : c.bytes)
            writer.byte(static_cast<uint8_t>(byte));
        writer.finish();
        EXPECT_EQ(c.base64, out.str());
    }
    std::ostringstream out;
    Base64Writer writer(out);
    writer.uint16(0xFBFF);
    writer.int32(-2);
    writer.float32(1.0f);
    writer.finish();
    // ff fb fe ff ff ff 00 00 80 3f
    EXPECT_EQ("//v+////AACAPw==", out.str());
}

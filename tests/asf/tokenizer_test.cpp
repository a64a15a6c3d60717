// ASFTokenizer: token sequences, section breaks and line counting.
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "asf/ASFTokenizer.h"

namespace
{

constexpr int kTokenSize = 81;
using Tokens = std::vector<std::string>;

// Every token up to the end of the input, the special ones spelled "EOL"
// and "SECTION", each with "@" and the line number after it was read.
Tokens tokensOf(const std::string& text)
{
    std::istringstream in(text);
    ASFTokenizer tokenizer(in);
    Tokens tokens;
    char buf[kTokenSize];
    for (;;)
    {
        std::string token = tokenizer.getNextToken(buf, kTokenSize);
        if (token.empty() && !tokenizer.good())
            return tokens;
        if (token == ASFTokenizer::kEndOfLine)
            token = "EOL";
        else if (token == ASFTokenizer::kEndOfSection)
            token = "SECTION";
        tokens.push_back(token + "@" + std::to_string(tokenizer.lineNumber()));
    }
}

} // namespace

// clang-format off
TEST(ASFTokenizer, SplitsWordsAndLineEndsAsTheReadersExpect)
{
    const struct { std::string text; Tokens tokens; } cases[] = {
        {"dof rx ry(", {"dof@1", "rx@1", "ry@1"}}, {"limits (-inf, inf)", {"limits@1", "-inf@1", "inf@1"}},
        {"<rx>", {"<@1", "rx@1", ">@1"}}, {"grp<rx ry>", {"grp@1", "<@1", "rx@1", "ry@1", ">@1"}},
        {"axis 0 0 0 XYZ # comment\nend", {"axis@1", "0@1", "0@1", "0@1", "XYZ@1", "EOL@2", "end@2"}},
        // A run of blank and comment lines is one line end, counted in full.
        {"a\n\n\nb", {"a@1", "EOL@4", "b@4"}}, {"a # one\n# two\n\nb", {"a@1", "EOL@4", "b@4"}},
        // Nothing before the first word, so no line end either.
        {"\n# heading\n\nword", {"word@4"}},
        {"a#comment\nb", {"a@1", "EOL@2", "b@2"}}, {"x \r\ny\r\n", {"x@1", "EOL@2", "y@2", "EOL@3"}},
        // A form feed starts no word: an empty token, and reading moves on.
        {"a \f b", {"a@1", "@1", "b@1"}},
        {":version 1.10\n:name x\n   :units a :b",
         {":version@1", "1.10@1", "EOL@2", "SECTION@2", ":name@2", "x@2", "EOL@3", "SECTION@3", ":units@3", "a@3", ":b@3"}},
        {std::string(85, 'w') + " next", {std::string(80, 'w') + "@1", "wwwww@1", "next@1"}},
        // At most 256 characters of a comment are skipped; the rest of a
        // longer comment line is read as text.
        {"a #" + std::string(256, 'c') + "tail\nb", {"a@1", "EOL@2", "tail@2", "EOL@3", "b@3"}},
        // The carriage return of a Windows line end does not count.
        {"a #" + std::string(255, 'c') + "\r\nb", {"a@1", "EOL@2", "b@2"}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(c.tokens, tokensOf(c.text)) << c.text;
}
// clang-format on

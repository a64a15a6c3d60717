// ASFTokenizer: token sequences, section breaks and line counting.
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "asf/ASFTokenizer.h"

namespace
{

constexpr int kTokenSize = 81;

// Every token of the text up to the end of the input, with the special
// tokens spelled "EOL" and "SECTION", each followed by "@" and the line
// number after it was read.
std::vector<std::string> tokensOf(const std::string& text)
{
    std::istringstream in(text);
    ASFTokenizer tokenizer(in);
    std::vector<std::string> tokens;
    char buf[kTokenSize];
    for (;;)
    {
        tokenizer.getNextToken(buf, kTokenSize);
        if (buf[0] == '\0' && !tokenizer.good())
            return tokens;
        std::string token = buf;
        if (token == ASFTokenizer::kEndOfLine)
            token = "EOL";
        else if (token == ASFTokenizer::kEndOfSection)
            token = "SECTION";
        tokens.push_back(token + "@" + std::to_string(tokenizer.lineNumber()));
    }
}

} // namespace

TEST(ASFTokenizer, SplitsWordsAndLineEndsAsTheReadersExpect)
{
    const struct
    {
        const char* text;
        std::vector<std::string> tokens;
    } cases[] = {
        {"dof rx ry(", {"dof@1", "rx@1", "ry@1"}},
        {"limits (-inf, inf)", {"limits@1", "-inf@1", "inf@1"}},
        {"<rx>", {"<@1", "rx@1", ">@1"}},
        {"grp<rx ry>", {"grp@1", "<@1", "rx@1", "ry@1", ">@1"}},
        {"axis 0 0 0 XYZ # comment\nend",
         {"axis@1", "0@1", "0@1", "0@1", "XYZ@1", "EOL@2", "end@2"}},
        // A run of blank lines is one line end, counted in full.
        {"a\n\n\nb", {"a@1", "EOL@4", "b@4"}},
        {"a # one\n# two\n\nb", {"a@1", "EOL@4", "b@4"}},
        // Nothing before the first word, so no line end either.
        {"\n# heading\n\nword", {"word@4"}},
        {"a#comment\nb", {"a@1", "EOL@2", "b@2"}},
        {"x \r\ny\r\n", {"x@1", "EOL@2", "y@2", "EOL@3"}},
        // A form feed starts no word: an empty token, and reading moves on.
        {"a \f b", {"a@1", "@1", "b@1"}},
    };
    for (const auto& c : cases)
    {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(c.tokens, tokensOf(c.text));
    }
}

TEST(ASFTokenizer, BreaksBeforeEverySectionKeywordButTheFirst)
{
    EXPECT_EQ((std::vector<std::string>{":version@1",
                                        "1.10@1",
                                        "EOL@2",
                                        "SECTION@2",
                                        ":name@2",
                                        "x@2",
                                        "EOL@3",
                                        "SECTION@3",
                                        ":units@3",
                                        "a@3",
                                        ":b@3"}),
              tokensOf(":version 1.10\n:name x\n   :units a :b"));
}

TEST(ASFTokenizer, SplitsAWordLongerThanTheBuffer)
{
    std::string word(85, 'w');
    EXPECT_EQ((std::vector<std::string>{
                  std::string(80, 'w') + "@1", "wwwww@1", "next@1"}),
              tokensOf(word + " next"));
}

// A comment is skipped through its newline, but at most 256 characters of
// it; the rest of a longer comment line is read as text.
TEST(ASFTokenizer, SkipsAtMost256CharactersOfAComment)
{
    std::string comment = "#" + std::string(256, 'c') + "tail";
    EXPECT_EQ(
        (std::vector<std::string>{"a@1", "EOL@2", "tail@2", "EOL@3", "b@3"}),
        tokensOf("a " + comment + "\nb"));
}

TEST(ASFTokenizer, ConsumesFromTheStreamItIsBuiltOn)
{
    std::istringstream in("one two three");
    ASFTokenizer tokenizer(in);
    char buf[kTokenSize];
    EXPECT_STREQ("one", tokenizer.getNextNonEOLToken(buf, kTokenSize));
    std::string rest;
    std::getline(in, rest);
    EXPECT_EQ(" two three", rest);
}

TEST(ASFTokenizer, NonEOLTokensSkipLineEnds)
{
    std::istringstream in("a\n\nb\n");
    ASFTokenizer tokenizer(in);
    char buf[kTokenSize];
    EXPECT_STREQ("a", tokenizer.getNextNonEOLToken(buf, kTokenSize));
    EXPECT_STREQ("b", tokenizer.getNextNonEOLToken(buf, kTokenSize));
    EXPECT_STREQ("", tokenizer.getNextNonEOLToken(buf, kTokenSize));
    EXPECT_TRUE(tokenizer.eof());
    EXPECT_EQ(4, tokenizer.lineNumber());
}

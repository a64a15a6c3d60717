#include <cerrno>
#include <climits>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "toolkit/KtStr.h"

// Copies share one buffer until one changes, the rest after a token at an
// offset; a text taken from its own buffer survives the buffer's change.
TEST(KtStr, CopiesAndOwnTextsNeverSeeEachOthersChanges)
{
    KtStr a("walk");
    KtStr b(a);
    EXPECT_EQ(a.text(), b.text());
    b += "ing";
    a.insert(0, "re");
    EXPECT_STREQ("rewalk", a.text());
    EXPECT_STREQ("walking", b.text());
    KtStr whole("  a  b");
    KtStr rest(whole);
    EXPECT_STREQ("a", rest.extractFirstToken(" \t").text());
    rest.padRight(2, '!');
    rest.trimLeft();
    EXPECT_STREQ("b!!", rest.text());
    EXPECT_STREQ("  a  b", whole.text());

    KtStr s("motion");
    s = s.text() + 2;
    EXPECT_STREQ("tion", s.text());
    s = nullptr;
    EXPECT_STREQ("", s.text());
    s = "xyz";
    std::string expected = "xyz";
    for (int i = 0; i < 11; ++i)
        s += s.text(); // its buffer has to grow
    while (expected.size() < 3 << 11)
        expected += expected;
    EXPECT_EQ(expected, s.text());
    EXPECT_EQ(3 << 11, s.length());
}

TEST(KtStr, SubstringsEditsSearchesAndComparisons)
{
    const KtStr s("lfemur");
    EXPECT_STREQ("lfe", s.left(3).text());
    EXPECT_STREQ("lfem", s.notRight(2).text());
    EXPECT_STREQ("fem", s.mid(1, 3).text());
    EXPECT_STREQ("", s.mid(9, 2).text());

    KtStr edited(" a.b.c\n");
    edited.replaceAll(".", "::");
    edited.trimRight();
    EXPECT_STREQ(" a::b::c", edited.text());
    edited.replaceAll("::", "");
    edited.insert(99, "d");
    edited.remove(0, 2);
    EXPECT_STREQ("bcd", edited.text());

    KtStr path("root/lhumerus/lhand");
    int first = -1, last = -1, word = -1;
    EXPECT_TRUE(path.contains('/', &first) && path.findLast('/', &last) &&
                path.contains("lh", &word));
    EXPECT_EQ(4, first);
    EXPECT_EQ(13, last);
    EXPECT_EQ(5, word);
    EXPECT_FALSE(path.contains("rhand") || path.contains('\0'));

    EXPECT_EQ(0, KtStr("ABC").iCmp("abc"));
    EXPECT_EQ(1, KtStr("ABCD").iCmp("abc"));
    EXPECT_EQ(-1, KtStr("AB").iCmp("abc"));
    EXPECT_EQ(-1, KtStr("abc").iCmp("abd"));
    EXPECT_EQ(0, KtStr("abcx").iNCmp("ABCY", 3));
    EXPECT_EQ(1, KtStr("x").iCmp(nullptr));
    KtStr a("abc");
    EXPECT_TRUE(a == "abc" && a != KtStr("abd") && a < "abd");
    EXPECT_STREQ("xabcabc", ("x" + a + a).text());
    std::string name(5000, 'n');
    a.setF("Unable to read \"%s\".", name.c_str());
    EXPECT_EQ("Unable to read \"" + name + "\".", a.text());
}

// The verdict needs the whole text; the value is stored either way.
TEST(KtStr, NumbersParseOnlyWhenTheWholeTextIsUsed)
{
    errno = 0;
    // clang-format off
    const struct { const char* text; bool ok; int value; } cases[] = {
        {"12", true, 12}, {" 12", true, 12}, {"+30", true, 30}, {"", true, 0},
        {"12 ", false, 12}, {"12abc", false, 12}, {"30.0", false, 30},
        {"2147483647", true, 2147483647}, {"-2147483648", true, -2147483647 - 1},
        {"4294967326", false, 30}, {"-4294967266", false, 30}};
    // clang-format on
    for (const auto& c : cases)
    {
        int value = -1;
        EXPECT_EQ(c.ok, KtStr(c.text).intValue(&value)) << c.text;
        EXPECT_EQ(c.value, value) << c.text;
    }
    float f = 0;
    double d = 0;
    unsigned long u = 0;
    int b = -1;
    EXPECT_TRUE(KtStr("1.5").floatValue(&f) && f == 1.5f);
    EXPECT_FALSE(KtStr("1.5x").doubleValue(&d));
    EXPECT_TRUE(KtStr("42").unsignedLongValue(&u) && u == 42u);
    EXPECT_TRUE(KtStr("yes").booleanValue(&b) && b == 1);
    EXPECT_TRUE(KtStr("Off").booleanValue(&b) && b == 0);
    EXPECT_FALSE(KtStr("2").booleanValue(&b) ||
                 KtStr("maybe").booleanValue(&b));

    long value = 0;
    EXPECT_FALSE(KtStr("99999999999999999999").longValue(&value));
    EXPECT_EQ(LONG_MAX, value);
    // The indicator is not cleared first: a stale ERANGE fails a good text.
    EXPECT_FALSE(KtStr("12").longValue(&value));
    EXPECT_EQ(12, value);
    errno = 0;
    EXPECT_TRUE(KtStr("12").longValue(&value));
}

// Only separators left: an empty token, and the text stays as it is.
TEST(KtStr, TokensAndLinesOfAnyLength)
{
    KtStr tail("euler  ");
    EXPECT_STREQ("euler", tail.extractFirstToken(" ").text());
    EXPECT_STREQ("", tail.extractFirstToken(" ").text());
    EXPECT_STREQ(" ", tail.text());

    std::string longLine(100000, 'v');
    std::istringstream in(longLine + "\n\nlast");
    KtStr line;
    for (const std::string& expected :
         {longLine, std::string(), std::string("last")})
    {
        EXPECT_TRUE(line.scanLine(in));
        EXPECT_EQ(expected, line.text());
    }
    EXPECT_FALSE(line.scanLine(in));
    EXPECT_EQ(0, line.length());
}

// KtStr: sharing, editing, parsing verdicts and token extraction.
#include <cerrno>
#include <climits>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "toolkit/KtStr.h"

TEST(KtStr, CopiesShareUntilOneChanges)
{
    KtStr a("walk");
    KtStr b(a);
    EXPECT_EQ(a.text(), b.text()); // one buffer
    b += "ing";
    EXPECT_STREQ("walk", a.text());
    EXPECT_STREQ("walking", b.text());
    a.insert(0, "re");
    b.remove(0, 4);
    EXPECT_STREQ("rewalk", a.text());
    EXPECT_STREQ("ing", b.text());
}

TEST(KtStr, EditsOfASharedSuffixLeaveTheOtherHandleAlone)
{
    KtStr whole("  a  b");
    KtStr rest(whole);
    KtStr token = rest.extractFirstToken(" \t");
    EXPECT_STREQ(" b", rest.text());
    rest.padRight(2, '!');
    rest.trimLeft();
    EXPECT_STREQ("b!!", rest.text());
    EXPECT_STREQ("  a  b", whole.text());
    EXPECT_STREQ("a", token.text());
}

TEST(KtStr, AssigningItsOwnTailOrText)
{
    KtStr s("motion");
    s = s.text() + 2;
    EXPECT_STREQ("tion", s.text());
    s = s.text();
    EXPECT_STREQ("tion", s.text());
    s = nullptr;
    EXPECT_EQ(0, s.length());
    EXPECT_STREQ("", s.text());
    s += s.text();
    EXPECT_STREQ("", s.text());
}

TEST(KtStr, AppendingItselfAndLongAppends)
{
    KtStr s("ab");
    s += s.text();
    EXPECT_STREQ("abab", s.text());
    std::string expected = "abab";
    for (int i = 0; i < 2000; ++i)
    {
        s += "xyz";
        expected += "xyz";
    }
    EXPECT_EQ(expected, s.text());
    EXPECT_EQ(static_cast<int>(expected.size()), s.length());
}

TEST(KtStr, SubstringsClampTheirCounts)
{
    KtStr s("lfemur");
    EXPECT_STREQ("lfe", s.left(3).text());
    EXPECT_STREQ("mur", s.right(3).text());
    EXPECT_STREQ("mur", s.notLeft(3).text());
    EXPECT_STREQ("lfem", s.notRight(2).text());
    EXPECT_STREQ("fem", s.mid(1, 3).text());
    EXPECT_STREQ("lfemur", s.left(99).text());
    EXPECT_STREQ("", s.mid(9, 2).text());
    EXPECT_STREQ("", s.notLeft(10).text());
    EXPECT_EQ(3, s.lengthTo(3));
    EXPECT_EQ(6, s.lengthTo(60));
}

TEST(KtStr, InPlaceEdits)
{
    KtStr s("a.b.c");
    s.replaceAll(".", "::");
    EXPECT_STREQ("a::b::c", s.text());
    s.replaceAll("::", "");
    EXPECT_STREQ("abc", s.text());
    s.insert(99, "d");
    EXPECT_STREQ("abcd", s.text());
    s.padRight(0, 'x');
    EXPECT_STREQ("abcd", s.text());
    KtStr blanks(" \t body \n");
    blanks.trimRight();
    EXPECT_STREQ(" \t body", blanks.text());
    blanks.trimLeft();
    EXPECT_STREQ("body", blanks.text());
}

TEST(KtStr, SearchReportsPositions)
{
    KtStr s("root/lhumerus/lhand");
    int pos = -1;
    EXPECT_TRUE(s.contains("lh", &pos));
    EXPECT_EQ(5, pos);
    EXPECT_TRUE(s.findLast('/', &pos));
    EXPECT_EQ(13, pos);
    EXPECT_TRUE(s.contains('/', &pos));
    EXPECT_EQ(4, pos);
    EXPECT_FALSE(s.contains("rhand"));
    EXPECT_FALSE(s.contains('\0'));
}

TEST(KtStr, CaseBlindComparison)
{
    EXPECT_EQ(0, KtStr("ABC").iCmp("abc"));
    EXPECT_EQ(1, KtStr("ABCD").iCmp("abc"));
    EXPECT_EQ(-1, KtStr("AB").iCmp("abc"));
    EXPECT_EQ(-1, KtStr("abc").iCmp("abd"));
    EXPECT_EQ(0, KtStr("lfemur").iCmp("LFEMUR"));
    EXPECT_EQ(0, KtStr("abcx").iNCmp("ABCY", 3));
    EXPECT_EQ(0, KtStr("x").iNCmp("y", 0));
    EXPECT_EQ(1, KtStr("x").iCmp(nullptr));
}

TEST(KtStr, IntValueNeedsTheWholeText)
{
    int value = -1;
    EXPECT_TRUE(KtStr("12").intValue(&value));
    EXPECT_EQ(12, value);
    EXPECT_TRUE(KtStr(" 12").intValue(&value));
    EXPECT_TRUE(KtStr("+30").intValue(&value));
    EXPECT_FALSE(KtStr("12 ").intValue(&value));
    EXPECT_EQ(12, value);
    EXPECT_FALSE(KtStr("12abc").intValue(&value));
    EXPECT_EQ(12, value);
    EXPECT_FALSE(KtStr("30.0").intValue(&value));
    EXPECT_TRUE(KtStr("").intValue(&value));
    EXPECT_EQ(0, value);
}

TEST(KtStr, AnOutOfRangeIndicatorFailsTheParse)
{
    long value = 0;
    errno = 0;
    EXPECT_FALSE(KtStr("99999999999999999999").longValue(&value));
    EXPECT_EQ(LONG_MAX, value);
    // The indicator is not cleared first: a stale ERANGE fails a good text.
    EXPECT_FALSE(KtStr("12").longValue(&value));
    EXPECT_EQ(12, value);
    errno = 0;
    EXPECT_TRUE(KtStr("12").longValue(&value));
}

TEST(KtStr, OtherNumberParsers)
{
    errno = 0;
    float f = 0;
    double d = 0;
    unsigned long u = 0;
    EXPECT_TRUE(KtStr("1.5").floatValue(&f));
    EXPECT_FLOAT_EQ(1.5f, f);
    EXPECT_FALSE(KtStr("1.5x").doubleValue(&d));
    EXPECT_TRUE(KtStr("42").unsignedLongValue(&u));
    EXPECT_EQ(42u, u);
    int b = -1;
    EXPECT_TRUE(KtStr("yes").booleanValue(&b));
    EXPECT_EQ(1, b);
    EXPECT_TRUE(KtStr("Off").booleanValue(&b));
    EXPECT_EQ(0, b);
    EXPECT_FALSE(KtStr("2").booleanValue(&b));
    EXPECT_FALSE(KtStr("maybe").booleanValue(&b));
}

TEST(KtStr, ExtractFirstTokenSequence)
{
    KtStr s("  a  b");
    EXPECT_STREQ("a", s.extractFirstToken(" \t").text());
    EXPECT_STREQ(" b", s.text());
    EXPECT_STREQ("b", s.extractFirstToken(" \t").text());
    EXPECT_STREQ("", s.text());
    EXPECT_STREQ("", s.extractFirstToken(" \t").text());

    // Only separators left: an empty token and the text stays as it is.
    KtStr tail("euler  ");
    EXPECT_STREQ("euler", tail.extractFirstToken(" ").text());
    EXPECT_STREQ("", tail.extractFirstToken(" ").text());
    EXPECT_STREQ(" ", tail.text());

    KtStr peek("x y");
    EXPECT_STREQ("x", peek.firstToken(" ").text());
    EXPECT_STREQ("x y", peek.text());
}

TEST(KtStr, ScanLineReadsLinesOfAnyLength)
{
    std::string longLine(100000, 'v');
    std::istringstream in(longLine + "\n\nlast");
    KtStr line;
    EXPECT_TRUE(line.scanLine(in));
    EXPECT_EQ(longLine, line.text());
    EXPECT_TRUE(line.scanLine(in));
    EXPECT_STREQ("", line.text());
    EXPECT_TRUE(line.scanLine(in));
    EXPECT_STREQ("last", line.text());
    EXPECT_TRUE(in.eof());
    EXPECT_FALSE(line.scanLine(in));
    EXPECT_EQ(0, line.length());
}

TEST(KtStr, FormattingIsNeverTruncated)
{
    std::string name(5000, 'n');
    KtStr s;
    s.setF("Unable to read \"%s\".", name.c_str());
    EXPECT_EQ("Unable to read \"" + name + "\".", s.text());
}

TEST(KtStr, ComparisonsAndConcatenation)
{
    KtStr a("abc");
    EXPECT_TRUE(a == "abc");
    EXPECT_TRUE(a != KtStr("abd"));
    EXPECT_TRUE(a < "abd");
    EXPECT_TRUE(a >= KtStr("abc"));
    EXPECT_STREQ("xabc", ("x" + a).text());
    EXPECT_STREQ("abcabc", (a + a).text());
    std::ostringstream out;
    out << a;
    EXPECT_EQ("abc", out.str());
}

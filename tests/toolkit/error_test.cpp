// Error reporting: the chain, its printed layout and the word wrapper.
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "support/test_helpers.h"
#include "toolkit/KtError.h"

TEST(KtCheckException, NothingPendingPrintsNothing)
{
    EXPECT_EQ("", printedChain());
    StreamCapture err(std::cerr);
    EXPECT_EQ(0, KtCheckException());
}

TEST(KtCheckException, PrintsAnErrorChainHeadFirstAndClearsIt)
{
    KtError("File does not exist.");
    KtError("Unable to read \"%s\".", "walk.amc");
    StreamCapture err(std::cerr);
    EXPECT_NE(0, KtCheckException());
    EXPECT_EQ("\n\nERROR: Unable to read \"walk.amc\".\n"
              "       File does not exist.\n\n",
              err.text());
    EXPECT_FALSE(theExceptObj.exceptionOccurred());
}

TEST(KtCheckException, WarningsIndentByNineAndLetTheRunGoOn)
{
    KtWarning("Bone \"%s\" has dofs in the ASF, but not in the AMC.", "lhand");
    KtWarning("Bone \"root\" has %d dofs in the ASF, but the AMC specifies %d.",
              6,
              3);
    StreamCapture err(std::cerr);
    EXPECT_EQ(0, KtCheckException());
    EXPECT_EQ(
        warningBlock(
            {"Bone \"root\" has 6 dofs in the ASF, but the AMC specifies 3.",
             "Bone \"lhand\" has dofs in the ASF, but not in the AMC."}),
        err.text());
}

TEST(KtCheckException, OnlyTheHeadsKindDecides)
{
    KtError("older error");
    KtWarning("newer warning");
    EXPECT_TRUE(theExceptObj.warningOccurred());
    EXPECT_FALSE(theExceptObj.errorOccurred());
    EXPECT_EQ(warningBlock({"newer warning", "older error"}), printedChain());

    KtWarning("older warning");
    KtError("newer error");
    EXPECT_TRUE(theExceptObj.errorOccurred());
    EXPECT_EQ(errorBlock({"newer error", "older warning"}), printedChain());
}

TEST(KtCheckException, ContextIsAddedOnlyOverAnError)
{
    KtWarning("just a warning");
    {
        StreamCapture err(std::cerr);
        EXPECT_EQ(0, KtCheckException("Unable to save \"%s\".", "a.mel"));
        EXPECT_EQ(warningBlock({"just a warning"}), err.text());
    }
    KtError("The cause.");
    StreamCapture err(std::cerr);
    EXPECT_NE(0, KtCheckException("Unable to save \"%s\".", "a.mel"));
    EXPECT_EQ(errorBlock({"Unable to save \"a.mel\".", "The cause."}),
              err.text());
}

TEST(KtError, APercentInAnArgumentIsPrintedAsItStands)
{
    KtError("Unable to read \"%s\".", "100%s_%d%n.amc");
    EXPECT_EQ(errorBlock({"Unable to read \"100%s_%d%n.amc\"."}),
              printedChain());
}

TEST(KtError, LongMessagesAreKeptWhole)
{
    std::string path(3000, 'p');
    KtError("Unable to read \"%s\".", path.c_str());
    EXPECT_EQ("\n\nERROR: Unable to read\n       \"" + path + "\".\n\n",
              printedChain());
}

TEST(KtError, FatalModeAbortsOnErrorsOnly)
{
    KtExceptionHandler::_errors_are_fatal = 1;
    KtWarning("a warning is never fatal");
    EXPECT_TRUE(theExceptObj.warningOccurred());
    KtExceptionHandler::_errors_are_fatal = 0;
    EXPECT_DEATH(
        {
            KtExceptionHandler::_errors_are_fatal = 1;
            KtError("fatal");
        },
        "");
}

TEST(KtExcept, CopiesTheWholeChainDeeply)
{
    KtError("first");
    KtError("second");
    KtExceptionHandler copy(theExceptObj);
    theExceptObj.clear();
    ASSERT_TRUE(copy.exception());
    EXPECT_STREQ("second", copy.exception()->message().text());
    ASSERT_TRUE(copy.exception()->hasDetail());
    EXPECT_STREQ("first", copy.exception()->detail()->message().text());

    KtExcept assigned;
    assigned = *copy.exception();
    assigned.extend("after");
    assigned.preExtend("before");
    EXPECT_STREQ("before\nsecond\nafter", assigned.message().text());
    EXPECT_STREQ("second", copy.exception()->message().text());
}

TEST(KtExceptionHandler, ExtendingChangesTheHeadRecordOnly)
{
    theExceptObj.extendException("nothing pending: %d", 1);
    EXPECT_FALSE(theExceptObj);
    theExceptObj.setAsError("head %d", 1);
    theExceptObj.extendException("more");
    theExceptObj.preExtendException("less");
    EXPECT_EQ("\n\nERROR: less\n       head 1\n       more\n\n",
              printedChain());
}

TEST(KtGetExceptionStr, RendersThePrintedLayout)
{
    KtError("cause");
    KtError("context");
    KtStr text;
    KtGetExceptionStr(&text, *theExceptObj.exception());
    EXPECT_EQ(errorBlock({"context", "cause"}), text.text());
}

// Compares the wrapped text, not the pointers.
#define EXPECT_WRAP(expected, wrapped)                                         \
    EXPECT_EQ(std::string(expected), std::string(wrapped))

TEST(KtWrapString, BreaksAtTheLastBlankPastTheWidth)
{
    std::string seventy(70, 'x');
    EXPECT_WRAP(seventy, KtWrapString(seventy.c_str(), 70, 8).text());
    std::string words = std::string(65, 'a') + " bcde";
    EXPECT_WRAP(words, KtWrapString(words.c_str(), 70, 8).text());
    words += "f";
    EXPECT_WRAP(std::string(65, 'a') + "\nbcdef",
                KtWrapString(words.c_str(), 70, 8).text());
}

TEST(KtWrapString, LongWordsRunOnAndBlanksAreDropped)
{
    std::string longWord(90, 'w');
    EXPECT_WRAP(longWord + "\nend",
                KtWrapString((longWord + "   end").c_str(), 70, 8).text());
    // The line keeps the blanks before the break; the next loses its own.
    EXPECT_WRAP("ab cd  \nef", KtWrapString("ab cd   ef", 7, 8).text());
}

TEST(KtWrapString, NewlinesAndTabs)
{
    EXPECT_WRAP("one\ntwo", KtWrapString("one\ntwo", 70, 8).text());
    // A width break right before a newline gives one break only.
    EXPECT_WRAP("abcd\nef", KtWrapString("abcd \nef", 4, 8).text());
    // No break point since the line start: the newline stays as it is.
    EXPECT_WRAP("\nabc", KtWrapString("\nabc", 70, 8).text());
    // A tab advances to the next multiple of the tab width.
    EXPECT_WRAP("a\nb", KtWrapString("a\tb", 8, 8).text());
    EXPECT_WRAP("a\tb", KtWrapString("a\tb", 9, 8).text());
}

TEST(KtPrintException, WrapsAndIndentsEveryRecordByTheHeadsKind)
{
    std::string longText = std::string(60, 'a') + " " + std::string(20, 'b');
    KtError("%s", longText.c_str());
    KtWarning("%s", "line one\nline two");
    std::ostringstream out;
    KtPrintException(out, *theExceptObj.exception());
    EXPECT_EQ("\n\nWARNING: line one\n         line two\n"
              "         " +
                  std::string(60, 'a') + "\n         " + std::string(20, 'b') +
                  "\n\n",
              out.str());
}

// Error reporting: the chain, its printed layout and the word wrapper. The
// cancel check is tested through the readers that poll it.
#include <string>

#include <gtest/gtest.h>

#include "support/test_helpers.h"
#include "toolkit/KtError.h"

// The head's kind alone decides the layout, the verdict and whether a
// context message goes on top. Chains of one kind, wrapped and indented, are
// printed by every failing end-to-end run.
TEST(KtCheckException, OnlyTheHeadsKindDecides)
{
    EXPECT_EQ(0, KtCheckException()); // nothing pending, nothing printed
    KtError("older error");
    KtWarning("newer warning");
    EXPECT_TRUE(theExceptObj.warningOccurred() &&
                !theExceptObj.errorOccurred());
    StreamCapture err(std::cerr);
    EXPECT_EQ(0, KtCheckException("Unable to save \"%s\".", "a.mel"));
    KtWarning("older warning");
    KtError("newer error");
    EXPECT_NE(0, KtCheckException("Unable to save \"%s\".", "a.mel"));
    EXPECT_EQ(
        warningBlock({"newer warning", "older error"}) +
            errorBlock(
                {"Unable to save \"a.mel\".", "newer error", "older warning"}),
        err.text());
}

// Extending changes the head's text only; copies keep the chain as it was.
TEST(KtExcept, CopiesAreDeepExtendingChangesTheHeadAndFatalModeAborts)
{
    theExceptObj.extendException("nothing pending: %d", 1);
    EXPECT_FALSE(theExceptObj);
    KtError("first");
    theExceptObj.setAsError("second %d", 2);
    KtExceptionHandler copy(theExceptObj);
    KtExcept assigned;
    assigned = *copy.exception();
    theExceptObj.extendException("more");
    theExceptObj.preExtendException("less");
    EXPECT_EQ("\n\nERROR: less\n       second 2\n       more\n       first\n\n",
              printedChain());
    KtStr text;
    KtGetExceptionStr(&text, assigned);
    EXPECT_EQ(errorBlock({"second 2", "first"}), text.text());
    // Fatal mode aborts on errors only.
    KtExceptionHandler::_errors_are_fatal = 1;
    KtWarning("a warning is never fatal");
    EXPECT_DEATH(KtError("fatal"), "");
    KtExceptionHandler::_errors_are_fatal = 0;
}

TEST(KtWrapString, BreaksAtTheLastBlankOnceTheWidthIsPassed)
{
    const std::string a65(65, 'a');
    const std::string w90(90, 'w');
    // clang-format off
    const struct { std::string text; int width; std::string wrapped; } cases[] = {
        {std::string(70, 'x'), 70, std::string(70, 'x')},
        {a65 + " bcde", 70, a65 + " bcde"},
        {a65 + " bcdef", 70, a65 + "\nbcdef"},
        // A long word runs on; blanks after a break go, those before stay.
        {w90 + "   end", 70, w90 + "\nend"},
        {"ab cd   ef", 7, "ab cd  \nef"},
        {"one\ntwo", 70, "one\ntwo"},
        // A width break right before a newline gives one break only.
        {"abcd \nef", 4, "abcd\nef"},
        // No break point since the line start: the newline stays as it is.
        {"\nabc", 70, "\nabc"},
        // A tab advances to the next multiple of the tab width.
        {"a\tb", 8, "a\nb"}, {"a\tb", 9, "a\tb"}};
    // clang-format on
    for (const auto& c : cases)
        EXPECT_EQ(c.wrapped,
                  std::string(KtWrapString(c.text.c_str(), c.width, 8)))
            << c.text;
}

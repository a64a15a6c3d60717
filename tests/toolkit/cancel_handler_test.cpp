// The cancel check that the readers poll.
#include <gtest/gtest.h>

#include "support/test_helpers.h"
#include "toolkit/KtCancelHandler.h"
#include "toolkit/KtError.h"

namespace
{

int cancelWhenAsked(void* data)
{
    return *static_cast<int*>(data);
}

} // namespace

TEST(KtCancelHandler, CancelsOnlyWhenTheCallbackAsks)
{
    EXPECT_EQ(0, KtCancelHandler::checkCancel());
    int answer = 0;
    KtCancelHandler::_proc = cancelWhenAsked;
    KtCancelHandler::_data = &answer;
    EXPECT_EQ(0, KtCancelHandler::checkCancel());
    EXPECT_FALSE(theExceptObj.exceptionOccurred());
    answer = 7;
    EXPECT_EQ(1, KtCancelHandler::checkCancel());
    KtCancelHandler::_proc = nullptr;
    KtCancelHandler::_data = nullptr;
    EXPECT_EQ(errorBlock({"Canceled."}), printedChain());
}

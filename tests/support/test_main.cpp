// Test main: every test starts with an empty error handler, so a message left
// pending by one test cannot leak into the next.
#include <gtest/gtest.h>

#include "toolkit/KtError.h"

namespace
{

class ClearHandler : public testing::EmptyTestEventListener
{
    void OnTestStart(const testing::TestInfo&) override
    {
        theExceptObj.clear();
    }
};

} // namespace

// Under AddressSanitizer an impossible allocation returns null, as it does
// without it, so the containers' own out-of-memory path can be tested.
extern "C" const char* __asan_default_options()
{
    return "allocator_may_return_null=1";
}

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    testing::UnitTest::GetInstance()->listeners().Append(new ClearHandler);
    return RUN_ALL_TESTS();
}

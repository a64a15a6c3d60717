#include <exception>
#include <new>

#include <gtest/gtest.h>

#include "program/ProgramStart.h"

// A failed new, and an array size that new cannot even ask for, end with
// the containers' message, never as a silent abort.
TEST(ProgramStart, RunningOutOfMemoryEndsWithOneMessage)
{
    auto start = []
    {
        auto noHelp = [](std::ostream&, const KtStr&) {};
        const char* argv[] = {"prog", "input"};
        testing::internal::CaptureStdout();
        startProgram(2, argv, {"prog", "1.0", noHelp, noHelp});
        testing::internal::GetCapturedStdout();
    };
    const char* kMessage = "^Memory allocation failed\n$";
    EXPECT_DEATH((start(), std::get_new_handler()()), kMessage);
    EXPECT_DEATH(
        {
            start();
            try
            {
                throw std::bad_array_new_length();
            }
            catch (...)
            {
                std::terminate();
            }
        },
        kMessage);
}

// The programs' shared start.
#include <exception>
#include <new>

#include <gtest/gtest.h>

#include "program/ProgramStart.h"

namespace
{

void printNothing(std::ostream&, const KtStr&)
{
}

void startAProgram()
{
    const char* argv[] = {"prog", "input"};
    const ProgramDescription program{"prog", "1.0", printNothing, printNothing};
    testing::internal::CaptureStdout();
    startProgram(2, argv, program);
    testing::internal::GetCapturedStdout();
}

} // namespace

// A failed new, and an array size that new cannot even ask for, end with
// the containers' message, never as a silent abort.
TEST(ProgramStart, RunningOutOfMemoryEndsWithOneMessage)
{
    const char* kMessage = "^Memory allocation failed\n$";
    EXPECT_DEATH(
        {
            startAProgram();
            std::get_new_handler()();
        },
        kMessage);
    EXPECT_DEATH(
        {
            startAProgram();
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

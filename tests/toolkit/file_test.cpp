#include <cstdio>
#include <cstdlib>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "support/test_helpers.h"
#include "toolkit/KtError.h"
#include "toolkit/KtFile.h"

TEST(KtFileDirOfPath, TakesEverythingBeforeTheLastSlash)
{
    EXPECT_STREQ("a/b", KtFileDirOfPath("a/b/c").text());
    EXPECT_STREQ("a", KtFileDirOfPath("a/b/").text());
    for (const char* none : {"dir/", "/data", "/", "", "walk.amc"})
        EXPECT_STREQ("", KtFileDirOfPath(none).text()) << none;
    EXPECT_STREQ("", KtFileDirOfPath(nullptr).text());
}

// Reads, creations, overwrites and bare names pass in every end-to-end run; a
// missing input or output folder fails there. Permissions mean nothing to
// root, so those cases run in a child that first becomes an ordinary user.
TEST(KtPathCheck, NamesThePathAndTheFirstFailingTest)
{
    TempDir dir;
    const std::string locked = dir.file("locked.asf");
    const std::string kept = dir.file("kept.mel");
    writeFile(locked, "x");
    chmod(locked.c_str(), 0);
    mkdir(dir.file("locked").c_str(), 0);
    writeFile(kept, "x");
    chmod(kept.c_str(), 0444);
    chmod(dir.path().c_str(), 0555);
    const auto read = KtPathCheckReadAccess;
    const auto write = KtPathCheckWriteAccess;
    const std::string unreadable =
        "Insufficient access to read file.  Check permissions.";
    // clang-format off
    const struct { int (*check)(const char*); std::string path; bool ordinaryUser; std::string reason; } cases[] = {
        {read, dir.path(), false, "File is a directory."},
        // The permission test comes before the directory test.
        {read, locked, true, unreadable},
        {read, dir.file("locked"), true, unreadable},
        {write, dir.path(), false, "File is a directory."},
        {write, kept, true, "Insufficient access to overwrite existing file.  Check permissions."},
        {write, dir.file("new.mel"), true, "Insufficient access to create file in \"" + dir.path() + "\".  Check permissions."}};
    // clang-format on
    for (const auto& c : cases)
    {
        std::string head = c.check == read
                               ? "Unable to read \"" + c.path + "\"."
                               : "File \"" + c.path + "\" is unwritable.";
        std::string expected = errorBlock({head.c_str(), c.reason.c_str()});
        if (!c.ordinaryUser)
        {
            EXPECT_EQ(0, c.check(c.path.c_str())) << c.path;
            EXPECT_EQ(expected, printedChain());
            continue;
        }
        EXPECT_EXIT(
            {
                if (geteuid() == 0 &&
                    (setgid(65534) != 0 || setuid(65534) != 0))
                    std::exit(2);
                c.check(c.path.c_str());
                std::string printed = printedChain();
                if (printed != expected)
                    std::fprintf(stderr, "printed:%s", printed.c_str());
                std::exit(printed == expected ? 0 : 1);
            },
            testing::ExitedWithCode(0),
            "")
            << c.path;
    }
    chmod(dir.path().c_str(), 0755); // so that it can be removed
}

// File access checks and path helpers.
#include <cstdio>
#include <cstdlib>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "support/test_helpers.h"
#include "toolkit/KtError.h"
#include "toolkit/KtFile.h"

namespace
{

// Permissions mean nothing to root, so the permission cases run in a child
// process that first becomes an ordinary user, and exits 0 only when the
// printed chain is the expected one (else it shows what it got).
void exitWithChainCheck(const std::string& expected)
{
    std::string printed = printedChain();
    if (printed != expected)
        std::fprintf(stderr, "printed:%s", printed.c_str());
    std::exit(printed == expected ? 0 : 1);
}

void becomeOrdinaryUser()
{
    if (geteuid() == 0 && (setgid(65534) != 0 || setuid(65534) != 0))
        std::exit(2);
}

} // namespace

TEST(KtFileDirOfPath, TakesEverythingBeforeTheLastSlash)
{
    EXPECT_STREQ("a/b", KtFileDirOfPath("a/b/c").text());
    EXPECT_STREQ("a", KtFileDirOfPath("a/b/").text());
    EXPECT_STREQ("", KtFileDirOfPath("dir/").text());
    EXPECT_STREQ("", KtFileDirOfPath("/data").text());
    EXPECT_STREQ("", KtFileDirOfPath("/").text());
    EXPECT_STREQ("", KtFileDirOfPath("").text());
    EXPECT_STREQ("", KtFileDirOfPath(nullptr).text());
    EXPECT_STREQ("", KtFileDirOfPath("walk.amc").text());
}

TEST(KtPathCheckReadAccess, ReportsTheFirstFailingTest)
{
    TempDir dir;
    std::string file = dir.file("walk.amc");
    writeFile(file, "x");
    EXPECT_EQ(1, KtPathCheckReadAccess(file.c_str()));
    EXPECT_FALSE(theExceptObj.exceptionOccurred());

    std::string missing = dir.file("missing.amc");
    EXPECT_EQ(0, KtPathCheckReadAccess(missing.c_str()));
    EXPECT_EQ(errorBlock({("Unable to read \"" + missing + "\".").c_str(),
                          "File does not exist."}),
              printedChain());

    EXPECT_EQ(0, KtPathCheckReadAccess(dir.path().c_str()));
    EXPECT_EQ(errorBlock({("Unable to read \"" + dir.path() + "\".").c_str(),
                          "File is a directory."}),
              printedChain());
}

TEST(KtPathCheckReadAccess, UnreadableFileReportsPermissions)
{
    TempDir dir;
    chmod(dir.path().c_str(), 0755);
    std::string file = dir.file("locked.asf");
    writeFile(file, "x");
    chmod(file.c_str(), 0);
    std::string expected =
        errorBlock({("Unable to read \"" + file + "\".").c_str(),
                    "Insufficient access to read file.  Check permissions."});
    EXPECT_EXIT(
        {
            becomeOrdinaryUser();
            KtPathCheckReadAccess(file.c_str());
            exitWithChainCheck(expected);
        },
        testing::ExitedWithCode(0),
        "");
}

TEST(KtPathCheckWriteAccess, AcceptsNewAndExistingWritableFiles)
{
    TempDir dir;
    std::string file = dir.file("out.mov");
    EXPECT_EQ(1, KtPathCheckWriteAccess(file.c_str()));
    writeFile(file, "x");
    EXPECT_EQ(1, KtPathCheckWriteAccess(file.c_str()));
    // A bare name is taken as creatable without any test.
    EXPECT_EQ(1, KtPathCheckWriteAccess("surely-not-here.mov"));
    EXPECT_FALSE(theExceptObj.exceptionOccurred());
}

TEST(KtPathCheckWriteAccess, RefusesDirectoriesAndMissingParents)
{
    TempDir dir;
    EXPECT_EQ(0, KtPathCheckWriteAccess(dir.path().c_str()));
    EXPECT_EQ(
        errorBlock({("File \"" + dir.path() + "\" is unwritable.").c_str(),
                    "File is a directory."}),
        printedChain());

    std::string nowhere = dir.file("nowhere");
    std::string file = nowhere + "/out.mov";
    EXPECT_EQ(0, KtPathCheckWriteAccess(file.c_str()));
    EXPECT_EQ(
        errorBlock(
            {("File \"" + file + "\" is unwritable.").c_str(),
             ("Parent directory \"" + nowhere + "\" does not exist.").c_str()}),
        printedChain());
}

TEST(KtPathCheckWriteAccess, ReportsPermissionsOfFileAndParent)
{
    TempDir dir;
    chmod(dir.path().c_str(), 0555);
    std::string file = dir.file("out.mel");
    writeFile(file, "x");
    chmod(file.c_str(), 0444);
    std::string expected =
        errorBlock({("File \"" + file + "\" is unwritable.").c_str(),
                    "Insufficient access to overwrite existing file.  Check "
                    "permissions."});
    EXPECT_EXIT(
        {
            becomeOrdinaryUser();
            KtPathCheckWriteAccess(file.c_str());
            exitWithChainCheck(expected);
        },
        testing::ExitedWithCode(0),
        "");

    std::string fresh = dir.file("fresh.mel");
    expected = errorBlock({("File \"" + fresh + "\" is unwritable.").c_str(),
                           ("Insufficient access to create file in \"" +
                            dir.path() + "\".  Check permissions.")
                               .c_str()});
    EXPECT_EXIT(
        {
            becomeOrdinaryUser();
            KtPathCheckWriteAccess(fresh.c_str());
            exitWithChainCheck(expected);
        },
        testing::ExitedWithCode(0),
        "");
    chmod(dir.path().c_str(), 0755);
}

TEST(KtFileIsDirectory, TestsTheDirectoryBit)
{
    TempDir dir;
    EXPECT_TRUE(KtFileIsDirectory(dir.path().c_str()));
    EXPECT_FALSE(KtFileIsDirectory(dir.file("none").c_str()));
    EXPECT_TRUE(KtFileHaveExecuteAccess("/bin/sh"));
}
